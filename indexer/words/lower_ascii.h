// lower_ascii.h: names that computers compare (of elements, endings, character sets) in one case.
#pragma once

#include <string>
#include <string_view>

#include "text/lower.h"

namespace vela::indexer {

// A copy with the letters A to Z in lower case, whatever the other bytes mean.
inline std::string LowerAsciiCopy(std::string_view text) {
  std::string lower(text);
  LowerSingleByte(lower.data(), lower.size());
  return lower;
}

}  // namespace vela::indexer
