// language_lines.h: the 49 language lines that every complete settings file holds.
#pragma once

#include <string>

#include "support/index_builder.h"

namespace vela {

// The lines of the first `count` keys; the text of each is "text" and its number.
inline std::string LanguageLines(size_t count = support::kLanguageTextCount) {
  std::string lines;
  for (size_t i = 0; i < count; ++i) {
    lines += std::string(support::kLanguageTexts[i].key) + " = \"text" + std::to_string(i) + "\"\n";
  }
  return lines;
}

}  // namespace vela
