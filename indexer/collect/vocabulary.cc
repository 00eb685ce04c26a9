#include "indexer/collect/vocabulary.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace vela::indexer {

uint32_t FindOrAddWord(Vocabulary& vocabulary, std::string_view base) {
  return FindOrAddWord(vocabulary, base, TextHash(base));
}

uint32_t FindOrAddWord(Vocabulary& vocabulary, std::string_view base, uint64_t hash) {
  const auto next = static_cast<uint32_t>(vocabulary.words.size());
  const auto isSame = [&](uint32_t number) {
    return IsSameText(TextOf(vocabulary.words[number], vocabulary), base);
  };
  const uint32_t number = vocabulary.table.FindOrAdd(hash, next, isSame);
  if (number != next) return number;
  Word word;
  word.text = vocabulary.texts.Keep(base);
  word.length = static_cast<uint8_t>(base.size());
  vocabulary.words.push_back(word);
  return number;
}

uint8_t FindOrAddVariant(Vocabulary& vocabulary, uint32_t number, std::string_view surface) {
  Word& word = vocabulary.words[number];
  if (IsSameText(surface, TextOf(word, vocabulary))) return 0;
  uint8_t place = 0;
  uint32_t* end = &word.firstVariant;  // where the number of one that is new is kept
  while (*end != kNone32) {
    Variant& variant = vocabulary.variants[*end];
    ++place;
    if (IsSameText(TextOf(variant, vocabulary), surface)) return place;
    end = &variant.next;
  }
  if (word.variantCount == kVariantCountLimit || surface.size() > kVariantBytesLimit) return 0;
  const auto added = static_cast<uint32_t>(vocabulary.variants.size());
  Variant variant;
  variant.text = vocabulary.texts.Keep(surface);
  variant.length = static_cast<uint8_t>(surface.size());
  vocabulary.variants.push_back(variant);
  *end = added;
  return ++word.variantCount;
}

uint64_t StartNumber(std::string_view text) {
  static_assert(std::endian::native == std::endian::little);
  uint64_t start = 0;
  memcpy(&start, text.data(), std::min(text.size(), sizeof start));
  return __builtin_bswap64(start);
}

size_t MemoryOf(const Vocabulary& vocabulary) {
  return vocabulary.words.memory() + vocabulary.variants.memory() + vocabulary.table.memory() +
         vocabulary.texts.memory();
}

std::vector<uint32_t> DictionaryOrder(const Vocabulary& vocabulary) {
  // Beside the number what most words are told apart by, so that few texts are looked at.
  struct Place {
    uint32_t pages = 0;
    uint32_t number = 0;
    uint64_t start = 0;  // of the text, the first byte in the highest bits
  };
  std::vector<Place> places(vocabulary.words.size());
  for (uint32_t number = 0; number < places.size(); ++number) {
    const Word& word = vocabulary.words[number];
    places[number] = {
        .pages = word.pageCount, .number = number, .start = StartNumber(TextOf(word, vocabulary))};
  }
  std::ranges::sort(places, [&](const Place& a, const Place& b) {
    if (a.pages != b.pages) return a.pages > b.pages;
    if (a.start != b.start) return a.start < b.start;
    return TextOf(vocabulary.words[a.number], vocabulary) <
           TextOf(vocabulary.words[b.number], vocabulary);
  });
  std::vector<uint32_t> order;
  order.reserve(places.size());
  for (const Place& place : places) order.push_back(place.number);
  return order;
}

}  // namespace vela::indexer
