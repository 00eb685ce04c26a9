// page_info.h: `vela_pageinfo.vdat`, the facts of every page: one record a page in page order,
// PageInfoSize bytes in all, without a header or gaps. Little-endian.
//
//   offset, with UseBigPageInfoData
//   0       1       size    field
//   0       0       2 (4)   length of the record, this field included
//   2       4       5       where the page's line begins in the page data
//   7       9       4       size of the page's file in bytes
//   11      13      4       date, seconds since 1970 in UTC, signed; kNoPageDate for none
//   15      17      1       boost: scores of the page are multiplied by it in tenths; 0 and 10
//   leave
//                           them
//   16      18      1       file type, a FileType; others are a site's own
//   17      19      n       category set, NumCatBytes bytes, with UseCats 1: category c is bit c %
//   8,
//                           the lowest first, of byte c / 8
//   17 + n  19 + n          values of the custom meta fields (meta_fields.h), with UseMetaFields 1
//
// What a record does not hold counts as no value.
#pragma once

#include <cstddef>
#include <cstdint>

#include "format/little_endian.h"

namespace vela {

inline constexpr char kPageInfoFileName[] = "vela_pageinfo.vdat";

inline constexpr size_t kDataOffsetWidth = 5;
inline constexpr size_t kFileSizeWidth = 4;
inline constexpr size_t kDateTimeWidth = 4;
inline constexpr size_t kBoostWidth = 1;
inline constexpr size_t kFileTypeWidth = 1;

// Where the fields of a record lie; the length stands at 0.
struct PageInfoLayout {
  size_t lengthWidth;
  size_t dataOffset = lengthWidth;
  size_t fileSize = dataOffset + kDataOffsetWidth;
  size_t dateTime = fileSize + kFileSizeWidth;
  size_t boost = dateTime + kDateTimeWidth;
  size_t fileType = boost + kBoostWidth;
  size_t fixedSize = fileType + kFileTypeWidth;  // the category set begins here

  // The longest record, in bytes.
  constexpr uint64_t LengthLimit() const { return LargestNumber(lengthWidth); }
};
inline constexpr PageInfoLayout kSmallPageInfo = {.lengthWidth = 2};
inline constexpr PageInfoLayout kBigPageInfo = {.lengthWidth = 4};
static_assert(kSmallPageInfo.fixedSize == 17 && kBigPageInfo.fixedSize == 19);

inline constexpr int32_t kNoPageDate = 0;

// Whether scores stay as they are with this boost.
constexpr bool LeavesScores(uint8_t boost) { return boost == 0 || boost == 10; }

// The types that vela_index tells apart. From kPdf on, the FileTypePluginStart that it writes, are
// those that a browser hands to another program or shows in a viewer.
enum class FileType : uint8_t {
  kHtml = 0,
  kText = 1,
  kMarkdown = 2,
  kSubtitles = 3,
  kPdf = 4,
  kWord = 5,          // Office Open XML: a text,
  kSlides = 6,        // a presentation,
  kSheets = 7,        // a spreadsheet
  kOpenDocument = 8,  // any of them
  kEpub = 9,
  kRichText = 10,
  kOldWord = 11,  // the binary formats before Office Open XML
  kOldSlides = 12,
  kOldSheets = 13,
  kPicture = 14,  // by what it says of itself
  kCount,         // of the types; no type itself
};
inline constexpr size_t kFileTypeCount = static_cast<size_t>(FileType::kCount);

// NumCatBytes for so many categories, and the place of one of them in a set.
constexpr size_t CategorySetBytes(size_t categories) { return (categories + 7) / 8; }
constexpr size_t CategoryByte(size_t category) { return category / 8; }
constexpr int CategoryBit(size_t category) { return static_cast<int>(category % 8); }

}  // namespace vela
