#include "indexer/config/element_selector.h"

#include <algorithm>
#include <utility>

#include "indexer/words/encode_character.h"
#include "indexer/words/lower_copy.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kBlanks = " \t";

bool IsNameCharacter(char c) {
  return IsAlphaNumeric(c) || c == '-' || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

std::string_view Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// After the first fault nothing is read any more.
class SelectorParser {
 public:
  SelectorParser(std::string_view text, SelectorFault& fault) : text_(text), fault_(fault) {}

  std::vector<ElementSelector> List() {
    std::vector<ElementSelector> list;
    do {
      list.push_back(Selector());
    } while (Takes(','));
    if (!failed() && at_ < text_.size()) Fail(at_, UnknownText());
    if (failed()) list.clear();
    return list;
  }

 private:
  bool failed() const { return !fault_.what.empty(); }
  char Next() const { return at_ < text_.size() ? text_[at_] : '\0'; }

  void Fail(size_t at, std::string what) {
    if (failed()) return;
    fault_ = {at, std::move(what)};
  }

  bool Takes(char c) {
    if (failed() || Next() != c) return false;
    ++at_;
    return true;
  }

  void PassBlanks() { at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size()); }

  // Why a selector cannot go on here.
  std::string UnknownText() const {
    switch (Next()) {
      case '+':
      case '~':
        return "Elements beside others are not told apart: only a blank and > can stand between.";
      case ':':
        return "Of what begins with a colon only :not(...) is known.";
      case '|':
        return "Namespaces are not known.";
      case '/':
        return "A remark cannot stand in a selector.";
      default:
        return "The name of an element, *, .class, #id or [attribute] must stand here.";
    }
  }

  ElementSelector Selector() {
    ElementSelector selector;
    PassBlanks();
    const size_t begin = at_;
    bool isChild = false;
    while (!failed()) {
      selector.parts.push_back(Compound());
      selector.parts.back().isChild = isChild;
      const size_t behind = at_;
      PassBlanks();
      isChild = Takes('>');
      if (isChild) PassBlanks();
      if (!isChild && (Next() == ',' || at_ == text_.size() || at_ == behind)) break;
    }
    selector.text = Trimmed(text_.substr(begin, at_ - begin));
    return selector;
  }

  CompoundSelector Compound() {
    CompoundSelector compound;
    const size_t begin = at_;
    if (!Takes('*') && BeginsName()) compound.tests.push_back(ElementName());
    while (!failed()) {
      if (text_.substr(at_).starts_with(":not(")) {
        AddNegated(compound);
      } else if (Next() == '.' || Next() == '#' || Next() == '[') {
        compound.tests.push_back(Simple());
      } else {
        break;
      }
    }
    if (at_ == begin) Fail(at_, UnknownText());
    return compound;
  }

  // None of the list holds.
  void AddNegated(CompoundSelector& compound) {
    at_ += std::string_view(":not(").size();
    do {
      PassBlanks();
      SimpleSelector simple = BeginsName() ? ElementName() : Simple();
      simple.isNegated = true;
      compound.tests.push_back(std::move(simple));
      PassBlanks();
    } while (Takes(','));
    if (!Takes(')')) Fail(at_, "In :not(...) a single element, class, id or attribute must stand.");
  }

  SimpleSelector ElementName() {
    return {.kind = SimpleSelector::Kind::kElement, .name = LowerAsciiCopy(Name()), .value = {}};
  }

  SimpleSelector Simple() {
    if (Takes('.')) return {.kind = SimpleSelector::Kind::kClass, .name = Name(), .value = {}};
    if (Takes('#')) return {.kind = SimpleSelector::Kind::kId, .name = Name(), .value = {}};
    if (Takes('[')) return Attribute();
    Fail(at_, UnknownText());
    return {};
  }

  SimpleSelector Attribute() {
    SimpleSelector simple = {.kind = SimpleSelector::Kind::kAttribute, .name = {}, .value = {}};
    PassBlanks();
    simple.name = LowerAsciiCopy(Name());
    PassBlanks();
    if (Takes(']')) return simple;
    simple.test = Comparison();
    PassBlanks();
    simple.value = Next() == '"' || Next() == '\'' ? Quoted() : Name();
    PassBlanks();
    const char flag = ToLowerAscii(Next());
    if (flag == 'i' || flag == 's') {
      ++at_;
      PassBlanks();
      simple.ignoresCase = flag == 'i';
      if (simple.ignoresCase) simple.value = LowerAsciiCopy(simple.value);
    }
    if (!Takes(']')) Fail(at_, "The bracket that ends the attribute is missing.");
    return simple;
  }

  ValueTest Comparison() {
    constexpr struct {
      std::string_view sign;
      ValueTest test;
    } kSigns[] = {{"=", ValueTest::kEqual},       {"~=", ValueTest::kHoldsWord},
                  {"|=", ValueTest::kBeginsName}, {"^=", ValueTest::kBegins},
                  {"$=", ValueTest::kEnds},       {"*=", ValueTest::kHolds}};
    for (const auto& each : kSigns) {
      if (failed() || !text_.substr(at_).starts_with(each.sign)) continue;
      at_ += each.sign.size();
      return each.test;
    }
    Fail(at_, "Behind the name of the attribute ], =, ~=, |=, ^=, $= or *= must stand.");
    return ValueTest::kAny;
  }

  // A name of digits alone, or one that begins with a digit, is none.
  bool BeginsName() const {
    const size_t first = Next() == '-' ? at_ + 1 : at_;
    if (first >= text_.size()) return false;
    const char c = text_[first];
    return c == '\\' || (IsNameCharacter(c) && !IsDigit(c));
  }

  std::string Name() {
    std::string name;
    if (!failed() && !BeginsName()) {
      Fail(at_, "A name must stand here; other texts stand in quotes: [id=\"4\"].");
    }
    while (!failed() && (IsNameCharacter(Next()) || Next() == '\\')) AddCharacter(name);
    return name;
  }

  std::string Quoted() {
    const size_t begin = at_;
    const char quote = text_[at_++];
    std::string value;
    while (!failed() && at_ < text_.size() && Next() != quote) AddCharacter(value);
    if (!Takes(quote)) Fail(begin, "The quote at the end of the text is missing.");
    return value;
  }

  // One byte, or the character that stands escaped behind "\".
  void AddCharacter(std::string& out) {
    if (Next() != '\\') {
      out += text_[at_++];
      return;
    }
    const size_t begin = at_++;
    constexpr size_t kDigitLimit = 6;
    char32_t code = 0;
    size_t digits = 0;
    for (; digits < kDigitLimit && HexDigitValue(Next()) >= 0; ++digits) {
      code = code * 16 + static_cast<char32_t>(HexDigitValue(text_[at_++]));
    }
    if (digits == 0) {
      if (at_ == text_.size()) return Fail(begin, "A character must stand behind the backslash.");
      out += text_[at_++];
      return;
    }
    Takes(' ');  // ends the number
    const bool isCharacter = code != 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
    if (!isCharacter) return Fail(begin, "There is no such character.");
    char bytes[kCharacterBytesLimit];
    out.append(bytes, EncodeCharacter(code, bytes));
  }

  std::string_view text_;
  SelectorFault& fault_;
  size_t at_ = 0;
};

}  // namespace

std::vector<ElementSelector> ParseSelectors(std::string_view text, SelectorFault& fault) {
  fault = {};
  return SelectorParser(text, fault).List();
}

}  // namespace vela::indexer
