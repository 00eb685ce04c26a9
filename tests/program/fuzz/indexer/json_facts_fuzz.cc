// json_facts_fuzz.cc: the reader of what a page says of itself as JSON-LD. Input: the script.
#include <string>

#include "indexer/extract/declared_facts.h"
#include "indexer/extract/json_facts.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/page_content.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  indexer::ReadingBudget budget = indexer::StartReading({}, size);
  indexer::PageContent page;
  indexer::AddJsonFacts(Text(data, size), budget, page);
  VELA_CHECK(page.metas.size() <= 100);
  for (const auto& [name, content] : page.metas) {
    VELA_CHECK(name.starts_with("json-ld:") && name.size() <= 108);
  }
  indexer::AddFacts(page);
  CheckPage(page);
  return 0;
}
