#include "indexer/write/page_table_writer.h"

#include <algorithm>
#include <limits>

#include "indexer/collect/category_set.h"
#include "indexer/collect/meta_values.h"
#include "indexer/words/stored_text.h"

namespace vela::indexer {

namespace {

// With two addresses of 2083 bytes and the four "|" a line stays below the 7260 bytes that the
// search program reads.
constexpr size_t kMaxTitleBytes = 1000;
constexpr size_t kMaxDescriptionBytes = 2000;
constexpr size_t kFixedBytes = 17;

// A record of the small layout says its length in 16 bits.
constexpr size_t kMostMetaBytes = kFieldLimit * (kFieldTextLimit + 1);
static_assert(kListValueCountLimit + 1 <= kFieldTextLimit + 1);
static_assert(kFixedBytes + CategoryBytes(kCategoryLimit) + kMostMetaBytes <= 65535);

}  // namespace

PageTableWriter::PageTableWriter(const std::filesystem::path& info,
                                 const std::filesystem::path& data, const IndexCharset& charset)
    : info_(info), data_(data), charset_(charset) {}

uint64_t PageTableWriter::AddPage(const PageEntry& page) {
  constexpr auto kMaxSize = std::numeric_limits<uint32_t>::max();
  constexpr auto kMaxTime = std::numeric_limits<int32_t>::max();
  const uint64_t dataOffset = data_.size();
  info_.WriteNumber(kFixedBytes + page.categories.size() + page.metaValues.size(), 2);
  info_.WriteNumber(dataOffset, 5);
  info_.WriteNumber(std::min<uint64_t>(page.fileSize, kMaxSize), 4);
  const bool dated = page.time > 0 && page.time <= kMaxTime;
  info_.WriteNumber(dated ? static_cast<uint64_t>(page.time) : 0, 4);
  info_.WriteNumber(page.boost, 1);
  info_.WriteNumber(static_cast<uint64_t>(page.fileType), 1);
  info_.Write(page.categories);
  info_.Write(page.metaValues);

  data_.Write(page.address);
  data_.Write("|");
  data_.Write(StoredText(page.title, kMaxTitleBytes, charset_));
  data_.Write("|");
  data_.Write(StoredText(page.description, kMaxDescriptionBytes, charset_));
  data_.Write("|");
  data_.Write(page.image);
  data_.Write("|\n");
  return dataOffset;
}

PageTableWriter::Sizes PageTableWriter::Finish() {
  Sizes sizes;
  sizes.infoBytes = info_.Finish();
  sizes.dataBytes = data_.Finish();
  return sizes;
}

}  // namespace vela::indexer
