#include "indexer/collect/vocabulary.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <numeric>

namespace vela::indexer {

namespace {

constexpr size_t kBlockBytes = size_t{1} << 20;
constexpr size_t kFirstTableSize = size_t{1} << 12;  // a power of two, like every size after it

const char* KeepText(Vocabulary& vocabulary, std::string_view text) {
  if (vocabulary.blocks.empty() || kBlockBytes - vocabulary.blockUsed < text.size()) {
    vocabulary.blocks.push_back(std::make_unique<char[]>(kBlockBytes));
    vocabulary.blockUsed = 0;
  }
  char* place = vocabulary.blocks.back().get() + vocabulary.blockUsed;
  memcpy(place, text.data(), text.size());
  vocabulary.blockUsed += text.size();
  return place;
}

size_t FirstPlace(const Vocabulary& vocabulary, std::string_view base) {
  return std::hash<std::string_view>{}(base) & (vocabulary.table.size() - 1);
}

void GrowTable(Vocabulary& vocabulary) {
  const size_t size = std::max(kFirstTableSize, vocabulary.table.size() * 2);
  vocabulary.table.assign(size, kNone32);
  for (uint32_t number = 0; number < vocabulary.words.size(); ++number) {
    size_t place = FirstPlace(vocabulary, TextOf(vocabulary.words[number]));
    while (vocabulary.table[place] != kNone32) place = (place + 1) & (size - 1);
    vocabulary.table[place] = number;
  }
}

}  // namespace

uint32_t FindOrAddWord(Vocabulary& vocabulary, std::string_view base) {
  if ((vocabulary.words.size() + 1) * 2 > vocabulary.table.size()) GrowTable(vocabulary);
  size_t place = FirstPlace(vocabulary, base);
  while (vocabulary.table[place] != kNone32) {
    const uint32_t number = vocabulary.table[place];
    if (TextOf(vocabulary.words[number]) == base) return number;
    place = (place + 1) & (vocabulary.table.size() - 1);
  }
  const auto number = static_cast<uint32_t>(vocabulary.words.size());
  vocabulary.table[place] = number;
  Word word;
  word.text = KeepText(vocabulary, base);
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
  variant.text = KeepText(vocabulary, surface);
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
         vocabulary.variants.capacity() * sizeof(Variant) +
         vocabulary.table.capacity() * sizeof(uint32_t) + vocabulary.blocks.size() * kBlockBytes;
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
