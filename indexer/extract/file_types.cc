#include "indexer/extract/file_types.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "indexer/extract/declared_language.h"
#include "indexer/extract/decoding.h"
#include "indexer/extract/html_page.h"
#include "indexer/extract/markdown_page.h"
#include "indexer/extract/plain_text_page.h"
#include "indexer/extract/subtitles_page.h"
#include "indexer/extract/xhtml_page.h"

namespace vela::indexer {

namespace {

// The bytes are given up before the text is parsed, so that a large page is not held twice.

// As XML what is sent or declared as that. Browsers show nothing but a message of a page that is
// sent as XML and is not well-formed; its visitors get it in some other way, so it is read all the
// same.
Reason ReadHtml(const SourceItem& item, FileContent file, const ContentChoice& choice,
                ReadingBudget& budget, PageContent& content) {
  std::string text;
  Reason reason = TurnIntoUtf8(std::move(file.bytes), true, budget, text, file.charset);
  if (reason != Reason::kNone) return reason;
  std::string fault;
  if (item.isXml || text.starts_with("<?xml")) {
    const ReadingBudget whole = budget;
    reason = ParseXhtmlPage(text, budget, content, fault, choice);
    content.language = DeclaredLanguage(text);
    if (fault.empty()) return reason;
    budget = whole;
  }
  reason = ParseHtmlPage(text, budget, content, choice);
  content.language = DeclaredLanguage(text);
  if (item.isXml) content.markupFault = std::move(fault);
  return reason;
}

Reason ReadMarkdown(const SourceItem&, FileContent file, const ContentChoice& choice,
                    ReadingBudget& budget, PageContent& content) {
  std::string text;
  const Reason reason = TurnIntoUtf8(std::move(file.bytes), false, budget, text, file.charset);
  if (reason != Reason::kNone) return reason;
  return ParseMarkdownPage(text, budget, content, choice);
}

Reason ReadSubtitles(const SourceItem&, FileContent file, const ContentChoice&,
                     ReadingBudget& budget, PageContent& content) {
  std::string text;
  const Reason reason = TurnIntoUtf8(std::move(file.bytes), false, budget, text, file.charset);
  if (reason != Reason::kNone) return reason;
  if (!TakeBytes(budget, text.size())) return budget.status;
  ParseSubtitlesPage(text, content);
  return Reason::kNone;
}

Reason ReadPlainText(const SourceItem&, FileContent file, const ContentChoice&,
                     ReadingBudget& budget, PageContent& content) {
  std::string text;
  const Reason reason = TurnIntoUtf8(std::move(file.bytes), false, budget, text, file.charset);
  if (reason != Reason::kNone) return reason;
  if (!TakeBytes(budget, text.size())) return budget.status;
  ParsePlainTextPage(text, content);
  return Reason::kNone;
}

struct TypeReader {
  FileType type;
  Reason (*read)(const SourceItem& item, FileContent file, const ContentChoice& choice,
                 ReadingBudget& budget, PageContent& content);
};

// Of those read here. All others are documents, read in processes of their own.
constexpr TypeReader kTypeReaders[] = {
    {FileType::kHtml, &ReadHtml},
    {FileType::kText, &ReadPlainText},
    {FileType::kMarkdown, &ReadMarkdown},
    {FileType::kSubtitles, &ReadSubtitles},
};

}  // namespace

Reason ReadContent(const SourceItem& item, FileContent file, DocumentReaders* documents,
                   const ContentChoice& choice, ReadingBudget& budget, PageContent& content) {
  const auto* reader = std::ranges::find(kTypeReaders, item.type, &TypeReader::type);
  if (reader != std::end(kTypeReaders)) {
    return reader->read(item, std::move(file), choice, budget, content);
  }
  if (documents == nullptr) return Reason::kReaderMissing;
  return documents->Read(item.type, file.bytes, budget, content);
}

}  // namespace vela::indexer
