#include "indexer/words/symbols.h"

#include <unicode/utf8.h>

namespace vela::indexer {

bool IsPictograph(char32_t c) {
  return c == kWordBreakSign || KindOf(c) == CharacterKind::kPicture;
}

CharacterKind ClassifyCharacter(char32_t c) {
  if (c == kWordBreakSign) return CharacterKind::kSymbol;
  switch (KindOf(c)) {
    case CharacterKind::kWord:
      return CharacterKind::kWord;
    case CharacterKind::kSymbol:
    case CharacterKind::kPicture:
      return CharacterKind::kSymbol;
    default:
      return CharacterKind::kDropped;
  }
}

std::u32string_view QuerySymbols() {
  static const std::u32string symbols = [] {
    std::u32string all;
    for (const SignRange& range : SignRanges()) {
      for (char32_t i = 0; range.kind == CharacterKind::kSymbol && i <= range.more; ++i) {
        all += range.first + i;
      }
    }
    return all;
  }();
  return symbols;
}

std::string Utf8Text(char32_t c) {
  uint8_t bytes[U8_MAX_LENGTH];
  size_t length = 0;
  U8_APPEND_UNSAFE(bytes, length, c);
  return std::string(reinterpret_cast<const char*>(bytes), length);
}

std::string HtmlText(char32_t c) {
  switch (c) {
    case U'"':
    case U'&':
    case U'\'':
    case U'<':
    case U'>':
      return "&#" + std::to_string(static_cast<uint32_t>(c)) + ";";
    default:
      break;
  }
  return Utf8Text(c);
}

}  // namespace vela::indexer
