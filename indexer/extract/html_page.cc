#include "indexer/extract/html_page.h"

#include "indexer/extract/html_content.h"
#include "indexer/extract/tree_construction.h"

namespace vela::indexer {

Reason ParseHtmlPage(std::string_view html, ReadingBudget& budget, PageContent& page,
                     const ContentChoice& choice) {
  page = PageContent();
  HtmlContent content(page, budget, choice);
  TreeConstruction(html, content, budget).Run();
  content.Finish();
  if (budget.status == Reason::kNone)
    return content.asksForNoindex() ? Reason::kNoindex : Reason::kNone;
  page = PageContent();
  return budget.status;
}

}  // namespace vela::indexer
