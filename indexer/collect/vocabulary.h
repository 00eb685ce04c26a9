// vocabulary.h: the words of the site while it is read.
//
// It stays in memory until the words are written, at about 70 bytes a word with its variants, as
// the search program holds the finished dictionary too. Words are numbered in the order of their
// first appearance; the numbers of the index files are given at the end (DictionaryOrder).
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "format/dictionary.h"
#include "format/page_text.h"
#include "indexer/collect/chunked_list.h"
#include "indexer/collect/number_table.h"
#include "indexer/collect/text_store.h"

namespace vela::indexer {

constexpr uint32_t kNone32 = 0xFFFFFFFF;
constexpr size_t kVariantCountLimit = kTokenVariantLimit;  // of a word
constexpr size_t kVariantBytesLimit = 126;                 // each
static_assert(kVariantBytesLimit <= kVariantLimit);

struct Variant {
  uint32_t text = 0;        // place among the vocabulary's texts
  uint32_t next = kNone32;  // the word's next variant, in order of first appearance
  uint8_t length = 0;
};

struct Word {
  uint32_t text = 0;              // place among the vocabulary's texts
  uint32_t pageCount = 0;         // pages that it finds
  uint32_t addressOnlyPages = 0;  // of those, that have it in their address alone
  uint32_t lastPage = kNone32;    // the page that counted it last
  uint32_t firstVariant = kNone32;
  uint8_t length = 0;
  uint8_t variantCount = 0;
  uint8_t mostOnPage = 0;      // occurrences on the page that has most of them, up to 255
  bool inTitle : 1 = false;    // some page has it in its title
  bool isWritten : 1 = false;  // pages write it; others only help to find one ("cafe" for "café")
  // Pages write it in this very form, alone or as a part of a joined word; a stem need not be one.
  bool isOwnForm : 1 = false;
};
static_assert(sizeof(Word) == 24 && sizeof(Variant) == 12);

struct Vocabulary {
  ChunkedList<Word> words;
  ChunkedList<Variant> variants;
  NumberTable table;  // of `words`
  PlacedTexts texts;
};

inline std::string_view TextOf(const Word& word, const Vocabulary& vocabulary) {
  return vocabulary.texts.At(word.text, word.length);
}
inline std::string_view TextOf(const Variant& variant, const Vocabulary& vocabulary) {
  return vocabulary.texts.At(variant.text, variant.length);
}

// The number of `base` (at most kWordBytesLimit bytes), which is added when it is new. Throws
// IndexError when there are more words than one index can hold.
uint32_t FindOrAddWord(Vocabulary& vocabulary, std::string_view base);
// The same for whoever knows TextHash(base).
uint32_t FindOrAddWord(Vocabulary& vocabulary, std::string_view base, uint64_t hash);

// The variant byte of `surface` for this word: 0 for the word itself, its place from 1 on among the
// variants, to which it is added when it is new; 0 as well when there is no more room for it.
uint8_t FindOrAddVariant(Vocabulary& vocabulary, uint32_t word, std::string_view surface);

// The first eight bytes of a text as a number: of two texts whose numbers differ, the one with the
// lesser number comes first in the order of bytes.
uint64_t StartNumber(std::string_view text);

// Bytes that the vocabulary takes, nearly.
size_t MemoryOf(const Vocabulary& vocabulary);

// The words in the order of the dictionary: those on more pages first, so that the search, which
// goes through the dictionary from its start, meets common words early and the few that are rare
// late; by their bytes among equals.
std::vector<uint32_t> DictionaryOrder(const Vocabulary& vocabulary);

}  // namespace vela::indexer
