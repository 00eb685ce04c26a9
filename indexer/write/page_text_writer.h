// page_text_writer.h: vela_pagetext.vdat, read by src/index/page_text.h: tokens of DictIDLen bytes,
// the number of a dictionary entry (little-endian) and the variant byte.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "indexer/collect/page_tokens.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

// The final numbers are known only when the last page was read. Until then tokens wait in a
// temporary file; Finish writes them again with their numbers.
class PageTextWriter {
 public:
  explicit PageTextWriter(const std::filesystem::path& folder);
  void AddPage(const std::vector<PageToken>& tokens);
  // Writes `path` and removes the temporary file. `order` is DictionaryOrder, `tokenBytes`
  // DictIDLen. Returns the size in bytes.
  uint64_t Finish(const std::filesystem::path& path, const std::vector<uint32_t>& order,
                  size_t tokenBytes);

 private:
  std::filesystem::path temporary_;
  std::optional<OutFile> waiting_;
  uint64_t tokens_ = 0;
};

// DictIDLen for so many dictionary entries: the bytes of the largest number, and one. A number
// equal to the count of entries must fit as well.
size_t TokenBytes(uint64_t entries);

}  // namespace vela::indexer
