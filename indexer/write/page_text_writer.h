// page_text_writer.h: the text of every page as word numbers (format/page_text.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <vector>

#include "indexer/collect/page_tokens.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

// The final numbers are known only when the last page was read. Until then tokens wait in a
// temporary file without a name; Finish writes them again with their numbers.
class PageTextWriter {
 public:
  explicit PageTextWriter(const std::filesystem::path& folder);
  void Add(const std::vector<PageToken>& tokens);
  // Writes `path` and lets go of the temporary file. `order` is DictionaryOrder, `tokenBytes`
  // DictIDLen. Returns the size in bytes.
  uint64_t Finish(const std::filesystem::path& path, const ReservedEntries& reserved,
                  const std::vector<uint32_t>& order, size_t tokenBytes);

 private:
  std::filesystem::path temporary_;
  std::optional<OutFile> waiting_;
  std::ifstream written_;  // the same file, to be read back
  uint64_t tokens_ = 0;
};

}  // namespace vela::indexer
