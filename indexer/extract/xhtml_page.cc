#include "indexer/extract/xhtml_page.h"

#include <expat.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <set>
#include <vector>

#include "indexer/extract/character_references.h"
#include "indexer/extract/html_content.h"
#include "indexer/words/lower_copy.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

// Between the namespace of a name and the name; the parser refuses namespaces that hold it.
constexpr char kSeparator = '\n';
constexpr std::string_view kXhtml = "http://www.w3.org/1999/xhtml";
// As deep as HTML: what begins deeper has no rules, its text belongs to the element above it.
constexpr size_t kDepthLimit = 512;
// What the parser keeps of each open element.
constexpr size_t kParserBytesPerLevel = 256;

using ParserPointer = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

// Adds to `declarations` what `name` stands for, by number and in a way that makes no markup of it.
void Declare(std::string_view name, const CharacterReference& reference,
             std::string& declarations) {
  declarations.append("<!ENTITY ").append(name).append(" \"");
  const auto* bytes = reinterpret_cast<const uint8_t*>(reference.text);
  const auto length = static_cast<int32_t>(reference.textLength);
  for (int32_t i = 0; i < length;) {
    UChar32 c = 0;
    U8_NEXT(bytes, i, length, c);
    declarations.append("&#38;#").append(std::to_string(c)).append(";");
  }
  declarations += "\">";
}

// Declarations of the named references of HTML that the page uses. There are thousands of them, of
// which a page uses a few.
std::string EntityDeclarations(std::string_view xml, ReadingBudget& budget) {
  constexpr size_t kLongestName = 40;
  std::set<std::string_view> seen;
  std::string declarations;
  for (size_t at = xml.find('&'); at != xml.npos; at = xml.find('&', at + 1)) {
    if (!TakeSteps(budget, 1)) break;
    const std::string_view from = xml.substr(at, kLongestName);
    const size_t end = from.find(';');
    if (end == from.npos || end < 2 || !IsAlpha(from[1])) continue;
    const std::string_view name = from.substr(1, end - 1);
    const CharacterReference reference = ReadCharacterReference(from.substr(0, end + 1), false);
    // A shorter one is the beginning of another name.
    if (reference.length != end + 1 || !seen.insert(name).second) continue;
    Declare(name, reference, declarations);
  }
  return declarations;
}

// Takes what the parser finds and tells it on.
class XhtmlReading {
 public:
  // All must outlive this.
  XhtmlReading(HtmlContent& told, ReadingBudget& takenFrom, std::string_view entities)
      : content(told), budget(takenFrom), declarations(entities) {}

  Reason Read(std::string_view xml, std::string& fault);

 private:
  struct OpenElement {
    ElementRole role;
    TextState inside;
  };

  // Runs what a call of the parser is for. No exception may pass through the parser, which is C.
  template <typename Work>
  static void Handle(void* self, uint64_t steps, const Work& work);

  static void OnStart(void* self, const XML_Char* name, const XML_Char** attributes);
  static void OnEnd(void* self, const XML_Char* name);
  static void OnText(void* self, const XML_Char* text, int length);
  static void OnComment(void* self, const XML_Char* text);
  static void OnUnknownEntity(void* self, const XML_Char* name, int isParameter);
  static int OnExternalEntity(XML_Parser parser, const XML_Char* context, const XML_Char* base,
                              const XML_Char* systemId, const XML_Char* publicId);

  void Start(std::string_view name, const XML_Char** attributes);
  void End();
  void Text(std::string_view text);
  void EndCharacters();
  TextState Around() const { return open.empty() ? TextState() : open.back().inside; }

  HtmlContent& content;
  ReadingBudget& budget;
  std::string_view declarations;  // of entities
  XML_Parser parser = nullptr;    // while Read runs
  bool failedToAllocate = false;

  std::vector<OpenElement> open;
  size_t tooDeep = 0;  // elements below those
  size_t depth = 0;    // of all, with those inside of elements that hold only characters
  size_t deepest = 0;

