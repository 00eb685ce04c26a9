// html_page_fuzz.cc: the reader of pages. Input: the markup, in any character set.
#include <string>

#include "indexer/extract/decoding.h"
#include "indexer/extract/html_page.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/page_content.h"

namespace vela::fuzz {
namespace {

indexer::Reason Parse(std::string_view html, indexer::PageContent& page) {
  indexer::ReadingBudget budget = indexer::StartReading({}, html.size());
  return indexer::ParseHtmlPage(html, budget, page);
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string html;
  indexer::ReadingBudget budget;
  if (indexer::ConvertToUtf8(Text(data, size), true, budget, html) != indexer::Reason::kNone)
    return 0;
  indexer::PageContent first;
  indexer::PageContent second;
  const indexer::Reason reason = Parse(html, first);
  VELA_CHECK(reason == Parse(html, second));
  if (reason != indexer::Reason::kNone) return 0;
  CheckPage(first);
  VELA_CHECK(Listing(first) == Listing(second));
  return 0;
}
