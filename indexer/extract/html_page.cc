#include "indexer/extract/html_page.h"

#include "indexer/extract/html_content.h"
#include "indexer/extract/tree_construction.h"

namespace vela::indexer {

namespace {

// A hundred megabytes of markup take a few seconds.
constexpr std::chrono::seconds kTimeLimit{60};
constexpr size_t kMemoryLimit = size_t{64} << 20;
constexpr size_t kMemoryFactorLimit = 40;  // and so many times the page

}  // namespace

Reason ParseHtmlPage(std::string_view html, ReadingBudget& budget, PageContent& page) {
  page = PageContent();
  HtmlContent content(page, budget);
  TreeConstruction(html, content, budget).Run();
  content.Finish();
  if (budget.status == Reason::kNone)
    return content.asksForNoindex() ? Reason::kNoindex : Reason::kNone;
  page = PageContent();
  return budget.status;
}

Reason ParseHtmlPage(std::string_view html, PageContent& page) {
  ReadingBudget budget;
  budget.deadline = std::chrono::steady_clock::now() + kTimeLimit;
  budget.bytesLimit = kMemoryLimit + html.size() * kMemoryFactorLimit;
  return ParseHtmlPage(html, budget, page);
}

}  // namespace vela::indexer
