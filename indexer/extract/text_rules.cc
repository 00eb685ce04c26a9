#include "indexer/extract/text_rules.h"

#include <algorithm>
#include <string>

#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";

std::string_view Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// Takes the first declaration off, up to the ";" that is in no quotes, brackets or comment.
// Comments become nothing.
std::string TakeDeclaration(std::string_view& style) {
  std::string declaration;
  char quote = '\0';
  int32_t brackets = 0;
  size_t at = 0;
  for (; at < style.size(); ++at) {
    const char c = style[at];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (style.substr(at, 2) == "/*") {
      at = std::min(style.find("*/", at + 2), style.size() - 2) + 1;
      continue;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '(') {
      ++brackets;
    } else if (c == ')' && brackets > 0) {
      --brackets;
    } else if (c == ';' && brackets == 0) {
      break;
    }
    declaration += c;
  }
  style.remove_prefix(std::min(at + 1, style.size()));
  return declaration;
}

// The value of one property so far.
struct StyleValue {
  bool hides = false;
  bool isImportant = false;

  void Set(bool nowHides, bool nowImportant) {
    if (isImportant && !nowImportant) return;
    hides = nowHides;
    isImportant = nowImportant;
  }
};

}  // namespace

TextState StateInside(const TextState& around, const ElementRole& role) {
  TextState inside = around;
  inside.isLeftOut = around.isLeftOut || role.leavesOut;
  inside.isInert = around.isInert || role.isInert;
  inside.isInLink = around.isInLink || role.isLink;
  inside.isOfPage = around.isOfPage && !role.enclosesContent;
  if (role.headingLevel != 0) inside.style.headingLevel = role.headingLevel;
  if (role.section != 0) inside.style.section = role.section;
  if (role.isFrame) {
    inside.isInHeader =
        role.isHeader && (around.style.share == TextShare::kContent || around.isInHeader);
    inside.style.share = TextShare::kFrame;
  }
  if (role.isHeadline) inside.style.share = TextShare::kHeadline;
  if (role.weight != kWeightOfHeading) inside.style.weight = role.weight;
  if (role.isMain && inside.style.region == TextRegion::kPage) {
    inside.style.region = TextRegion::kMain;
  }
  if (role.isChosen) {
    inside.style.region = TextRegion::kChosen;
    inside.style.share = TextShare::kContent;
    inside.isInHeader = false;
  }
  inside.isInNavigation = around.isInNavigation || role.isNavigation;
  if (role.part != 0 || role.isChosen || role.isHeadline) inside.part = role.part;
  inside.path = {role.selectorParts, around.path.ancestors | role.selectorParts};
  return inside;
}

bool HoldsWord(std::string_view text, std::string_view word) {
  constexpr std::string_view kSeparators = " ,;\t\r\n";
  size_t at = text.find_first_not_of(kSeparators);
  while (at < text.size()) {
    const size_t end = std::min(text.find_first_of(kSeparators, at), text.size());
    if (text.substr(at, end - at) == word) return true;
    at = text.find_first_not_of(kSeparators, end);
  }
  return false;
}

bool HidesByStyle(std::string_view style) {
  StyleValue display;
  StyleValue visibility;
  while (!style.empty()) {
    const std::string declaration = LowerAsciiCopy(TakeDeclaration(style));
    const size_t colon = declaration.find(':');
    if (colon == declaration.npos) continue;
    const std::string_view property = Trimmed(std::string_view(declaration).substr(0, colon));
    std::string_view value = Trimmed(std::string_view(declaration).substr(colon + 1));
    const size_t mark = value.rfind('!');
    const bool isImportant = mark != value.npos && Trimmed(value.substr(mark + 1)) == "important";
    if (isImportant) value = Trimmed(value.substr(0, mark));
    if (property == "display") display.Set(value == "none", isImportant);
    if (property == "visibility") visibility.Set(value == "hidden", isImportant);
  }
  return display.hides || visibility.hides;
}

bool IsHidden(const Tag& tag) {
  if (tag.element == Element::kHtml || tag.element == Element::kBody) return false;
  if (HasAttribute(tag, Attribute::kHidden) &&
      // The text comes into sight when a visitor searches for it.
      LowerAsciiCopy(AttributeValue(tag, Attribute::kHidden)) != "until-found") {
    return true;
  }
  if (LowerAsciiCopy(AttributeValue(tag, Attribute::kAriaHidden)) == "true") return true;
  return HasAttribute(tag, Attribute::kStyle) &&
         HidesByStyle(AttributeValue(tag, Attribute::kStyle));
}

}  // namespace vela::indexer
