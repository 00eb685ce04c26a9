// setting_keys.h: the keys of the settings file that a site owner may set, and their defaults.
// Whether the search program knows them is checked where they are compiled.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "settings/setting_keys.h"

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
  size_t mostBytes = FindTextSetting(key)->capacity;
};

// How a results page looks and how far a search goes, in the order of the file.
std::span<const NumberKey> NumberKeys();
std::span<const TextKey> TextKeys();

// The extensions that are switched by a number: what is written with `extensions` of [search]. One
// of value 0 is not written.
std::span<const NumberKey> ExtensionKeys();

// Those that are a text. What they are without the owner follows from the pages; an empty one is
// not written.
std::span<const TextKey> ExtensionTextKeys();

// Why the owner may not set `key`, for keys that follow from the index or have a table of their
// own in the configuration; empty for every other key.
std::string_view RefusedKeyReason(std::string_view key);

}  // namespace vela::indexer
