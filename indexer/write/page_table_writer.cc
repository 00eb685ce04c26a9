#include "indexer/write/page_table_writer.h"

#include <algorithm>
#include <limits>

#include "format/page_data.h"
#include "format/page_info.h"
#include "format/word_weight.h"
#include "index/page_data.h"
#include "indexer/collect/category_set.h"
#include "indexer/config/site_config.h"

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

}  // namespace

PageTableWriter::PageTableWriter(const std::filesystem::path& info,
                                 const std::filesystem::path& data)
    : info_(info), data_(data) {}

void PageTableWriter::AddPage(const PageEntry& page) {
  places_.push_back({.record = info_.size(), .line = data_.size()});
  const size_t massWidth = page.hasTitleMass ? kTitleMassWidth : 0;
  info_.WriteNumber(kLayout.fixedSize + page.categories.size() + page.metaValues.size() + massWidth,
                    kLayout.lengthWidth);
  info_.WriteNumber(places_.back().line, kDataOffsetWidth);
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

PageLine PageTableWriter::ReadLine(uint32_t page) {
  const std::string bytes = data_.Read(LineAt(page), kPageDataLineLimit);
  PageTexts texts;
  if (!ReadPageData(bytes, 0, texts)) return {};  // the disk lost what was written
  return {.address = std::string(texts.url),
          .title = std::string(texts.title),
          .description = std::string(texts.description),
          .image = std::string(texts.image)};
}

void PageTableWriter::SetTime(uint32_t page, int64_t time) {
  info_.ReplaceNumber(places_[page].record + kLayout.dateTime, RecordedTime(time), kDateTimeWidth);
}

void PageTableWriter::SetTitleMass(uint32_t page, uint32_t mass) {
  const uint64_t end = page + 1 < places_.size() ? places_[page + 1].record : info_.size();
  info_.ReplaceNumber(end - kTitleMassWidth, mass, kTitleMassWidth);
}

void PageTableWriter::AddToCategories(uint32_t page, std::string_view categories) {
  const uint64_t at = places_[page].record + kLayout.fixedSize;
  std::string all = info_.Read(at, categories.size());
  AddCategories(categories, all);
  info_.Replace(at, all);
}

PageTableWriter::Sizes PageTableWriter::Finish() {
  Sizes sizes;
  sizes.infoBytes = info_.Finish();
  sizes.dataBytes = data_.Finish();
  return sizes;
}

}  // namespace vela::indexer
