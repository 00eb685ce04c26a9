// text_type_fuzz.cc: the readers of Markdown, subtitles and the output of pdftotext. Input: a line,
// "markdown", "subtitles" or "pdf"; behind it what such a reader is given.
#include <string>

#include "indexer/extract/markdown_page.h"
#include "indexer/extract/pdf_page.h"
#include "indexer/extract/subtitles_page.h"
#include "indexer/words/clean_text.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/page_content.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view rest = Text(data, size);
  const std::string_view kind = TakeLine(rest);
  const std::string text = indexer::RepairedUtf8(rest);  // as a file was brought into UTF-8
  indexer::PageContent page;
  if (kind == "markdown") {
    indexer::ReadingBudget budget = indexer::StartReading({}, text.size());
    if (indexer::ParseMarkdownPage(text, budget, page) != indexer::Reason::kNone) return 0;
  } else if (kind == "subtitles") {
    indexer::ParseSubtitlesPage(text, page);
    VELA_CHECK(page.body.size() <= 1);
  } else if (kind == "pdf") {
    indexer::ReadingBudget budget = indexer::StartReading({}, rest.size());
    // Of a program, in whatever bytes.
    if (indexer::ParsePdfText(rest, budget, page) != indexer::Reason::kNone) return 0;
  }
  CheckPage(page);
  return 0;
}
