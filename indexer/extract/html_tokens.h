// html_tokens.h: markup cut into text, tags, comments and document types, as the HTML standard has
// it. Nothing is copied: tokens point into the page.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "indexer/extract/character_references.h"
#include "indexer/extract/html_elements.h"
#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

// The attributes that the reading of a page asks for; of all others those alone are kept that
// somebody asks for (AttributeNames).
enum class Attribute : uint8_t {
  kAlt,
  kAriaHidden,
  kCharset,
  kClass,
  kColor,
  kContent,
  kDataVelaBody,
  kDataVelaIgnore,
  kDataVelaWeight,
  kDatetime,
  kEncoding,
  kFace,
  kHidden,
  kHref,
  kHttpEquiv,
  kId,
  kItemprop,
  kItemscope,
  kItemtype,
  kLang,
  kName,
  kProperty,
  kRel,
  kRole,
  kSize,
  kSrc,
  kStyle,
  kType,
  kXmlLang,
  kCount
};

// Names of further attributes, in the order in which they were added.
class AttributeNames {
 public:
  static constexpr size_t kNone = SIZE_MAX;

  // In lower case.
  void Add(std::string name) { names_.push_back(std::move(name)); }
  // The place of a name in either case, or kNone.
  size_t Find(std::string_view name) const;
  bool empty() const { return names_.empty(); }

 private:
  std::vector<std::string> names_;
};

struct Tag {
  Element element = Element::kOther;
  std::string_view name;      // as in the page, in either case
  bool closesItself = false;  // "/>"
  uint32_t present = 0;       // a bit for each Attribute
  std::array<std::string_view, static_cast<size_t>(Attribute::kCount)> values;  // of those, as in
                                                                                // the page
  bool valuesAreText = false;  // references in them are resolved already

  struct AskedValue {
    size_t name;  // its place in `asked`
    std::string_view value;
  };
  const AttributeNames* asked = nullptr;  // not owned; null: there are none
  std::vector<AskedValue> askedValues;    // of those, each once
};

// Of several attributes of one name, the first counts.
inline bool HasAttribute(const Tag& tag, Attribute attribute) {
  return (tag.present >> static_cast<uint32_t>(attribute) & 1) != 0;
}

// The attribute of a name in letters of either case; kCount when it is none of them.
Attribute FindAttribute(std::string_view name);

// Gives the tag an attribute, unless it has one of that name or nobody asks for it. `name` is in
// either case.
void AddAttribute(std::string_view name, std::string_view value, Tag& tag);

// The value with its character references resolved; empty when there is none.
std::string AttributeValue(const Tag& tag, Attribute attribute);

// The same without a copy where there are no references: the result points into the tag or into
// `room`.
std::string_view ResolvedValue(const Tag& tag, Attribute attribute, std::string& room);

// The same of one of `tag.askedValues`.
std::string_view ResolvedValue(const Tag& tag, const Tag::AskedValue& asked, std::string& room);

enum class TokenKind : uint8_t { kText, kStartTag, kEndTag, kComment, kDoctype, kEnd };

// White space of markup. A carriage return is a blank like any other to all who read the text, so
// line ends are not made one kind.
constexpr std::string_view kMarkupBlanks = " \t\n\r\f";

class HtmlTokens {
 public:
  // All must outlive this. Tags get the attributes of `asked`, too; null: there are none. The steps
  // taken are counted in `takenFrom`; whether it allows more, the caller asks.
  HtmlTokens(std::string_view page, ReadingBudget& takenFrom, const AttributeNames* asked = nullptr)
      : html(page), budget(takenFrom) {
    current.asked = asked;
  }

  // Moves to the next token. `inForeign`: CDATA sections are text, as in drawings and formulas;
  // elsewhere they are comments. A tag without an end is none.
  TokenKind Next(bool inForeign);

  // Of kText: a stretch of text, never empty, references resolved; the text between two tags may
  // come in several. Valid until the next call.
  std::string_view text() const { return piece; }
  // Of kComment: what it says; of what is no comment but is passed like one, nothing.
  std::string_view comment() const { return remark; }
  // Of kStartTag and kEndTag (which has no attributes). Valid until the next call.
  const Tag& tag() const { return current; }

  // Behind a start tag whose element holds only characters: its content, as in the page, up to its
  // end tag or the end of the page. The end tag is passed.
  std::string_view TakeRawText();
  // All that is left of the page, as plain text.
  std::string_view TakeRest();

 private:
  size_t Find(char c, size_t from) const;
  char At(size_t i) const { return i < html.size() ? html[i] : '\0'; }
  TokenKind Cut(bool inForeign);
  TokenKind ReadText();
  TokenKind PassComment(size_t contentAt);
  TokenKind PassTo(char last, size_t from, TokenKind kind);
  bool ReadTag(size_t nameAt, bool isStart);
  size_t ReadAttribute(size_t nameAt, bool isStart);
  bool EndsElement(size_t tagAt, std::string_view name) const;
  size_t EndOfRawText(std::string_view name) const;
  size_t EndOfScript() const;

  std::string_view html;
  ReadingBudget& budget;
  size_t at = 0;
  size_t textEnd = 0;  // up to here all is text, references aside
  std::string_view piece;
  std::string_view remark;
  CharacterReference reference;
  Tag current;
};

}  // namespace vela::indexer
