// page_info_fuzz.cc: the reader of the page records. Input: a line with UseBigPageInfoData,
// NumPages, PageInfoSize, UseCats, NumCatBytes and UseMetaFields, then the file.
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "format/page_info.h"
#include "index/page_info.h"
#include "program/fuzz/check.h"
#include "support/scratch_directory.h"

namespace vela::fuzz {
namespace {

// Every accessor of the page, added up: it reads what a sanitizer can watch.
uint64_t Touch(const PageTable& pages, uint32_t page) {
  uint64_t sum = PageDataOffset(pages, page) + PageFileSize(pages, page);
  sum += static_cast<uint32_t>(PageDateTime(pages, page));
  sum += PageBoost(pages, page);
  sum += PageFileType(pages, page);
  sum += PageTitleMass(pages, page);
  for (size_t i = 0; i < pages.categoryBytes && i < 8; ++i) {
    if (PageCategoryBit(pages, page, i, 7)) ++sum;
  }
  for (const char c : PageMetaData(pages, page)) sum += static_cast<unsigned char>(c);
  return sum;
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  static const support::ScratchDirectory scratch;
  std::string_view input = Text(data, size);
  const auto settings = std::make_unique<Settings>();
  const std::string numbers(TakeLine(input));
  if (sscanf(numbers.c_str(), "%d %d %d %d %d %d", &settings->UseBigPageInfoData,
             &settings->NumPages, &settings->PageInfoSize, &settings->UseCats,
             &settings->NumCatBytes, &settings->UseMetaFields) != 6) {
    return 0;
  }
  std::ofstream(scratch.path() / kPageInfoFileName, std::ios::binary | std::ios::trunc) << input;
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  PageTable pages;
  const LookupFile noLookup;
  if (LoadPageInfo(pages, directory, *settings, noLookup) != LoadStatus::kOk) return 0;
  VELA_CHECK(pages.pageCount == settings->NumPages);
  // Pages without end share the last record, so the first ones tell it all.
  for (int32_t page = 0; page < pages.pageCount && page < 1000; ++page) {
    const uint64_t sum = Touch(pages, static_cast<uint32_t>(page));
    VELA_CHECK(sum == Touch(pages, static_cast<uint32_t>(page)));
  }
  return 0;
}
