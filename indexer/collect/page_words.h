// page_words.h: the words of a text as they stand one behind the other, numbered among themselves,
// so that nothing of the site has to be known to make it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "indexer/collect/sign_entries.h"

namespace vela::indexer {

// A word as the dictionary has it; counts stop at 255.
struct WordOfPage {
  uint32_t token = 0;      // of its first occurrence
  uint8_t bytes = 0;       // of its text
  uint8_t total = 0;       // occurrences anywhere
  uint8_t body = 0;        // occurrences in the running text, headings included
  uint8_t zones = 0;       // Zone bits
  uint8_t blocks = 0;      // block b of the page holds the word: bit 7 - b
  bool isWritten = false;  // others only help to find one ("cafe" for "café")
  // Written in this very form, alone or as a part of a joined word; a stem need not be one.
  bool isOwnForm = false;
};

// A spelling of a word.
struct FormOfPage {
  uint32_t word = 0;
  uint8_t bytes = 0;  // of its text; 0 for that of the word, and for one too long to be kept
};

// Signs between two words; see SignEntries.
struct SignsOfPage {
  SignForm form = kSuffix;
  uint32_t bytes = 0;  // of their text
  uint32_t count = 0;  // how often they were met
};

// A token: kRunEnd, the signs of that number, or the form of that number.
constexpr uint32_t kRunEndToken = 0;
constexpr uint32_t SignsToken(uint32_t signs) { return 2 * signs + 1; }
constexpr uint32_t FormToken(uint32_t form) { return 2 * form + 2; }

// Each list is in the order in which its things were met first, and so are the forms of a word.
struct PageWords {
  std::vector<WordOfPage> words;
  std::vector<FormOfPage> forms;
  std::vector<SignsOfPage> signs;
  // The texts of those, one behind the other. In the character set of the index.
  std::string wordTexts;
  std::string formTexts;
  std::string signTexts;
  std::string tokens;  // as AppendNumber writes them: there may be more than letters in the text
  uint32_t tokenCount = 0;
  uint32_t bodyTokens = 0;  // of the running text
  uint32_t bodyWords = 0;
  uint32_t titleWords = 0;  // different ones
};

// Bytes that they take, nearly.
size_t MemoryOf(const PageWords& words);

}  // namespace vela::indexer
