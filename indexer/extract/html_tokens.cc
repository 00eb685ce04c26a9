#include "indexer/extract/html_tokens.h"

#include <algorithm>
#include <bit>

#include "indexer/words/find_byte.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

bool IsMarkupBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r' && c != '\v'); }

bool EndsName(char c) { return IsMarkupBlank(c) || c == '/' || c == '>'; }

bool SameLetters(std::string_view a, std::string_view b) {
  return std::ranges::equal(
      a, b, {}, [](char c) { return ToLowerAscii(c); }, [](char c) { return ToLowerAscii(c); });
}

// In the order of `Attribute`.
constexpr std::string_view kAttributeNames[] = {
    "alt",
    "aria-hidden",
    "charset",
    "class",
    "color",
    "content",
    "data-vela-body",
    "data-vela-ignore",
    "data-vela-weight",
    "datetime",
    "encoding",
    "face",
    "hidden",
    "href",
    "http-equiv",
    "id",
    "itemprop",
    "itemscope",
    "itemtype",
    "lang",
    "name",
    "property",
    "rel",
    "role",
    "size",
    "src",
    "style",
    "type",
    "xml:lang",
};
static_assert(std::size(kAttributeNames) == static_cast<size_t>(Attribute::kCount));

constexpr size_t kLongestName =
    std::ranges::max(kAttributeNames, {}, &std::string_view::size).size();

// The attributes whose names have a length, a bit each.
constexpr auto kOfLength = [] {
  std::array<uint32_t, kLongestName + 1> ofLength{};
  for (size_t i = 0; i < std::size(kAttributeNames); ++i) {
    ofLength[kAttributeNames[i].size()] |= 1U << i;
  }
  return ofLength;
}();

std::string_view Resolved(const Tag& tag, std::string_view given, std::string& room) {
  if (tag.valuesAreText || given.find('&') == given.npos) return given;
  room.clear();
  AppendResolved(given, true, room);
  return room;
}

}  // namespace

std::string AttributeValue(const Tag& tag, Attribute attribute) {
  if (!HasAttribute(tag, attribute)) return {};
  const std::string_view given = tag.values[static_cast<size_t>(attribute)];
  if (tag.valuesAreText) return std::string(given);
  std::string value;
  AppendResolved(given, true, value);
  return value;
}

std::string_view ResolvedValue(const Tag& tag, Attribute attribute, std::string& room) {
  if (!HasAttribute(tag, attribute)) return {};
  return Resolved(tag, tag.values[static_cast<size_t>(attribute)], room);
}

std::string_view ResolvedValue(const Tag& tag, const Tag::AskedValue& asked, std::string& room) {
  return Resolved(tag, asked.value, room);
}

size_t AttributeNames::Find(std::string_view name) const {
  const auto found = std::ranges::find_if(names_, [name](const std::string& known) {
    return known.size() == name.size() && SameLetters(known, name);
  });
  return found == names_.end() ? kNone : static_cast<size_t>(found - names_.begin());
}

Attribute FindAttribute(std::string_view name) {
  if (name.size() > kLongestName) return Attribute::kCount;
  for (uint32_t left = kOfLength[name.size()]; left != 0; left &= left - 1) {
    const auto i = static_cast<size_t>(std::countr_zero(left));
    if (SameLetters(kAttributeNames[i], name)) return static_cast<Attribute>(i);
  }
  return Attribute::kCount;
}

void AddAttribute(std::string_view name, std::string_view value, Tag& tag) {
  const Attribute attribute = FindAttribute(name);
  if (attribute != Attribute::kCount) {
    if (!HasAttribute(tag, attribute)) tag.values[static_cast<size_t>(attribute)] = value;
    tag.present |= 1U << static_cast<uint32_t>(attribute);
  } else if (tag.asked != nullptr) {
    const size_t place = tag.asked->Find(name);
    if (place == AttributeNames::kNone) return;
    if (std::ranges::find(tag.askedValues, place, &Tag::AskedValue::name) != tag.askedValues.end())
      return;
    tag.askedValues.push_back({place, value});
  }
}

