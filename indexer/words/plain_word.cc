#include "indexer/words/plain_word.h"

#include "indexer/words/symbols.h"

namespace vela::indexer {

PlainWord PlainWordOf(std::string_view chunk) {
  size_t first = chunk.npos;
  size_t last = 0;
  size_t length = 0;
  for (size_t at = 0; at < chunk.size(); at += length) {
    if (ClassifyCharacter(DecodeCharacter(chunk, at, length)) != CharacterKind::kWord) continue;
    if (first != chunk.npos && last != at) return {};
    if (first == chunk.npos) first = at;
    last = at + length;
  }
  if (first == chunk.npos) return {};
  return {
      .text = chunk.substr(first, last - first), .begins = first > 0, .ends = last < chunk.size()};
}

}  // namespace vela::indexer
