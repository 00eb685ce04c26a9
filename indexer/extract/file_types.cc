#include "indexer/extract/file_types.h"

#include <iterator>
#include <utility>

#include "indexer/extract/decoding.h"
#include "indexer/extract/html_page.h"
#include "indexer/extract/plain_text_page.h"
#include "indexer/extract/xhtml_page.h"

namespace vela::indexer {

namespace {

// The bytes are given up before the text is parsed, so that a large page is not held twice.

// As XML what is sent or declared as that. Browsers show nothing but a message of a page that is
// sent as XML and is not well-formed; its visitors get it in some other way, so it is read all the
// same.
Reason ReadHtml(const SourceItem& item, FileContent file, ReadingBudget& budget,
                PageContent& content) {
  std::string text;
  Reason reason = ConvertToUtf8(file.bytes, true, budget, text, file.charset);
  if (reason != Reason::kNone) return reason;
  file.bytes = {};
  std::string fault;
  if (item.isXml || text.starts_with("<?xml")) {
    const ReadingBudget whole = budget;
    reason = ParseXhtmlPage(text, budget, content, fault);
    if (fault.empty()) return reason;
    budget = whole;
  }
  reason = ParseHtmlPage(text, budget, content);
  if (item.isXml) content.markupFault = std::move(fault);
  return reason;
}

Reason ReadPlainText(const SourceItem&, FileContent file, ReadingBudget& budget,
                     PageContent& content) {
  std::string text;
  const Reason reason = ConvertToUtf8(file.bytes, false, budget, text, file.charset);
  if (reason != Reason::kNone) return reason;
  file.bytes = {};
  if (!TakeBytes(budget, text.size())) return budget.status;
  ParsePlainTextPage(text, content);
  return Reason::kNone;
}

struct TypeReader {
  FileType type;
  Reason (*read)(const SourceItem& item, FileContent file, ReadingBudget& budget,
                 PageContent& content);
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

Reason ReadContent(const SourceItem& item, FileContent file, ReadingBudget& budget,
                   PageContent& content) {
  return kTypeReaders[static_cast<size_t>(item.type)].read(item, std::move(file), budget, content);
}

}  // namespace vela::indexer