// The place of `c`, or the end of the page.
size_t HtmlTokens::Find(char c, size_t from) const { return FindByte(html, c, from); }

TokenKind HtmlTokens::Next(bool inForeign) {
  const size_t from = at;
  const size_t known = std::max(textEnd, at);
  const TokenKind kind = Cut(inForeign);
  // What the search for the end of the text has seen, and what has been cut off.
  TakeSteps(budget, 1 + (at - from) + (std::max(textEnd, known) - known));
  return kind;
}

TokenKind HtmlTokens::Cut(bool inForeign) {
  while (at < html.size()) {
    if (at < textEnd) return ReadText();
    if (html[at] != '<') {
      textEnd = Find('<', at);
      return ReadText();
    }
    const char next = At(at + 1);
    if (IsAlpha(next)) {
      if (ReadTag(at + 1, true)) return TokenKind::kStartTag;
    } else if (next == '/' && IsAlpha(At(at + 2))) {
      if (ReadTag(at + 2, false)) return TokenKind::kEndTag;
    } else if (next == '/' && At(at + 2) == '>') {
      at += 3;
    } else if (next == '!' && html.substr(at + 2, 2) == "--") {
      return PassComment(at + 4);
    } else if (next == '!' && SameLetters(html.substr(at + 2, 7), "doctype")) {
      return PassTo('>', at + 9, TokenKind::kDoctype);
    } else if (next == '!' && inForeign && html.substr(at + 2, 7) == "[CDATA[") {
      const size_t begin = at + 9;
      const size_t end = std::min(html.find("]]>", begin), html.size());
      piece = html.substr(begin, end - begin);
      at = std::min(end + 3, html.size());
      if (!piece.empty()) return TokenKind::kText;
    } else if (next == '!' || next == '?' || (next == '/' && at + 2 < html.size())) {
      return PassTo('>', at + 2, TokenKind::kComment);
    } else {  // "<" that begins nothing
      textEnd = Find('<', at + 1);
      return ReadText();
    }
  }
  return TokenKind::kEnd;
}

// Up to `textEnd`: text to the next reference, or one reference.
TokenKind HtmlTokens::ReadText() {
  size_t end = at;
  if (html[at] == '&') {
    reference = ReadCharacterReference(html.substr(at, textEnd - at), false);
    if (reference.length != 0) {
      piece = std::string_view(reference.text, reference.textLength);
      at += reference.length;
      return TokenKind::kText;
    }
    ++end;
  }
  end = FindByte(html.substr(0, textEnd), '&', end);
  piece = html.substr(at, end - at);
  at = end;
  return TokenKind::kText;
}

// The comment's text begins at `contentAt`; it may be no longer than ">" or "->".
TokenKind HtmlTokens::PassComment(size_t contentAt) {
  const std::string_view content = html.substr(contentAt);
  remark = {};
  if (content.starts_with('>')) {
    at = contentAt + 1;
    return TokenKind::kComment;
  }
  if (content.starts_with("->")) {
    at = contentAt + 2;
    return TokenKind::kComment;
  }
  size_t end = Find('>', contentAt);
  for (; end < html.size(); end = Find('>', end + 1)) {
    remark = html.substr(contentAt, end - contentAt);
    if (remark.ends_with("--") || remark.ends_with("--!")) break;
  }
  remark = remark.substr(0, remark.rfind("--"));
  if (end == html.size()) remark = content;
  at = std::min(end + 1, html.size());
  return TokenKind::kComment;
}

TokenKind HtmlTokens::PassTo(char last, size_t from, TokenKind kind) {
  at = std::min(Find(last, std::min(from, html.size())) + 1, html.size());
  remark = {};
  return kind;
}

