// plain_word.h: a chunk of text as one word of a phrase.
#pragma once

#include <string_view>

namespace vela::indexer {

struct PlainWord {
  std::string_view text;  // without the signs around it; empty when signs stand inside
  bool begins = true;     // signs stand before it, or there is none
  bool ends = true;       // and behind it
};

// `chunk` is one of NextChunk (word_cut.h).
PlainWord PlainWordOf(std::string_view chunk);

}  // namespace vela::indexer
