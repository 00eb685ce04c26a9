// rich_text_fuzz.cc: the reader of Rich Text Format. Input: a document.
#include <string>

#include "indexer/documents/rich_text_page.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/page_content.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  const std::string_view bytes = Text(data, size);
  indexer::PageContent pages[2];
  indexer::Reason reasons[2];
  for (int i = 0; i < 2; ++i) {
    indexer::ReadingBudget budget = indexer::StartReading({}, size);
    reasons[i] = indexer::ReadRichTextPage(bytes, budget, pages[i]);
  }
  VELA_CHECK(reasons[0] == reasons[1] && Listing(pages[0]) == Listing(pages[1]));
  CheckPage(pages[0]);
  VELA_CHECK(bytes.starts_with("{\\rtf") || reasons[0] == indexer::Reason::kDamaged);
  return 0;
}