// False, and the rest of the page passed, when the tag has no end.
bool HtmlTokens::ReadTag(size_t nameAt, bool isStart) {
  size_t i = nameAt;
  while (i < html.size() && !EndsName(html[i])) ++i;
  current.name = html.substr(nameAt, i - nameAt);
  current.element = FindElement(current.name);
  current.closesItself = false;
  current.present = 0;
  current.askedValues.clear();
  while (i < html.size() && html[i] != '>') {
    if (IsMarkupBlank(html[i])) {
      ++i;
    } else if (html[i] == '/') {
      ++i;
      current.closesItself = At(i) == '>';
    } else {
      i = ReadAttribute(i, isStart);
    }
  }
  at = std::min(i + 1, html.size());
  return i < html.size();
}

// Returns the place behind the attribute.
size_t HtmlTokens::ReadAttribute(size_t nameAt, bool isStart) {
  size_t i = nameAt + 1;  // even "=" begins a name
  while (i < html.size() && html[i] != '=' && !EndsName(html[i])) ++i;
  const std::string_view name = html.substr(nameAt, i - nameAt);
  size_t behind = i;
  while (behind < html.size() && IsMarkupBlank(html[behind])) ++behind;
  std::string_view value;
  if (At(behind) == '=') {
    i = behind + 1;
    while (i < html.size() && IsMarkupBlank(html[i])) ++i;
    const char quote = At(i);
    if (quote == '"' || quote == '\'') {
      const size_t end = Find(quote, i + 1);
      value = html.substr(i + 1, end - i - 1);
      i = std::min(end + 1, html.size());
    } else {
      const size_t begin = i;
      while (i < html.size() && !IsMarkupBlank(html[i]) && html[i] != '>') ++i;
      value = html.substr(begin, i - begin);
    }
  }
  if (isStart) AddAttribute(name, value, current);
  return i;
}

// Whether the end tag of an element `name` stands at `tagAt`, the place of a "<".
bool HtmlTokens::EndsElement(size_t tagAt, std::string_view name) const {
  return At(tagAt + 1) == '/' && SameLetters(html.substr(tagAt + 2, name.size()), name) &&
         EndsName(At(tagAt + 2 + name.size()));
}

size_t HtmlTokens::EndOfRawText(std::string_view name) const {
  size_t end = Find('<', at);
  while (end < html.size() && !EndsElement(end, name)) end = Find('<', end + 1);
  return end;
}

// A comment in a script may hold the tags of another script.
size_t HtmlTokens::EndOfScript() const {
  constexpr std::string_view kName = "script";
  enum { kScript, kComment, kInnerScript } state = kScript;
  for (size_t i = at; i < html.size(); ++i) {
    if (state == kScript) i = Find('<', i);
    if (At(i) == '<') {
      if (EndsElement(i, kName)) {
        if (state != kInnerScript) return i;
        state = kComment;
      } else if (state == kScript && html.substr(i, 4) == "<!--") {
        state = kComment;
        ++i;  // its hyphens may end it: "<!-->"
      } else if (state == kComment && SameLetters(html.substr(i + 1, kName.size()), kName) &&
                 EndsName(At(i + 1 + kName.size()))) {
        state = kInnerScript;
      }
    } else if (At(i) == '-' && html.substr(i, 3) == "-->") {
      state = kScript;
    }
  }
  return html.size();
}

std::string_view HtmlTokens::TakeRawText() {
  const size_t begin = at;
  const size_t end =
      current.element == Element::kScript ? EndOfScript() : EndOfRawText(current.name);
  at = end;
  if (end < html.size()) ReadTag(end + 2, false);
  TakeSteps(budget, at - begin);
  return html.substr(begin, end - begin);
}

std::string_view HtmlTokens::TakeRest() {
  const std::string_view rest = html.substr(at);
  at = html.size();
  TakeSteps(budget, rest.size());
  return rest;
}

}  // namespace vela::indexer
