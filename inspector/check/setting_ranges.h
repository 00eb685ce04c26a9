// setting_ranges.h: the values that the keys of the settings file can have.
#pragma once

#include <cstdint>
#include <string_view>

namespace vela::inspector {

// Both ends included.
struct SettingRange {
  std::string_view key;
  int32_t least = 0;
  int32_t most = 0;
};

// Of a key of a number; null for any other.
const SettingRange* FindSettingRange(std::string_view key);

}  // namespace vela::inspector
