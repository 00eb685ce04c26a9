#include "text/word_split.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vela {

namespace {

void BlankAll(char* text, size_t length, char c) {
  for (size_t i = 0; i < length; ++i) {
    if (text[i] == c) text[i] = ' ';
  }
}

// From the start, so that each "-" sees what became of the one before it: of "--" the second goes.
void BlankInnerHyphens(char* text, size_t length) {
  for (size_t i = 1; i < length; ++i) {
    if (text[i] == '-' && text[i - 1] != ' ') text[i] = ' ';
  }
}

// From the end: a word may end in one "#".
void BlankInnerHashes(char* text, size_t length) {
  for (size_t i = length; i-- > 0;) {
    if (text[i] == '#' && i + 1 < length && text[i + 1] != ' ') text[i] = ' ';
  }
}

// From the end: a word may end in "++".
void BlankSinglePluses(char* text, size_t length) {
  for (size_t i = length; i-- > 0;) {
    if (text[i] != '+') continue;
    const bool endsWord = i + 1 == length || text[i + 1] == ' ';
    const bool kept = endsWord ? i > 0 && text[i - 1] == '+' : text[i + 1] == '+';
    if (!kept) text[i] = ' ';
  }
}

// Replaces each `from` by the equally long `to`, left to right.
void Rewrite(char* text, size_t length, std::string_view from, std::string_view to) {
  std::string_view view(text, length);
  for (size_t at = view.find(from); at != view.npos; at = view.find(from, at + from.size())) {
    memcpy(text + at, to.data(), to.size());
  }
}

void BlankColons(char* text, size_t length) {
  // Kept: a query that holds a marker itself sees it turned into the prefix (unit word_split_test).
  Rewrite(text, length, "site:", "[#@!]");
  Rewrite(text, length, "url:", "[#@]");
  BlankAll(text, length, ':');
  Rewrite(text, length, "[#@!]", "site:");
  Rewrite(text, length, "[#@]", "url:");
}

// Takes `c` away where a blank follows it; one pass, so that of "..  " one "." is left.
size_t DropBeforeBlank(char* text, size_t length, char c) {
  if (memchr(text, c, length) == nullptr) return length;
  size_t out = 0;
  for (size_t i = 0; i < length; ++i) {
    if (text[i] == c && i + 1 < length && text[i + 1] == ' ') continue;
    text[out++] = text[i];
  }
  return out;
}

// The signs that any of the rules is about.
constexpr std::array<bool, 256> kSigns = [] {
  std::array<bool, 256> signs = {};
  for (const char c : std::string_view(".-#+_'$,:&/\\@()^[]|{}%!")) {
    signs[static_cast<unsigned char>(c)] = true;
  }
  return signs;
}();

bool HasSign(std::string_view text) {
  return std::ranges::any_of(text, [](char c) { return kSigns[static_cast<unsigned char>(c)]; });
}

}  // namespace

size_t SeparateWords(char* text, size_t length, std::string_view joinChars) {
  if (!HasSign({text, length})) return length;
  const auto joins = [joinChars](char c) { return joinChars.find(c) != joinChars.npos; };
  const auto blankUnlessJoining = [&](char c) {
    if (!joins(c)) BlankAll(text, length, c);
  };
  blankUnlessJoining('.');
  if (!joins('-')) BlankInnerHyphens(text, length);
  if (!joins('#')) BlankInnerHashes(text, length);
  if (!joins('+')) BlankSinglePluses(text, length);
  for (char c : {'_', '\'', '$', ','}) blankUnlessJoining(c);
  if (!joins(':')) BlankColons(text, length);
  for (char c : {'&', '/', '\\', '@'}) blankUnlessJoining(c);
  for (char c : {'(', ')', '^', '[', ']', '|', '{', '}', '%', '!'}) BlankAll(text, length, c);

  for (char c : {'_', '\'', '$', '.', ',', ':', '&', '/', '\\'}) {
    length = DropBeforeBlank(text, length, c);
  }
  constexpr std::string_view kDroppedAtEnd = "_'$.,:&/\\";
  if (length > 0 && kDroppedAtEnd.find(text[length - 1]) != kDroppedAtEnd.npos) --length;
  return length;
}

}  // namespace vela
