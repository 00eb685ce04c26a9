// html_page_fuzz.cc: the reader of pages. Input: the markup, in any character set.
#include <string>

#include "indexer/extract/decoding.h"
#include "indexer/extract/html_page.h"
#include "indexer/extract/page_date.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/clean_text.h"

namespace vela::fuzz {
namespace {

void CheckPage(const indexer::PageContent& page) {
  CheckOneLine(page.title);
  CheckOneLine(page.description);
  for (const auto& [name, content] : page.metas) {
    VELA_CHECK(!name.empty() && !content.empty());
    CheckOneLine(content);
  }
  for (const indexer::TextRun& run : page.body) {
    CheckClean(run.text);
    VELA_CHECK(run.text.find_first_not_of(' ') != run.text.npos);
    VELA_CHECK(run.headingLevel <= 6);
  }
  const int64_t date = indexer::ReadDate(page.time);
  VELA_CHECK(date >= 0 && date <= INT32_MAX);
}

indexer::Reason Parse(std::string_view html, indexer::PageContent& page) {
  indexer::ReadingBudget budget = indexer::StartReading({}, html.size());
  return indexer::ParseHtmlPage(html, budget, page);
}

// All of a page as one text, to compare two runs.
std::string Listing(const indexer::PageContent& page) {
  std::string all = page.title + '\n' + page.description + '\n' + page.canonical + '\n' +
                    page.base + '\n' + page.time + '\n';
  for (const auto& [name, content] : page.metas) all += name + '=' + content + '\n';
  for (const indexer::TextRun& run : page.body) {
    all += std::to_string(run.headingLevel) + run.text + '\n';
  }
  return all;
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string html;
  if (indexer::ConvertToUtf8(Text(data, size), true, html) != indexer::Reason::kNone) return 0;
  indexer::PageContent first;
  indexer::PageContent second;
  const indexer::Reason reason = Parse(html, first);
  VELA_CHECK(reason == Parse(html, second));
  if (reason != indexer::Reason::kNone) return 0;
  CheckPage(first);
  VELA_CHECK(Listing(first) == Listing(second));
  return 0;
}
