// running_text.h: the running text of a page as plain words, in which phrases are looked for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vela::indexer {

constexpr size_t kPhraseBytesLimit = 100;

struct RunningText {
  struct Word {
    uint64_t hash = 0;  // TextHash of the word in lower case
    uint8_t bytes = 0;  // 1 to kPhraseBytesLimit
  };
  static constexpr uint32_t kBreak = 0;  // no phrase goes on behind it

  std::vector<Word> words;  // the different ones, as they are written
  std::string texts;        // of those, one behind the other
  // kBreak, or 1 more than a number in `words`, as AppendNumber writes them. The last is kBreak.
  std::string sequence;
};

}  // namespace vela::indexer
