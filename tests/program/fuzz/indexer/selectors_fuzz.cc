// selectors_fuzz.cc: selectors of elements. Input: a line of selectors, then markup.
//
// Which elements fit is compared with what is found by looking through all that is open around
// each.
#include <algorithm>
#include <string>
#include <vector>

#include "indexer/config/element_selector.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/content_choice.h"
#include "indexer/extract/html_page.h"
#include "indexer/extract/selector_set.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/lower_copy.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/page_content.h"

namespace vela::fuzz {
namespace {

using namespace indexer;

bool HasWord(std::string_view words, std::string_view word) {
  std::string padded = " ";
  for (const char c : words) padded += kMarkupBlanks.find(c) == kMarkupBlanks.npos ? c : ' ';
  padded += ' ';
  const bool isWord = !word.empty() && word.find_first_of(kMarkupBlanks) == word.npos;
  return isWord && padded.find(" " + std::string(word) + " ") != padded.npos;
}

bool HoldsOf(const SimpleSelector& simple, const Tag& tag) {
  std::string room;
  if (simple.kind == SimpleSelector::Kind::kElement) return LowerAsciiCopy(tag.name) == simple.name;
  if (simple.kind == SimpleSelector::Kind::kId) {
    return HasAttribute(tag, Attribute::kId) && AttributeValue(tag, Attribute::kId) == simple.name;
  }
  if (simple.kind == SimpleSelector::Kind::kClass) {
    return HasWord(AttributeValue(tag, Attribute::kClass), simple.name);
  }
  const Attribute known = FindAttribute(simple.name);
  std::string value;
  if (known != Attribute::kCount) {
    if (!HasAttribute(tag, known)) return false;
    value = AttributeValue(tag, known);
  } else {
    const size_t place = tag.asked->Find(simple.name);
    const auto asked = std::ranges::find(tag.askedValues, place, &Tag::AskedValue::name);
    if (asked == tag.askedValues.end()) return false;
    value = ResolvedValue(tag, *asked, room);
  }
  if (simple.ignoresCase) value = LowerAsciiCopy(value);
  const std::string& wanted = simple.value;
  switch (simple.test) {
    case ValueTest::kAny:
      return true;
    case ValueTest::kEqual:
      return value == wanted;
    case ValueTest::kHoldsWord:
      return HasWord(value, wanted);
    case ValueTest::kBeginsName:
      return value == wanted || value.starts_with(wanted + "-");
    case ValueTest::kBegins:
      return !wanted.empty() && value.find(wanted) == 0;
    case ValueTest::kEnds:
      return !wanted.empty() && value.ends_with(wanted);
    case ValueTest::kHolds:
      return !wanted.empty() && value.find(wanted) != value.npos;
  }
  return false;
}

// Whether the first `parts` of the selector fit the last of the elements.
bool FitsFrom(const ElementSelector& selector, size_t parts, const std::vector<Tag>& elements,
              size_t count) {
  const CompoundSelector& part = selector.parts[parts - 1];
  for (const SimpleSelector& simple : part.tests) {
    if (HoldsOf(simple, elements[count - 1]) == simple.isNegated) return false;
  }
  if (parts == 1) return true;
  for (size_t around = count - 1; around > 0; --around) {
    if (FitsFrom(selector, parts - 1, elements, around)) return true;
    if (part.isChild) break;
  }
  return false;
}

void CheckMatching(const std::vector<ElementSelector>& selectors, std::string_view html) {
  constexpr size_t kDepthLimit = 8;  // the comparison takes a power of it
  constexpr size_t kPartsLimit = 6;
  SelectorSet set;
  for (const ElementSelector& each : selectors) {
    if (each.parts.size() > kPartsLimit) return;
    set.Add(each, SelectorUse::kExclude);
  }
  ReadingBudget budget;
  HtmlTokens tokens(html, budget, &set.askedAttributes());
  SelectorMatching matching(set, budget);
  std::vector<Tag> elements;
  std::vector<SelectorPath> paths = {{}};
  for (;;) {
    const TokenKind kind = tokens.Next(false);
    if (kind == TokenKind::kEnd) return;
    if (kind == TokenKind::kEndTag && !elements.empty()) {
      elements.pop_back();
      paths.pop_back();
    }
    if (kind != TokenKind::kStartTag || elements.size() == kDepthLimit) continue;
    elements.push_back(tokens.tag());
    const SelectorFit fit = matching.Fit(tokens.tag(), paths.back());
    bool expected = false;
    for (const ElementSelector& each : selectors) {
      expected = expected || FitsFrom(each, each.parts.size(), elements, elements.size());
    }
    VELA_CHECK(fit.isExcluded == expected);
    paths.push_back({fit.parts, paths.back().ancestors | fit.parts});
  }
}

std::string TextOf(const ContentRule& rule, std::string_view html) {
  SiteConfig config;
  config.content = rule;
  const ContentChoices choices(config, "/");
  ReadingBudget budget = StartReading({}, html.size());
  PageContent page;
  if (ParseHtmlPage(html, budget, page, choices.Of("/")) != Reason::kNone) return {};
  CheckPage(page);
  return Listing(page);
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela::indexer;
  using namespace vela::fuzz;
  constexpr size_t kBytesLimit = 20000;
  std::string_view input = Text(data, size);
  if (size > kBytesLimit || !IsValidUtf8(input)) return 0;
  const std::string_view line = TakeLine(input);
  SelectorFault fault;
  std::vector<ElementSelector> selectors = ParseSelectors(line, fault);
  VELA_CHECK(fault.at <= line.size());
  VELA_CHECK(selectors.empty() == !fault.what.empty());
  size_t outerParts = 0;
  for (const ElementSelector& each : selectors) {
    // What messages name is the selector itself.
    SelectorFault none;
    const std::vector<ElementSelector> again = ParseSelectors(each.text, none);
    VELA_CHECK(again.size() == 1 && again[0].parts.size() == each.parts.size());
    outerParts += each.parts.size() - 1;
  }
  if (outerParts > kOuterPartsLimit) return 0;
  CheckMatching(selectors, input);
  ContentRule rule;
  rule.excludeElements = selectors;
  rule.prefersMain = true;
  const std::string excluded = TextOf(rule, input);
  VELA_CHECK(excluded == TextOf(rule, input));
  std::swap(rule.excludeElements, rule.onlyElements);
  TextOf(rule, input);
  return 0;
}
