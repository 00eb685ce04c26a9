// shingles.h: what a text says as the hashes of so many words in a row, by which texts are
// compared.
#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "indexer/collect/number_table.h"
#include "indexer/words/find_byte.h"

namespace vela::indexer {

// Adds the hashes of the words of `text`, which is clean (see CleanText), to `hashes`.
inline void AddWordHashes(std::string_view text, std::vector<uint64_t>& hashes) {
  while (!text.empty()) {
    const std::string_view word = text.substr(0, FindByte(text, ' ', 0));
    if (!word.empty()) hashes.push_back(TextHash(word));
    text.remove_prefix(word.size() + (word.size() < text.size() ? 1 : 0));
  }
}

// The hash of words in a row, each bit of which depends on each word and its place.
inline uint64_t ShingleHash(std::span<const uint64_t> words) {
  constexpr uint64_t kFactor = 0x9E3779B97F4A7C15;
  uint64_t hash = 0;
  for (const uint64_t word : words) hash = (std::rotl(hash, 23) ^ word) * kFactor;
  return hash ^ hash >> 32;
}

}  // namespace vela::indexer
