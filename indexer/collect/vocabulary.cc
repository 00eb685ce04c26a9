#include "indexer/collect/vocabulary.h"

#include <algorithm>
#include <numeric>

namespace vela::indexer {

uint32_t FindOrAddWord(Vocabulary& vocabulary, std::string_view base) {
  return FindOrAddWord(vocabulary, base, TextHash(base));
}

uint32_t FindOrAddWord(Vocabulary& vocabulary, std::string_view base, uint64_t hash) {
  const auto next = static_cast<uint32_t>(vocabulary.words.size());
  const auto isSame = [&](uint32_t number) {
    return IsSameText(TextOf(vocabulary.words[number]), base);
  };
  const uint32_t number = vocabulary.table.FindOrAdd(hash, next, isSame);
  if (number != next) return number;
  Word word;
  word.text = vocabulary.texts.Keep(base).data();
  word.length = static_cast<uint8_t>(base.size());
  vocabulary.words.push_back(word);
  return number;
}

uint8_t FindOrAddVariant(Vocabulary& vocabulary, uint32_t number, std::string_view surface) {
  Word& word = vocabulary.words[number];
  if (surface == TextOf(word)) return 0;
  uint8_t place = 0;
  for (uint32_t v = word.firstVariant; v != kNone32; v = vocabulary.variants[v].next) {
    ++place;
    if (TextOf(vocabulary.variants[v]) == surface) return place;
  }
  if (word.variantCount == kVariantCountLimit || surface.size() > kVariantBytesLimit) return 0;
  const auto added = static_cast<uint32_t>(vocabulary.variants.size());
  Variant variant;
  variant.text = vocabulary.texts.Keep(surface).data();
  variant.length = static_cast<uint8_t>(surface.size());
  vocabulary.variants.push_back(variant);
  if (word.lastVariant == kNone32) {
    word.firstVariant = added;
  } else {
    vocabulary.variants[word.lastVariant].next = added;
  }
  word.lastVariant = added;
  return ++word.variantCount;
}

size_t MemoryOf(const Vocabulary& vocabulary) {
  return vocabulary.words.capacity() * sizeof(Word) +
         vocabulary.variants.capacity() * sizeof(Variant) + vocabulary.table.memory() +
         vocabulary.texts.memory();
}

std::vector<uint32_t> DictionaryOrder(const Vocabulary& vocabulary) {
  std::vector<uint32_t> order(vocabulary.words.size());
  std::iota(order.begin(), order.end(), 0U);
  std::ranges::sort(order, [&](uint32_t a, uint32_t b) {
    const Word& left = vocabulary.words[a];
    const Word& right = vocabulary.words[b];
    if (left.pageCount != right.pageCount) return left.pageCount > right.pageCount;
    return TextOf(left) < TextOf(right);
  });
  return order;
}

}  // namespace vela::indexer
