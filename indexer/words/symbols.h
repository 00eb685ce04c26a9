// symbols.h: the signs between words, and the reserved numbers that stand for them in the page
// text.
//
// Every sign of the table has four reserved dictionary entries, one for each way in which it stands
// among words, so that a snippet gets its blanks back. They fill the classes of format/page_text.h
// in this order: suffixes ("word,"), signs that stand alone, which are suffixes whose text brings a
// blank, prefixes ("(word") and signs between ("and/or").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

enum class SymbolForm : uint8_t { kSuffix, kAlone, kPrefix, kBetween };

// The settings DictReservedSuffixes (S), DictReservedPrefixes (P), DictReservedNoSpaces and
// DictReservedLimit (N).
struct ReservedNumbers {
  uint32_t suffixes = 0;
  uint32_t prefixes = 0;
  uint32_t noSpaces = 0;
  uint32_t limit = 0;
};
ReservedNumbers ReservedLimits();

// What a character is to a word.
enum class CharacterKind : uint8_t {
  kWord,     // a letter, a digit, a mark, or a sign that is not in the table
  kSymbol,   // in the table: `symbol` is its place
  kDropped,  // cuts words like a symbol, and is not shown
};
struct CharacterClass {
  CharacterKind kind = CharacterKind::kWord;
  uint8_t symbol = 0;
};
CharacterClass ClassifyCharacter(char32_t c);

// The reserved number of a symbol in a form.
uint32_t ReservedNumber(uint8_t symbol, SymbolForm form);

// The texts of the entries 0 to N in order, safe in HTML, without blanks.
std::vector<std::string> ReservedTexts();

// The character at `text[at]`, and its length in bytes through `length`. A byte that belongs to no
// character counts as one of its own, with the value U+FFFD.
char32_t DecodeCharacter(std::string_view text, size_t at, size_t& length);

}  // namespace vela::indexer
