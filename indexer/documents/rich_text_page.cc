#include "indexer/documents/rich_text_page.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "indexer/documents/paragraphs.h"
#include "indexer/extract/meta_elements.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/encode_character.h"
#include "indexer/words/lower_copy.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr size_t kGroupLimit = 5000;  // in one another; no document comes near
constexpr size_t kPropertyLimit = 20000;
constexpr uint8_t kLowestHeading = 6;
constexpr int32_t kWestern = 1252;

// Where the text of a group goes.
enum class Destination : uint8_t {
  kBody,
  kNowhere,
  kFonts,
  kStyles,
  kProperties,  // the group around them
  kTitle,
  kAuthor,
  kSubject,
  kKeywords,
  kComment,
  kCreated,
  kRevised,
};

struct NamedDestination {
  std::string_view word;
  Destination destination;
};
constexpr NamedDestination kDestinations[] = {
    {"author", Destination::kAuthor},      {"bkmkend", Destination::kNowhere},
    {"bkmkstart", Destination::kNowhere},  {"colortbl", Destination::kNowhere},
    {"comment", Destination::kNowhere},    {"creatim", Destination::kCreated},
    {"doccomm", Destination::kComment},    {"fldinst", Destination::kNowhere},
    {"fonttbl", Destination::kFonts},      {"footer", Destination::kNowhere},
    {"footerf", Destination::kNowhere},    {"footerl", Destination::kNowhere},
    {"footerr", Destination::kNowhere},    {"header", Destination::kNowhere},
    {"headerf", Destination::kNowhere},    {"headerl", Destination::kNowhere},
    {"headerr", Destination::kNowhere},    {"info", Destination::kProperties},
    {"keywords", Destination::kKeywords},  {"listtext", Destination::kNowhere},
    {"nonshppict", Destination::kNowhere}, {"object", Destination::kNowhere},
    {"operator", Destination::kNowhere},   {"pict", Destination::kNowhere},
    {"pntext", Destination::kNowhere},     {"revtim", Destination::kRevised},
    {"rxe", Destination::kNowhere},        {"stylesheet", Destination::kStyles},
    {"subject", Destination::kSubject},    {"tc", Destination::kNowhere},
    {"title", Destination::kTitle},        {"txe", Destination::kNowhere},
    {"xe", Destination::kNowhere},
};

// Words that stand for characters.
constexpr std::pair<std::string_view, std::string_view> kSigns[] = {
    {"bullet", "\u2022"}, {"cell", " "},           {"column", " "},
    {"emdash", "\u2014"}, {"emspace", " "},        {"endash", "\u2013"},
    {"enspace", " "},     {"ldblquote", "\u201C"}, {"line", " "},
    {"lquote", "\u2018"}, {"nestcell", " "},       {"page", " "},
    {"qmspace", " "},     {"rdblquote", "\u201D"}, {"row", " "},
    {"rquote", "\u2019"}, {"softline", " "},       {"tab", " "},
};

// The number of the character set that a font names; kWestern for one that is not known.
int32_t CodepageOf(int32_t fontCharset) {
  constexpr std::pair<int32_t, int32_t> kSets[] = {
      {128, 932},  {129, 949},  {134, 936},  {136, 950},  {161, 1253}, {162, 1254}, {163, 1258},
      {177, 1255}, {178, 1256}, {186, 1257}, {204, 1251}, {222, 874},  {238, 1250},
  };
  for (const auto& [set, codepage] : kSets) {
    if (set == fontCharset) return codepage;
  }
  return kWestern;
}

void AppendCharacter(char32_t c, std::string& out) {
  char bytes[kCharacterBytesLimit];
  out.append(bytes, EncodeCharacter(c, bytes));
}

