#include "indexer/words/query_folding.h"

#include <algorithm>
#include <vector>

#include "indexer/words/symbols.h"

namespace vela::indexer {

namespace {

// Signs of ASCII that have no meaning in a query and stay there as parts of words. "<" is one more,
// but has no place in the table, which is shown in XML as it stands.
constexpr std::u32string_view kAsciiSigns = U";=>`~";

// Ends the headings of many manuals, where it is a link, and is not shown.
constexpr char32_t kPilcrow = 0x00B6;

bool IsFoldedSign(char32_t c) {
  if (c < 0x80) return kAsciiSigns.find(c) != kAsciiSigns.npos;
  return c == kPilcrow || ClassifyCharacter(c) == CharacterKind::kSymbol;
}

struct LetterFolding {
  char32_t from;
  std::string_view to;
};

constexpr LetterFolding kLetters[] = {
    {0x03C2, "\u03C3"},  // final sigma
    {0xFB00, "ff"},     {0xFB01, "fi"}, {0xFB02, "fl"}, {0xFB03, "ffi"},
    {0xFB04, "ffl"},    {0xFB05, "st"}, {0xFB06, "st"},
};

// Full-width forms stand in the order of ASCII.
constexpr char32_t kFullWidthOffset = 0xFF01 - U'!';

bool IsAsciiAlphaNumeric(char32_t c) {
  return (c >= U'0' && c <= U'9') || (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z');
}

// Whether a full stop before it is part of a word.
bool GoesOn(char c) { return IsAsciiAlphaNumeric(static_cast<unsigned char>(c)) || c == '_'; }

std::vector<Folding> MakeFoldings() {
  std::vector<Folding> table;
  const auto add = [&table](std::string from, std::string to) {
    table.push_back({std::move(from), std::move(to)});
  };
  // As CleanText has it.
  for (const char32_t c : std::u32string_view(U"\u00AD\u200B\uFEFF")) add(Utf8Text(c), "");
  for (const char32_t c : std::u32string_view(U"\u00A0\u202F\u3000")) add(Utf8Text(c), " ");
  for (const char32_t c : std::u32string_view(U"\u2010\u2011")) add(Utf8Text(c), "-");
  for (const char32_t c : kAsciiSigns) add(Utf8Text(c), " ");
  for (const char32_t c : SymbolsBeyondAscii()) add(Utf8Text(c), " ");
  add(Utf8Text(kPilcrow), " ");
  // Signs with a meaning have none between blanks.
  for (const char* alone : {" -- ", " - ", " # ", " * ", " ? ", " ++ "}) add(alone, " ");
  // The query's cut keeps a full stop before a closing quote, which no item can name. So all are
  // set aside, those before what may go on a word are brought back, and the others are blanks.
  const std::string aside = Utf8Text(0x2024);  // a full stop of its own, which nobody types
  for (size_t dots = 9; dots > 1; --dots) add(std::string(dots, '.'), " ");
  add(".", aside);
  for (char c = '!'; c < 0x7F; ++c) {
    if (GoesOn(c) || c == '*' || c == '?') add(aside + c, std::string(".") + c);
  }
  add(aside, " ");
  for (const LetterFolding& letter : kLetters) add(Utf8Text(letter.from), std::string(letter.to));
  for (char32_t c = U'0'; c <= U'z'; ++c) {
    if (IsAsciiAlphaNumeric(c)) add(Utf8Text(c + kFullWidthOffset), Utf8Text(c));
  }
  return table;
}

}  // namespace

std::span<const Folding> QueryFoldings() {
  static const std::vector<Folding> table = MakeFoldings();
  return table;
}

std::string FoldedQuery(std::string_view query) {
  std::string text(query);
  for (const Folding& folding : QueryFoldings()) {
    for (size_t at = text.find(folding.from); at != text.npos;
         at = text.find(folding.from, at + folding.to.size())) {
      text.replace(at, folding.from.size(), folding.to);
    }
  }
  return text;
}

std::string FoldedWord(std::string_view word) {
  std::string folded;
  size_t length = 0;
  for (size_t at = 0; at < word.size(); at += length) {
    const char32_t c = DecodeCharacter(word, at, length);
    const auto* letter = std::ranges::find(kLetters, c, &LetterFolding::from);
    if (letter != std::end(kLetters)) {
      folded += letter->to;
    } else if (c > kFullWidthOffset && IsAsciiAlphaNumeric(c - kFullWidthOffset)) {
      folded += static_cast<char>(c - kFullWidthOffset);
    } else {
      folded.append(word, at, length);
    }
  }
  return folded;
}

void BlankFoldedSigns(std::string& text) {
  size_t length = 0;
  for (size_t at = 0; at < text.size(); at += length) {
    if (text[at] == '.') {
      const size_t end = std::min(text.find_first_not_of('.', at), text.size());
      length = end - at;
      if (length == 1 && end < text.size() && GoesOn(text[end])) continue;
      text.replace(at, length, length, ' ');
    } else if (IsFoldedSign(DecodeCharacter(text, at, length))) {
      text.replace(at, length, length, ' ');
    }
  }
}

}  // namespace vela::indexer