  // Of an element that holds only characters; other elements in it are passed over.
  size_t charactersDepth = 0;  // its own; 0: none is open
  Element charactersOf = Element::kOther;
  bool wantsCharacters = false;
  bool isJson = false;
  std::string characters;
};

template <typename Work>
void XhtmlReading::Handle(void* self, uint64_t steps, const Work& work) {
  auto& reading = *static_cast<XhtmlReading*>(self);
  // What was read ahead may still be told after a stop.
  if (reading.failedToAllocate || reading.budget.status != Reason::kNone) return;
  TakeSteps(reading.budget, steps);
  try {
    work(reading);
  } catch (const std::bad_alloc&) {
    reading.failedToAllocate = true;
  }
  if (reading.failedToAllocate || reading.budget.status != Reason::kNone) {
    XML_StopParser(reading.parser, XML_FALSE);
  }
}

void XhtmlReading::OnStart(void* self, const XML_Char* name, const XML_Char** attributes) {
  Handle(self, 1, [&](XhtmlReading& reading) { reading.Start(name, attributes); });
}

void XhtmlReading::OnEnd(void* self, const XML_Char*) {
  Handle(self, 1, [](XhtmlReading& reading) { reading.End(); });
}

void XhtmlReading::OnText(void* self, const XML_Char* text, int length) {
  const std::string_view found(text, static_cast<size_t>(length));
  Handle(self, found.size(), [&](XhtmlReading& reading) { reading.Text(found); });
}

void XhtmlReading::OnComment(void* self, const XML_Char* text) {
  const std::string_view found = text;
  Handle(self, found.size(), [&](XhtmlReading& reading) {
    if (reading.charactersDepth == 0 && !reading.Around().isInert)
      reading.content.TakeComment(found);
  });
}

// It stays in the text as it is written.
void XhtmlReading::OnUnknownEntity(void* self, const XML_Char* name, int isParameter) {
  if (isParameter != 0) return;
  Handle(self, 1, [&](XhtmlReading& reading) { reading.Text('&' + std::string(name) + ';'); });
}

// An entity that lies outside of the page is passed over. In the place of the document type stand
// the declarations of what the page uses; the first of a name counts, so that the page's own stay.
int XhtmlReading::OnExternalEntity(XML_Parser parser, const XML_Char* context, const XML_Char*,
                                   const XML_Char*, const XML_Char*) {
  if (context != nullptr) return XML_STATUS_OK;
  const auto& reading = *static_cast<XhtmlReading*>(XML_GetUserData(parser));
  const ParserPointer inner(XML_ExternalEntityParserCreate(parser, context, "UTF-8"),
                            &XML_ParserFree);
  if (inner == nullptr) return XML_STATUS_ERROR;
  return XML_Parse(inner.get(), reading.declarations.data(),
                   static_cast<int>(reading.declarations.size()), XML_TRUE);
}

void XhtmlReading::Start(std::string_view name, const XML_Char** attributes) {
  if (++depth > deepest) {
    deepest = depth;
    if (!TakeBytes(budget, kParserBytesPerLevel)) return;
  }
  if (charactersDepth != 0) return;
  const size_t separator = name.rfind(kSeparator);
  const bool isHtml = separator == name.npos || name.substr(0, separator) == kXhtml;
  Tag tag;
  tag.name = name.substr(separator == name.npos ? 0 : separator + 1);
  const bool hasCapitals =
      std::ranges::any_of(tag.name, [](char c) { return ToLowerAscii(c) != c; });
  if (!isHtml || !hasCapitals) tag.element = FindElement(tag.name);
  tag.valuesAreText = true;
  tag.asked = content.askedAttributes();
  for (; attributes[0] != nullptr; attributes += 2) {
    TakeSteps(budget, strlen(attributes[1]));
    AddAttribute(attributes[0], attributes[1], tag);
  }
  const TextState around = Around();
  const ElementRole role = content.Begin(tag, isHtml, around);
  const TextState inside = StateInside(around, role);
  const bool holdsCharacters = isHtml && Has(tag.element, kRawText);
  if (open.size() >= kDepthLimit && !holdsCharacters) {
    ++tooDeep;
    content.End(role, inside);
    return;
  }
  if (isHtml && tag.element == Element::kTable) {
    content.pageText().Mark(around.strand, around.style.share, around.style.region);
  }
  open.push_back({role, inside});
  if (!holdsCharacters) return;
  charactersDepth = depth;
  charactersOf = tag.element;
  isJson = tag.element == Element::kScript &&
           LowerAsciiCopy(AttributeValue(tag, Attribute::kType)) == "application/ld+json";
  wantsCharacters = isJson || tag.element == Element::kTitle || tag.element == Element::kXmp;
}

