// page_text_writer.h: the text of every page as word numbers (format/page_text.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "indexer/collect/page_tokens.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

// The final numbers are known only when the last page was read. Until then stretches of text wait
// in a temporary file without a name, little-endian:
//
//   size      field
//   4         number of tokens, without the one behind them
//   4         the token behind them, as in TextStretch
//   4, 4      number of forms, of signs
//   8         bytes of the tokens
//   5 each    forms, then signs: 4 of the number, 1 of the variant
//             tokens
class PageTextWriter {
 public:
  explicit PageTextWriter(const std::filesystem::path& folder);
  void Add(const TextStretch& stretch);
  // Writes `path` and lets go of the temporary file. `order` is DictionaryOrder, `tokenBytes`
  // DictIDLen. Returns the size in bytes.
  uint64_t Finish(const std::filesystem::path& path, const ReservedEntries& reserved,
                  const std::vector<uint32_t>& order, size_t tokenBytes);

 private:
  bool ReadStretch();

  // What ReadStretch read last; kept for its memory.
  struct Read {
    TextStretch stretch;
    std::vector<PageToken> forms;
    std::vector<PageToken> signs;
    std::string bytes;
  };

  std::filesystem::path temporary_;
  std::optional<OutFile> waiting_;
  std::ifstream written_;  // the same file, to be read back
  Read read_;
  uint64_t stretches_ = 0;
};

}  // namespace vela::indexer
