// setting_keys.h: the keys of settings.vdat that a site owner may set, and their defaults.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace vela::indexer {

struct NumberKey {
  std::string_view key;
  int32_t value;  // what the indexer writes when nothing else is said
  int32_t least;
  int32_t most;
};

struct TextKey {
  std::string_view key;
  std::string_view value;
  uint32_t mostBytes;  // what the search program keeps of it
};

// How a results page looks and how far a search goes, in the order of the file.
std::span<const NumberKey> NumberKeys();
std::span<const TextKey> TextKeys();

// Why the owner may not set `key`, for keys that follow from the index or have a table of their
// own in the configuration; empty for every other key.
std::string_view RefusedKeyReason(std::string_view key);

}  // namespace vela::indexer