// Bytes of Windows' character sets by their numbers.
class Codepages {
 public:
  std::string ToUtf8(int32_t codepage, std::string_view bytes) {
    UConverter* converter = Find(codepage);
    if (converter == nullptr) return std::string(bytes.size(), ' ');
    std::u16string wide(bytes.size() * 2 + 1, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(converter, wide.data(), static_cast<int32_t>(wide.size()),
                                         bytes.data(), static_cast<int32_t>(bytes.size()), &status);
    if (U_FAILURE(status)) return std::string(bytes.size(), ' ');
    std::string out;
    for (int32_t i = 0; i < length; ++i) {
      const char32_t c = wide[static_cast<size_t>(i)];
      const bool isPair = c >= 0xD800 && c < 0xDC00 && i + 1 < length;
      if (isPair) ++i;
      AppendCharacter(
          isPair ? 0x10000 + ((c - 0xD800) << 10) + (wide[static_cast<size_t>(i)] - 0xDC00U) : c,
          out);
    }
    return out;
  }

 private:
  using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

  UConverter* Find(int32_t codepage) {
    const auto found = converters_.find(codepage);
    if (found != converters_.end()) return found->second.get();
    std::string name = codepage == 10000 ? "macintosh" : "windows-" + std::to_string(codepage);
    UErrorCode status = U_ZERO_ERROR;
    Converter opened(ucnv_open(name.c_str(), &status), &ucnv_close);
    if (U_FAILURE(status)) {
      name = "cp" + std::to_string(codepage);
      status = U_ZERO_ERROR;
      opened.reset(ucnv_open(name.c_str(), &status));
    }
    return converters_.emplace(codepage, std::move(opened)).first->second.get();
  }

  std::map<int32_t, Converter> converters_;
};

struct Group {
  Destination destination = Destination::kBody;
  bool isHidden = false;
  int32_t afterUnicode =
      1;  // characters that stand for one in \u, for programs that cannot read it
  int32_t codepage = kWestern;
  uint8_t level = 0;  // heading level of the paragraph
};

class RichTextReader {
 public:
  RichTextReader(std::string_view bytes, ReadingBudget& taken, PageContent& filled)
      : rest_(bytes), budget_(taken), page_(filled), paragraphs_(taken) {}

  Reason Read();

 private:
  struct Date {
    int32_t year = 0, month = 0, day = 0;
  };

  void Open();
  void Close();
  void Control();
  void ControlSign(char sign);
  void ControlWord(std::string_view word, std::optional<int32_t> number);
  bool SetDestination(std::string_view word);
  void SetFact(std::string_view word, int32_t number);
  void Unicode(int32_t number);
  void AddByte(char byte);
  void FlushBytes();
  void AddText(std::string_view text);
  void SetLevel(uint8_t level);
  void EndParagraph();
  void EndProperty(Destination destination);
  void EndStyle();

  Group& at() { return groups_.back(); }

