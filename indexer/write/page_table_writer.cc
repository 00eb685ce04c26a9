#include "indexer/write/page_table_writer.h"

#include <algorithm>
#include <limits>

#include "format/page_data.h"
#include "format/page_info.h"
#include "format/word_weight.h"
#include "index/page_data.h"
#include "indexer/collect/category_set.h"
#include "indexer/config/site_config.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr size_t kLineFeed = 1;
static_assert(2 * kAddressLimit + kPageTitleLimit + kPageDescriptionLimit + kPageDataFields +
                  kLineFeed <=
              kPageDataLineLimit);

constexpr std::string_view kFieldEnd(&kPageDataFieldEnd, 1);
constexpr const PageInfoLayout& kLayout = kSmallPageInfo;
constexpr size_t kMostMetaBytes = kFieldLimit * (kFieldTextLimit + 1);
static_assert(kListValueCountLimit + 1 <= kFieldTextLimit + 1);
static_assert(kLayout.fixedSize + CategorySetBytes(kCategoryLimit) + kMostMetaBytes +
                  kTitleMassWidth <=
              kLayout.LengthLimit());

// A date as a record holds it.
uint64_t RecordedTime(int64_t time) {
  const bool dated = time > 0 && time <= std::numeric_limits<int32_t>::max();
  return static_cast<uint64_t>(dated ? time : kNoPageDate);
}

// Little-endian.
void PutNumber(uint64_t number, std::span<char> bytes) {
  for (char& byte : bytes) {
    byte = static_cast<char>(number & 0xFF);
    number >>= 8;
  }
}

}  // namespace

PageTableWriter::PageTableWriter(const std::filesystem::path& info,
                                 const std::filesystem::path& data)
    : info_(info), data_(data) {}

void PageTableWriter::AddPage(const PageEntry& page) {
  if (info_.size() > std::numeric_limits<int32_t>::max()) {
    throw IndexError(ExitStatus::kFailed,
                     "The pages have more categories and fields than one index can hold. Index the "
                     "site's parts into several folders.");
  }
  records_.push_back(static_cast<uint32_t>(info_.size()));
  const size_t massWidth = page.hasTitleMass ? kTitleMassWidth : 0;
  info_.WriteNumber(kLayout.fixedSize + page.categories.size() + page.metaValues.size() + massWidth,
                    kLayout.lengthWidth);
  info_.WriteNumber(data_.size(), kDataOffsetWidth);
  info_.WriteNumber(std::min(page.fileSize, LargestNumber(kFileSizeWidth)), kFileSizeWidth);
  info_.WriteNumber(RecordedTime(page.time), kDateTimeWidth);
  info_.WriteNumber(page.boost, kBoostWidth);
  info_.WriteNumber(static_cast<uint64_t>(page.fileType), kFileTypeWidth);
  info_.Write(page.categories);
  info_.Write(page.metaValues);
  if (page.hasTitleMass) info_.WriteNumber(0, kTitleMassWidth);

  AddLine({.address = page.address,
           .title = page.title,
           .description = page.description,
           .image = page.image});
}

uint64_t PageTableWriter::AddLine(const PageLine& line) {
  const uint64_t begin = data_.size();
  for (const std::string* field : {&line.address, &line.title, &line.description, &line.image}) {
    data_.Write(*field);
    data_.Write(kFieldEnd);
  }
  data_.Write("\n");
  return begin;
}

uint64_t PageTableWriter::LineAt(uint32_t page) {
  const std::string bytes = info_.Read(records_[page] + kLayout.dataOffset, kDataOffsetWidth);
  uint64_t line = 0;
  for (size_t i = bytes.size(); i-- > 0;) line = line << 8 | static_cast<unsigned char>(bytes[i]);
  return line;
}

PageLine PageTableWriter::ReadLine(uint32_t page) {
  const std::string bytes = data_.Read(LineAt(page), kPageDataLineLimit);
  PageTexts texts;
  if (!ReadPageData(bytes, 0, texts)) return {};  // the disk lost what was written
  return {.address = std::string(texts.url),
          .title = std::string(texts.title),
          .description = std::string(texts.description),
          .image = std::string(texts.image)};
}

void PageTableWriter::WriteChanges() {
  if (!changed_.empty()) info_.Replace(changedAt_, changed_);
  changed_.clear();
}

std::span<char> PageTableWriter::Record(uint32_t page) {
  constexpr size_t kPortion = size_t{64} << 10;
  const uint64_t begin = records_[page];
  const auto size = static_cast<size_t>(EndOf(page) - begin);
  if (begin < changedAt_ || begin + size > changedAt_ + changed_.size()) {
    WriteChanges();
    changed_ = info_.Read(begin, std::max(kPortion, size));
    changedAt_ = begin;
    if (changed_.size() < size) {
      throw IndexError(ExitStatus::kFailed,
                       "The page table cannot be read back. Check the disk it lies on.");
    }
  }
  return std::span(changed_).subspan(static_cast<size_t>(begin - changedAt_), size);
}

void PageTableWriter::SetTime(uint32_t page, int64_t time) {
  PutNumber(RecordedTime(time), Record(page).subspan(kLayout.dateTime, kDateTimeWidth));
}

void PageTableWriter::SetTitleMass(uint32_t page, uint32_t mass) {
  PutNumber(mass, Record(page).last(kTitleMassWidth));
}

void PageTableWriter::AddToCategories(uint32_t page, std::string_view categories) {
  const std::span<char> at = Record(page).subspan(kLayout.fixedSize, categories.size());
  std::string all(at.begin(), at.end());
  AddCategories(categories, all);
  std::ranges::copy(all, at.begin());
}

PageTableWriter::Sizes PageTableWriter::Finish() {
  WriteChanges();
  Sizes sizes;
  sizes.infoBytes = info_.Finish();
  sizes.dataBytes = data_.Finish();
  return sizes;
}

}  // namespace vela::indexer
