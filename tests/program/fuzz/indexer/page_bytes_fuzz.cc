// page_bytes_fuzz.cc: what comes back from a process that reads documents. Input: its answer.
#include <string>

#include "indexer/extract/page_bytes.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/page_content.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  indexer::Reason reason = indexer::Reason::kNone;
  indexer::PageContent page;
  const std::string_view bytes = Text(data, size);
  if (!indexer::ReadPageBytes(bytes, reason, page)) {
    VELA_CHECK(page.title.empty() && page.metas.empty() && page.body.empty());
    return 0;
  }
  VELA_CHECK(reason == indexer::Reason::kNone || indexer::IsReasonOfReader(reason));
  for (const indexer::TextRun& run : page.body) {
    CheckClean(run.text);
    CheckClean(run.anchor);
    VELA_CHECK(run.headingLevel <= 6);
  }
  for (const auto& [name, content] : page.metas) {
    VELA_CHECK(!name.empty() && !content.empty());
    CheckClean(content);
  }
  // What was taken is what was written.
  VELA_CHECK(indexer::PageBytes(reason, page) == bytes);
  return 0;
}
