#include "index/page_info.h"

#include <algorithm>

#include "format/page_info.h"
#include "format/word_weight.h"
#include "index/byte_cursor.h"
#include "text/numbers.h"

namespace vela {

namespace {

const PageInfoLayout& LayoutOf(const PageTable& pages) {
  return pages.big ? kBigPageInfo : kSmallPageInfo;
}

size_t StartOf(const PageTable& pages, uint32_t page) {
  if (pages.recordLength != 0) return page * pages.recordLength;
  if (pages.starts.empty()) return 0;
  return pages.starts[std::min<size_t>(page, pages.starts.size() - 1)];
}

uint64_t Field(const PageTable& pages, uint32_t page, size_t offset, size_t width) {
  return ReadLittleEndian(pages.image, StartOf(pages, page) + offset, width);
}

// Finds the records' starts. A record of length 0 is the start of every page behind it too, so that
// the table never needs more entries than the image has bytes.
LoadStatus FindRecords(PageTable& pages) {
  const size_t lengthWidth = LayoutOf(pages).lengthWidth;
  const auto wanted = static_cast<size_t>(pages.pageCount);
  const size_t size = pages.image.size();
  if (!pages.starts.TryAllocate(std::min(wanted, size + 1))) return LoadStatus::kNoMemory;
  size_t total = 0;
  for (size_t page = 0; page < wanted; ++page) {
    if (size - total < lengthWidth) return LoadStatus::kRecordBeyondEnd;
    pages.starts[page] = static_cast<uint32_t>(total);
    const uint64_t length = ReadLittleEndian(pages.image, total, lengthWidth);
    if (length > size - total) return LoadStatus::kRecordBeyondEnd;
    if (length == 0) {
      if (!pages.starts.TryResize(page + 1)) return LoadStatus::kNoMemory;
      break;
    }
    total += length;
  }
  return total < size ? LoadStatus::kSlackAtEnd : LoadStatus::kOk;
}

// Whether the lookup file stands for a pass over this image.
bool UseLookup(PageTable& pages, const LookupFile& lookup) {
  if (!lookup.isOpen()) return false;
  const LookupHeader& header = lookup.header();
  if (pages.big || header.pageInfoLength < kSmallPageInfo.lengthWidth ||
      header.pages != static_cast<uint64_t>(pages.pageCount) ||
      header.pageInfoLength * header.pages != pages.image.size() ||
      !IsFileOf(header.pageInfo, pages.file, pages.image.size())) {
    return false;
  }
  pages.recordLength = static_cast<size_t>(header.pageInfoLength);
  pages.hasBoosts = header.pagesWithoutBoost != header.pages;
  return true;
}

}  // namespace

LoadStatus LoadPageInfo(PageTable& pages, const IndexDirectory& directory, const Settings& settings,
                        const LookupFile& lookup) {
  if (!pages.file.Open(directory, kPageInfoFileName, !lookup.isOpen())) {
    return LoadStatus::kCannotOpen;
  }
  pages.recordLength = 0;
  pages.hasBoosts = true;
  pages.big = settings.UseBigPageInfoData == 1;
  pages.pageCount = settings.NumPages;
  pages.categoryBytes = HasCategorySets(settings) && settings.NumCatBytes > 0
                            ? static_cast<size_t>(settings.NumCatBytes)
                            : 0;
  if (settings.PageInfoSize < 0) return LoadStatus::kNoMemory;
  const auto size = static_cast<size_t>(settings.PageInfoSize);
  if (pages.file.bytes().size() < size) return LoadStatus::kTooShort;
  // One 32-bit reference a page must fit in the memory of the process.
  if (settings.NumPages < 0 || settings.NumPages > INT32_MAX / 4) {
    return LoadStatus::kNoMemory;
  }
  pages.image = pages.file.bytes().substr(0, size);
  return UseLookup(pages, lookup) ? LoadStatus::kOk : FindRecords(pages);
}

uint64_t PageDataOffset(const PageTable& pages, uint32_t page) {
  return Field(pages, page, LayoutOf(pages).dataOffset, kDataOffsetWidth);
}

uint32_t PageFileSize(const PageTable& pages, uint32_t page) {
  return WrapToUint32(Field(pages, page, LayoutOf(pages).fileSize, kFileSizeWidth));
}

int32_t PageDateTime(const PageTable& pages, uint32_t page) {
  return WrapToInt32(WrapToUint32(Field(pages, page, LayoutOf(pages).dateTime, kDateTimeWidth)));
}

uint8_t PageBoost(const PageTable& pages, uint32_t page) {
  return static_cast<uint8_t>(Field(pages, page, LayoutOf(pages).boost, kBoostWidth));
}

uint8_t PageFileType(const PageTable& pages, uint32_t page) {
  return static_cast<uint8_t>(Field(pages, page, LayoutOf(pages).fileType, kFileTypeWidth));
}

uint32_t PageTitleMass(const PageTable& pages, uint32_t page) {
  const size_t length = pages.recordLength != 0
                            ? pages.recordLength
                            : Field(pages, page, 0, LayoutOf(pages).lengthWidth);
  if (length < kTitleMassWidth) return 0;
  return WrapToUint32(Field(pages, page, length - kTitleMassWidth, kTitleMassWidth));
}

bool PageCategoryBit(const PageTable& pages, uint32_t page, size_t index, int bit) {
  return (Field(pages, page, LayoutOf(pages).fixedSize + index, 1) >> bit & 1) != 0;
}

std::string_view PageMetaData(const PageTable& pages, uint32_t page) {
  const PageInfoLayout& layout = LayoutOf(pages);
  const size_t start = StartOf(pages, page);
  const uint64_t length = Field(pages, page, 0, layout.lengthWidth);
  const size_t skipped = layout.fixedSize + pages.categoryBytes;
  if (length <= skipped || start + skipped >= pages.image.size()) return {};
  return pages.image.substr(start + skipped, static_cast<size_t>(length) - skipped);
}

}  // namespace vela
