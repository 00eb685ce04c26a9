// clean_text.h: what holds of every text that the indexer takes out of a page.
#pragma once

#include <string_view>

#include "indexer/words/clean_text.h"
#include "program/fuzz/check.h"

namespace vela::fuzz {

// Valid UTF-8 without control characters and line ends.
inline void CheckClean(std::string_view text) {
  VELA_CHECK(indexer::IsValidUtf8(text));
  for (const char c : text) VELA_CHECK(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
}

// The same, trimmed, and no blank beside another.
inline void CheckOneLine(std::string_view text) {
  CheckClean(text);
  VELA_CHECK(!text.starts_with(' ') && !text.ends_with(' '));
  VELA_CHECK(text.find("  ") == text.npos);
}

}  // namespace vela::fuzz
