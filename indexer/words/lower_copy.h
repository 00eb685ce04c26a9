// lower_copy.h: lower case where the text itself must stay as it is.
#pragma once

#include <string>
#include <string_view>

#include "text/lower.h"

namespace vela::indexer {

// A copy with the letters A to Z in lower case, whatever the other bytes mean: for names that
// computers compare (of elements, endings, character sets).
inline std::string LowerAsciiCopy(std::string_view text) {
  std::string lower(text);
  LowerSingleByte(lower.data(), lower.size());
  return lower;
}

// A copy of UTF-8 text in lower case, as the search compares words.
inline std::string LowerUtf8Copy(std::string_view text) {
  std::string lower(text);
  LowerUtf8(lower.data(), lower.size());
  return lower;
}

}  // namespace vela::indexer