void XhtmlReading::End() {
  const bool endsCharacters = charactersDepth == depth;
  --depth;
  if (charactersDepth != 0 && !endsCharacters) return;
  if (endsCharacters) {
    EndCharacters();
  } else if (tooDeep > 0) {
    --tooDeep;
    return;
  }
  const OpenElement closed = open.back();
  open.pop_back();
  content.End(closed.role, closed.inside);
}

void XhtmlReading::EndCharacters() {
  const TextState& inside = open.back().inside;
  if (charactersOf == Element::kTitle) {
    content.AddTitle(characters, inside);
  } else if (isJson) {
    content.AddJson(characters, inside);
  } else {
    content.AddText(characters, inside);
  }
  charactersDepth = 0;
  characters.clear();
}

void XhtmlReading::Text(std::string_view text) {
  if (charactersDepth == 0) {
    content.AddText(text, Around());
  } else if (wantsCharacters && TakeBytes(budget, text.size())) {
    characters += text;
  }
}

Reason XhtmlReading::Read(std::string_view xml, std::string& fault) {
  if (xml.size() > INT_MAX) return Reason::kMarkupTooLarge;
  const ParserPointer created(XML_ParserCreateNS("UTF-8", kSeparator), &XML_ParserFree);
  parser = created.get();
  if (parser == nullptr) throw std::bad_alloc();
  XML_SetUserData(parser, this);
  XML_SetElementHandler(parser, &OnStart, &OnEnd);
  XML_SetCharacterDataHandler(parser, &OnText);
  XML_SetCommentHandler(parser, &OnComment);
  XML_SetSkippedEntityHandler(parser, &OnUnknownEntity);
  XML_SetExternalEntityRefHandler(parser, &OnExternalEntity);
  XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
  XML_UseForeignDTD(parser, XML_TRUE);
  // In one piece: a long token is then read once.
  const XML_Status status = XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), XML_TRUE);
  const XML_Error error = XML_GetErrorCode(parser);
  if (failedToAllocate || error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  if (budget.status != Reason::kNone) return budget.status;
  // The parser's own limit, of 8 MB and a hundred times the page, is the tighter one for small
  // pages.
  if (error == XML_ERROR_AMPLIFICATION_LIMIT_BREACH) return Reason::kMarkupTooLarge;
  if (status != XML_STATUS_OK) {
    fault =
        "line " + std::to_string(XML_GetCurrentLineNumber(parser)) + ": " + XML_ErrorString(error);
  }
  return Reason::kNone;
}

}  // namespace

Reason ParseXhtmlPage(std::string_view xml, ReadingBudget& budget, PageContent& page,
                      std::string& fault, const ContentChoice& choice) {
  page = PageContent();
  fault.clear();
  HtmlContent content(page, budget, choice);
  const std::string declarations = EntityDeclarations(xml, budget);
  Reason reason = XhtmlReading(content, budget, declarations).Read(xml, fault);
  if (reason == Reason::kNone && fault.empty()) {
    content.Finish();
    reason = budget.status;
  }
  if (reason != Reason::kNone || !fault.empty()) {
    page = PageContent();
    return reason;
  }
  return content.asksForNoindex() ? Reason::kNoindex : Reason::kNone;
}

}  // namespace vela::indexer