  std::string_view rest_;
  ReadingBudget& budget_;
  PageContent& page_;
  Paragraphs paragraphs_;
  Codepages codepages_;
  std::vector<Group> groups_;
  std::string bytes_;                  // of the character set at hand, not yet converted
  char16_t highHalf_ = 0;              // of a character in two \u
  int32_t toSkip_ = 0;                 // characters that stand for the one before
  bool isOptional_ = false;            // behind "\*": what is not known is to be passed over
  int32_t codepage_ = kWestern;        // of the document
  std::map<int32_t, int32_t> fonts_;   // character set by number
  int32_t font_ = 0;                   // that is being described
  std::map<int32_t, uint8_t> styles_;  // heading level by number
  int32_t style_ = 0;                  // that is being described
  uint8_t styleLevel_ = 0;
  std::string property_;  // or name of a style
  Date date_;
};

void RichTextReader::Open() {
  FlushBytes();
  groups_.push_back(groups_.empty() ? Group{.codepage = codepage_} : at());
  isOptional_ = false;
}

void RichTextReader::Close() {
  FlushBytes();
  if (groups_.empty()) return;
  const Group closed = at();
  groups_.pop_back();
  const Destination around = groups_.empty() ? Destination::kNowhere : at().destination;
  if (closed.destination == Destination::kStyles) EndStyle();
  if (closed.destination != around) EndProperty(closed.destination);
  if (!groups_.empty() && closed.level != at().level && closed.destination == Destination::kBody) {
    paragraphs_.SetLevel(at().level);
  }
  isOptional_ = false;
}

void RichTextReader::EndStyle() {
  std::string name = LowerAsciiCopy(property_);
  property_.clear();
  while (name.ends_with(';') || name.ends_with(' ')) name.pop_back();
  constexpr std::string_view kHeading = "heading ";
  uint8_t level = styleLevel_;
  if (name == "title") level = 1;
  if (name.size() == kHeading.size() + 1 && name.starts_with(kHeading) && name.back() >= '1' &&
      name.back() <= '0' + kLowestHeading) {
    level = static_cast<uint8_t>(name.back() - '0');
  }
  if (level != 0) styles_[style_] = level;
  style_ = 0;
  styleLevel_ = 0;
}

void RichTextReader::EndProperty(Destination destination) {
  std::string text = std::exchange(property_, {});
  const auto date = [this] {
    const auto digits = [](int32_t number, size_t width) {
      const std::string all = std::to_string(number);
      return all.size() < width ? std::string(width - all.size(), '0') + all : all;
    };
    const Date read = std::exchange(date_, {});
    return digits(read.year, 4) + '-' + digits(read.month, 2) + '-' + digits(read.day, 2);
  };
  switch (destination) {
    case Destination::kTitle:
      page_.title = OneLine(std::move(text));
      break;
    case Destination::kAuthor:
      AddMeta("author", std::move(text), page_);
      break;
    case Destination::kSubject:
      AddMeta("subject", std::move(text), page_);
      break;
    case Destination::kKeywords:
      AddMeta("keywords", std::move(text), page_);
      break;
    case Destination::kComment:
      page_.description = OneLine(std::move(text));
      break;
    case Destination::kCreated:
      AddMeta("dcterms.date", date(), page_);
      break;
    case Destination::kRevised:
      AddMeta("dcterms.modified", date(), page_);
      break;
    default:
      break;
  }
}

void RichTextReader::SetLevel(uint8_t level) {
  FlushBytes();
  at().level = level;
  paragraphs_.SetLevel(level);
}

void RichTextReader::EndParagraph() {
  FlushBytes();
  if (at().destination != Destination::kBody) return;
  paragraphs_.End();
  paragraphs_.Begin(at().level);
}

void RichTextReader::AddText(std::string_view text) {
  switch (at().destination) {
    case Destination::kBody:
      if (!at().isHidden) paragraphs_.Append(text);
      break;
    case Destination::kNowhere:
    case Destination::kFonts:
    case Destination::kProperties:
      break;
    default:
      if (property_.size() < kPropertyLimit) property_ += text;
      break;
  }
}

void RichTextReader::FlushBytes() {
  if (bytes_.empty()) return;
  const bool isAscii =
      std::ranges::all_of(bytes_, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  AddText(isAscii ? bytes_ : codepages_.ToUtf8(at().codepage, bytes_));
  bytes_.clear();
}

void RichTextReader::AddByte(char byte) {
  constexpr size_t kPortion = 4096;
  if (toSkip_ > 0) {
    --toSkip_;
    return;
  }
  highHalf_ = 0;
  if (at().destination == Destination::kNowhere) return;
  bytes_ += byte;
  // Not between the bytes of one character.
  if (bytes_.size() >= kPortion && static_cast<unsigned char>(byte) < 0x40) FlushBytes();
}

// A character by its number, as a signed one of 16 bits; larger ones come in two halves.
void RichTextReader::Unicode(int32_t number) {
  FlushBytes();
  toSkip_ = at().afterUnicode;
  const auto unit = static_cast<char16_t>(static_cast<uint32_t>(number) & 0xFFFF);
  if (unit >= 0xD800 && unit < 0xDC00) {
    highHalf_ = unit;
    return;
  }
  char32_t c = unit;
  if (unit >= 0xDC00 && unit < 0xE000) {
    if (highHalf_ == 0) return;
    c = 0x10000 + ((char32_t{highHalf_} - 0xD800) << 10) + (char32_t{unit} - 0xDC00);
  }
  highHalf_ = 0;
  std::string text;
  AppendCharacter(c, text);
  AddText(text);
}

bool RichTextReader::SetDestination(std::string_view word) {
  const auto* found = std::ranges::find(kDestinations, word, &NamedDestination::word);
  if (found == std::end(kDestinations)) {
    // A destination that is not known, and says that it may be passed over.
    if (isOptional_) at().destination = Destination::kNowhere;
    return std::exchange(isOptional_, false);
  }
  isOptional_ = false;
  // Of what is passed over all is; properties are known as such only among them.
  const Destination around = at().destination;
  const bool isProperty = found->destination >= Destination::kTitle;
  if (around == Destination::kNowhere || (isProperty && around != Destination::kProperties)) {
    return true;
  }
  at().destination = found->destination;
  property_.clear();
  return true;
}

// Words that set something by their number.
void RichTextReader::SetFact(std::string_view word, int32_t number) {
  const bool inStyles = at().destination == Destination::kStyles;
  if (word == "ansicpg") {
    codepage_ = number;
    at().codepage = number;
  } else if (word == "uc") {
    constexpr int32_t kMost = 16;
    at().afterUnicode = std::clamp(number, 0, kMost);
  } else if (word == "f" && at().destination == Destination::kFonts) {
    font_ = number;
  } else if (word == "fcharset") {
    constexpr int32_t kDefault = 1;
    constexpr size_t kFontLimit = 10000;
    if (number != kDefault && fonts_.size() < kFontLimit) fonts_[font_] = CodepageOf(number);
  } else if (word == "f") {
    const auto font = fonts_.find(number);
    at().codepage = font == fonts_.end() ? codepage_ : font->second;
  } else if (word == "s" && inStyles) {
    style_ = number;
  } else if (word == "s") {
    const auto style = styles_.find(number);
    SetLevel(style == styles_.end() ? 0 : style->second);
  } else if (word == "outlinelevel") {
    const bool isHeading = number >= 0 && number < kLowestHeading;
    const auto level = isHeading ? static_cast<uint8_t>(number + 1) : uint8_t{0};
    if (inStyles) {
      styleLevel_ = level;
    } else if (at().destination == Destination::kBody) {
      SetLevel(level);
    }
  } else if (word == "v") {
    at().isHidden = number != 0;
  } else if (word == "yr") {
    date_.year = number;
  } else if (word == "mo") {
    date_.month = number;
  } else if (word == "dy") {
    date_.day = number;
  }
}

void RichTextReader::ControlWord(std::string_view word, std::optional<int32_t> number) {
  if (word == "u") return Unicode(number.value_or(0));
  if (word == "bin") {
    rest_.remove_prefix(
        std::min(static_cast<size_t>(std::max(number.value_or(0), 0)), rest_.size()));
    return;
  }
  FlushBytes();
  toSkip_ = 0;
  if (SetDestination(word)) return;
  for (const auto& [name, text] : kSigns) {
    if (word == name) return AddText(text);
  }
  if (word == "par" || word == "sect") {
    EndParagraph();
  } else if (word == "pard") {
    if (at().destination == Destination::kBody) SetLevel(0);
  } else if (word == "plain") {
    at().isHidden = false;
  } else if (word == "mac") {
    codepage_ = at().codepage = 10000;
  } else if (word == "footnote") {
    AddText(" ");
  } else {
    SetFact(word, number.value_or(1));
  }
}

void RichTextReader::ControlSign(char sign) {
  switch (sign) {
    case '\'': {
      const int high = rest_.size() < 2 ? -1 : HexDigitValue(rest_[0]);
      const int low = rest_.size() < 2 ? -1 : HexDigitValue(rest_[1]);
      if (high < 0 || low < 0) return;
      rest_.remove_prefix(2);
      AddByte(static_cast<char>(high * 16 + low));
      return;
    }
    case '\\':
    case '{':
    case '}':
      AddByte(sign);
      return;
    case '*':
      isOptional_ = true;
      return;
    case '~':
      AddByte(' ');
      return;
    case '_':
      AddByte('-');
      return;
    case '\r':
    case '\n':
      EndParagraph();
      return;
    default:
      return;
  }
}

// What stands behind a backslash.
void RichTextReader::Control() {
  if (rest_.empty()) return;
  if (!IsAlpha(rest_.front())) {
    const char sign = rest_.front();
    rest_.remove_prefix(1);
    ControlSign(sign);
    return;
  }
  constexpr size_t kWordLimit = 32;
  size_t length = 0;
  while (length < rest_.size() && length < kWordLimit && IsAlpha(rest_[length])) ++length;
  const std::string_view word = rest_.substr(0, length);
  rest_.remove_prefix(length);
  std::optional<int32_t> number;
  const bool isNegative = rest_.size() > 1 && rest_[0] == '-' && IsDigit(rest_[1]);
  if (isNegative) rest_.remove_prefix(1);
  while (!rest_.empty() && IsDigit(rest_.front())) {
    const int64_t next = int64_t{number.value_or(0)} * 10 + (rest_.front() - '0');
    number = static_cast<int32_t>(std::min<int64_t>(next, std::numeric_limits<int32_t>::max()));
    rest_.remove_prefix(1);
  }
  if (isNegative) number = -number.value_or(0);
  if (rest_.starts_with(' ')) rest_.remove_prefix(1);
  ControlWord(word, number);
}

Reason RichTextReader::Read() {
  constexpr std::string_view kBegin = "{\\rtf";
  if (!rest_.starts_with(kBegin)) return Reason::kDamaged;
  paragraphs_.Begin();
  Open();
  rest_.remove_prefix(1);
  while (!rest_.empty() && !groups_.empty()) {
    if (!TakeSteps(budget_, 1)) return budget_.status;
    const char c = rest_.front();
    rest_.remove_prefix(1);
    if (c == '\\') {
      Control();
    } else if (c == '{') {
      if (groups_.size() == kGroupLimit) return Reason::kMarkupTooLarge;
      toSkip_ = 0;
      Open();
    } else if (c == '}') {
      toSkip_ = 0;
      Close();
    } else if (c != '\r' && c != '\n' && c != '\0') {
      AddByte(c);
    }
  }
  // Cut short, it still says what it says up to there.
  if (!groups_.empty()) FlushBytes();
  paragraphs_.End();
  paragraphs_.CopyTo(page_);
  return budget_.status;
}

}  // namespace

Reason ReadRichTextPage(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  return RichTextReader(bytes, budget, page).Read();
}

}  // namespace vela::indexer
