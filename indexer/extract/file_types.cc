#include "indexer/extract/file_types.h"

#include <iterator>
#include <utility>

#include "indexer/extract/decoding.h"
#include "indexer/extract/html_page.h"
#include "indexer/extract/plain_text_page.h"

namespace vela::indexer {

namespace {

// The bytes are given up before the text is parsed, so that a large page is not held twice.

Reason ReadHtml(std::string bytes, ReadingBudget& budget, PageContent& content) {
  std::string text;
  const Reason reason = ConvertToUtf8(bytes, true, text);
  if (reason != Reason::kNone) return reason;
  bytes = {};
  return ParseHtmlPage(text, budget, content);
}

Reason ReadPlainText(std::string bytes, ReadingBudget& budget, PageContent& content) {
  std::string text;
  const Reason reason = ConvertToUtf8(bytes, false, text);
  if (reason != Reason::kNone) return reason;
  bytes = {};
  if (!TakeBytes(budget, text.size())) return budget.status;
  ParsePlainTextPage(text, content);
  return Reason::kNone;
}

struct TypeReader {
  FileType type;
  Reason (*read)(std::string bytes, ReadingBudget& budget, PageContent& content);
};

constexpr TypeReader kTypeReaders[] = {
    {FileType::kHtml, &ReadHtml},
    {FileType::kText, &ReadPlainText},
};

constexpr bool EachTypeHasItsPlace() {
  for (size_t i = 0; i < std::size(kTypeReaders); ++i) {
    if (kTypeReaders[i].type != static_cast<FileType>(i)) return false;
  }
  return std::size(kTypeReaders) == kFileTypeCount;
}
static_assert(EachTypeHasItsPlace());

}  // namespace

Reason ReadContent(FileType type, std::string bytes, ReadingBudget& budget, PageContent& content) {
  return kTypeReaders[static_cast<size_t>(type)].read(std::move(bytes), budget, content);
}

}  // namespace vela::indexer
