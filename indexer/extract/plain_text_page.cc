#include "indexer/extract/plain_text_page.h"

#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {
constexpr size_t kTitleLimit = 120;  // bytes; a longer first line is a paragraph
}

void ParsePlainTextPage(const std::string& text, PageContent& page) {
  page = PageContent();
  const size_t begin = text.find_first_not_of(" \t\r\n\f\v#=*");
  if (begin != text.npos) {
    const size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
    if (end - begin <= kTitleLimit) {
      page.title = text.substr(begin, end - begin);
      CleanText(page.title);
      page.title = CollapseBlanks(page.title);
    }
  }
  TextRun run{text, 0};
  CleanText(run.text);
  if (run.text.find_first_not_of(' ') != run.text.npos) page.body.push_back(std::move(run));
}

}  // namespace vela::indexer
