#include "indexer/documents/xml_reading.h"

#include <expat.h>

#include <climits>
#include <memory>
#include <new>
#include <type_traits>

namespace vela::indexer {

namespace {

// Between the namespace of a name and the name.
constexpr char kSeparator = '\n';
// Deeper than any document goes.
constexpr size_t kDepthLimit = 2000;

std::string_view LocalName(std::string_view qualified) {
  return qualified.substr(qualified.rfind(kSeparator) + 1);
}

struct Reading {
  XML_Parser parser;
  ReadingBudget& budget;
  XmlHandler& handler;
  size_t depth = 0;
  bool isDamaged = false;
  bool failedToAllocate = false;
};

// Runs what a call of the parser is for. No exception may pass through the parser, which is C.
template <typename Work>
void Handle(void* self, uint64_t steps, const Work& work) {
  auto& reading = *static_cast<Reading*>(self);
  const auto hasEnded = [&reading] {
    return reading.isDamaged || reading.failedToAllocate || reading.budget.status != Reason::kNone;
  };
  if (hasEnded()) return;  // what was read ahead is still told
  TakeSteps(reading.budget, steps);
  try {
    work(reading);
  } catch (const std::bad_alloc&) {
    reading.failedToAllocate = true;
  }
  if (hasEnded()) XML_StopParser(reading.parser, XML_FALSE);
}

void OnStart(void* self, const XML_Char* name, const XML_Char** attributes) {
  Handle(self, 1, [&](Reading& reading) {
    if (++reading.depth > kDepthLimit) reading.isDamaged = true;
    if (!reading.isDamaged) reading.handler.Start(XmlTag(name, attributes));
  });
}

void OnEnd(void* self, const XML_Char* name) {
  Handle(self, 1, [&](Reading& reading) {
    --reading.depth;
    reading.handler.End(LocalName(name));
  });
}

void OnText(void* self, const XML_Char* text, int length) {
  const std::string_view found(text, static_cast<size_t>(length));
  Handle(self, found.size(), [&](Reading& reading) { reading.handler.Text(found); });
}

void OnEntity(void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
              const XML_Char*, const XML_Char*, const XML_Char*) {
  Handle(self, 1, [](Reading& reading) { reading.isDamaged = true; });
}

}  // namespace

XmlTag::XmlTag(std::string_view qualified, const char** attributes)
    : name_(LocalName(qualified)), attributes_(attributes) {}

std::string_view XmlTag::Find(std::string_view name, bool qualifiedOnly) const {
  for (const char** at = attributes_; at[0] != nullptr; at += 2) {
    const std::string_view qualified = at[0];
    const bool hasNamespace = qualified.find(kSeparator) != qualified.npos;
    if (LocalName(qualified) == name && (hasNamespace || !qualifiedOnly)) return at[1];
  }
  return {};
}

std::string_view XmlTag::Value(std::string_view name) const { return Find(name, false); }

std::string_view XmlTag::QualifiedValue(std::string_view name) const { return Find(name, true); }

Reason ReadXml(std::string_view xml, ReadingBudget& budget, XmlHandler& handler) {
  if (xml.size() > INT_MAX) return Reason::kMarkupTooLarge;
  using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;
  const Parser parser(XML_ParserCreateNS(nullptr, kSeparator), &XML_ParserFree);
  if (parser == nullptr) throw std::bad_alloc();
  Reading reading = {.parser = parser.get(), .budget = budget, .handler = handler};
  XML_SetUserData(parser.get(), &reading);
  XML_SetElementHandler(parser.get(), &OnStart, &OnEnd);
  XML_SetCharacterDataHandler(parser.get(), &OnText);
  XML_SetEntityDeclHandler(parser.get(), &OnEntity);
  // In one piece: a long token is then read once.
  const XML_Status status =
      XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE);
  const XML_Error error = XML_GetErrorCode(parser.get());
  if (reading.failedToAllocate || error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  if (budget.status != Reason::kNone) return budget.status;
  return reading.isDamaged || status != XML_STATUS_OK ? Reason::kDamaged : Reason::kNone;
}

Reason ReadXmlBeside(std::string_view xml, ReadingBudget& budget, XmlHandler& handler) {
  const Reason reason = ReadXml(xml, budget, handler);
  return reason == Reason::kDamaged ? Reason::kNone : reason;
}

}  // namespace vela::indexer
