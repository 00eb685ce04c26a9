#include "indexer/words/query_folding.h"

#include <algorithm>
#include <vector>

#include "indexer/words/symbols.h"
#include "text/ascii.h"
#include "text/presentation_forms.h"
#include "text/sign_cut.h"

namespace vela::indexer {

namespace {

// Signs of ASCII that have no meaning in a query and stay there as parts of words. "<" is one more,
// but has no place in the table, which is shown in XML as it stands.
constexpr std::u32string_view kAsciiSigns = U";=>`~";

// Ends the headings of many manuals, where it is a link, and is not shown.
constexpr char32_t kPilcrow = 0x00B6;

bool IsFoldedSign(char32_t c) {
  if (c < 0x80) return kAsciiSigns.find(c) != kAsciiSigns.npos;
  return c == kPilcrow || std::ranges::binary_search(QuerySymbols(), c);
}

constexpr char32_t kDotlessI = 0x0131;
// Lower-casing leaves this byte of U+0130 behind its "i" (text/lower.h).
constexpr char kRestOfDottedI = '\xB0';

struct LetterFolding {
  char32_t from;
  std::string_view to;
};

constexpr LetterFolding kLetters[] = {
    {0x00B2, "2"},
    {0x00B3, "3"},
    {0x00B9, "1"},       // superscripts
    {0x00B5, "\u03BC"},  // micro sign
    {0x03C2, "\u03C3"},  // final sigma
    {0x2082, "2"},
    {0xFB00, "ff"},
    {0xFB01, "fi"},
    {0xFB02, "fl"},
    {0xFB03, "ffi"},
    {0xFB04, "ffl"},
    {0xFB05, "st"},
    {0xFB06, "st"},
    {0xFE0E, ""},
    {0xFE0F, ""},  // whether a sign is shown as text or as a picture
    // Turkish, where capital letters of one alphabet are read as those of the other. Lower-casing
    // knows no "\u0130".
    {0x0130, "i"},
    {kDotlessI, "i"},
    // Arabic: the stroke that widens a word, the signs of short vowels, and letters that many leave
    // the dots or the hamza off; those of Persian keyboards.
    {0x0640, ""},
    {0x064B, ""},
    {0x064C, ""},
    {0x064D, ""},
    {0x064E, ""},
    {0x064F, ""},
    {0x0650, ""},
    {0x0651, ""},
    {0x0652, ""},
    {0x0670, ""},
    {0x0622, "\u0627"},
    {0x0623, "\u0627"},
    {0x0625, "\u0627"},
    {0x0671, "\u0627"},
    {0x0649, "\u064A"},
    {0x06CC, "\u064A"},
    {0x06A9, "\u0643"},
    {0x0629, "\u0647"},
    // Hebrew points.
    {0x05B0, ""},
    {0x05B1, ""},
    {0x05B2, ""},
    {0x05B3, ""},
    {0x05B4, ""},
    {0x05B5, ""},
    {0x05B6, ""},
    {0x05B7, ""},
    {0x05B8, ""},
    {0x05B9, ""},
    {0x05BA, ""},
    {0x05BB, ""},
    {0x05BC, ""},
    {0x05C1, ""},
    {0x05C2, ""},
    {0x05C7, ""},
};

// Full-width forms stand in the order of ASCII.
constexpr char32_t kFullWidthOffset = 0xFF01 - U'!';

// Underscores in a row that may be part of a word (see BlankLooseJoins).
constexpr size_t kUnderscoreLimit = 2;

// Hyphens that are taken off before a blank.
constexpr int kFinalHyphens = 2;

bool IsAsciiAlphaNumeric(char32_t c) { return c < 0x80 && IsAlphaNumeric(static_cast<char>(c)); }

using FoldingTable = std::vector<Folding>;

void Add(FoldingTable& table, std::string from, std::string to) {
  table.push_back({std::move(from), std::move(to)});
}

// A hyphen beside a bracket or the like ("[-1]", "'--help'", "(re-)use") excludes nothing, and
// pages have it apart from the word.
void AddHyphens(FoldingTable& table) {
  for (const char before : std::string_view("([{'=")) {
    for (const char* hyphens : {"--", "-"}) Add(table, before + std::string(hyphens), {before});
  }
  for (const char behind : std::string_view(")],'")) {
    Add(table, std::string("-") + behind, {behind});
  }
}

// Full stops and underscores are parts of words only before what may go on a word. The query's own
// cut keeps them before a closing quote, which no item can name. So each gets a mark behind it,
// marks before what may go on a word are taken away again, and what still has one is a blank. The
// signs that stand in for them are blanks by now.
void AddFinalSigns(FoldingTable& table) {
  for (size_t count = 9; count > 1; --count) {
    Add(table, std::string(count, '.'), " ");
    if (count > kUnderscoreLimit) Add(table, std::string(count, '_'), " ");
  }
  Add(table, "__", "=;");
  Add(table, "_", "~;");
  Add(table, ".", "`;");
  for (char c = '!'; c < 0x7F; ++c) {
    if (IsAlphaNumeric(c) || c == '*' || c == '?') Add(table, std::string(";") + c, {c});
  }
  Add(table, "=;", " ");
  Add(table, "~;", " ");
  Add(table, "=", "__");
  Add(table, "~", "_");
  Add(table, ";_", "_");  // a full stop before underscores that go on a word
  Add(table, "`;", " ");
  Add(table, "`", ".");
}

// What CutAtSigns does where the search program is told to.
void AddSigns(FoldingTable& table) {
  // As CleanText has it.
  for (const char32_t c : std::u32string_view(U"\u00AD\u200B\uFEFF")) Add(table, Utf8Text(c), "");
  for (const char32_t c : std::u32string_view(U"\u00A0\u202F\u3000")) Add(table, Utf8Text(c), " ");
  for (const char32_t c : std::u32string_view(U"\u2010\u2011")) Add(table, Utf8Text(c), "-");
  AddHyphens(table);
  for (const char32_t c : kAsciiSigns) Add(table, Utf8Text(c), " ");
  for (const char32_t c : QuerySymbols()) Add(table, Utf8Text(c), " ");
  Add(table, Utf8Text(kPilcrow), " ");
  // Signs with a meaning have none between blanks, nor have hyphens behind a word.
  for (const char* alone : {" -- ", " - ", " # ", " * ", " ? ", " ++ "}) Add(table, alone, " ");
  for (int i = 0; i < kFinalHyphens; ++i) Add(table, "- ", " ");
  AddFinalSigns(table);
}

FoldingTable MakeFoldings(bool cutsSigns) {
  FoldingTable table;
  if (!cutsSigns) AddSigns(table);
  for (const LetterFolding& letter : kLetters) {
    Add(table, Utf8Text(letter.from), std::string(letter.to));
  }
  for (char32_t c = U'0'; c <= U'z'; ++c) {
    if (IsAsciiAlphaNumeric(c)) Add(table, Utf8Text(c + kFullWidthOffset), Utf8Text(c));
  }
  return table;
}

}  // namespace

std::span<const Folding> QueryFoldings(bool cutsSigns) {
  static const FoldingTable tables[] = {MakeFoldings(false), MakeFoldings(true)};
  return tables[cutsSigns ? 1 : 0];
}

std::string FoldedQuery(std::string_view query, bool cutsSigns) {
  std::string text(query);
  if (cutsSigns) {
    text.resize(2 * query.size());  // of three bytes four become at most
    text.resize(WriteWithoutForms(query, text.data(), text.size()));
    text.resize(CutAtSigns(text.data(), text.size(), true));
  }
  for (const Folding& folding : QueryFoldings(cutsSigns)) {
    for (size_t at = text.find(folding.from); at != text.npos;
         at = text.find(folding.from, at + folding.to.size())) {
      text.replace(at, folding.from.size(), folding.to);
    }
  }
  return text;
}

bool IsUnfoldedInTurkish(const Folding& folding) { return folding.from == Utf8Text(kDotlessI); }

std::string WithoutRestsOfDottedI(std::string_view lower) {
  std::string text;
  size_t length = 0;
  for (size_t at = 0; at < lower.size(); at += length) {
    DecodeCharacter(lower, at, length);
    const bool isRest = length == 1 && lower[at] == kRestOfDottedI && text.ends_with('i');
    if (!isRest) text.append(lower, at, length);
  }
  return text;
}

std::string FoldedWord(std::string_view word, bool isTurkish) {
  std::string folded;
  size_t length = 0;
  for (size_t at = 0; at < word.size(); at += length) {
    const char32_t c = DecodeCharacter(word, at, length);
    if (c < 0x80 || (isTurkish && c == kDotlessI)) {
      folded.append(word, at, length);
      continue;
    }
    if (length == 1 && word[at] == kRestOfDottedI && folded.ends_with('i')) continue;
    const auto* letter = std::ranges::find(kLetters, c, &LetterFolding::from);
    const std::string_view letters = LettersOfForm(c);
    if (!letters.empty()) {
      folded += FoldedWord(letters, isTurkish);
    } else if (letter != std::end(kLetters)) {
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
    if (IsFoldedSign(DecodeCharacter(text, at, length))) text.replace(at, length, length, ' ');
  }
  BlankLooseJoins(text.data(), text.size());
}

}  // namespace vela::indexer
