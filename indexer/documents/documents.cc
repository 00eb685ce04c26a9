#include "indexer/documents/documents.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "indexer/documents/epub_page.h"
#include "indexer/documents/old_slides_page.h"
#include "indexer/documents/open_document_page.h"
#include "indexer/documents/picture_page.h"
#include "indexer/documents/rich_text_page.h"
#include "indexer/documents/sheets_page.h"
#include "indexer/documents/slides_page.h"
#include "indexer/documents/word_page.h"
#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {

struct DocumentReader {
  FileType type;
  Reason (*read)(std::string_view bytes, ReadingBudget& budget, PageContent& page);
};

constexpr DocumentReader kReaders[] = {
    {FileType::kWord, &ReadWordPage},           {FileType::kSlides, &ReadSlidesPage},
    {FileType::kSheets, &ReadSheetsPage},       {FileType::kOpenDocument, &ReadOpenDocumentPage},
    {FileType::kEpub, &ReadEpubPage},           {FileType::kRichText, &ReadRichTextPage},
    {FileType::kOldSlides, &ReadOldSlidesPage}, {FileType::kPicture, &ReadPicturePage},
};

const DocumentReader* ReaderOf(FileType type) {
  const auto* found = std::ranges::find(kReaders, type, &DocumentReader::type);
  return found == std::end(kReaders) ? nullptr : found;
}

// Office programs put an encrypted document, whatever it was, into a container of the older kind,
// under a name in UTF-16.
bool IsEncryptedContainer(std::string_view bytes) {
  constexpr std::string_view kContainer = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
  if (!bytes.starts_with(kContainer)) return false;
  std::string name;
  for (const char c : std::string_view("EncryptedPackage")) name.append({c, '\0'});
  return bytes.find(name) != bytes.npos;
}

}  // namespace

bool IsDocument(FileType type) { return ReaderOf(type) != nullptr; }

void PrepareReaders() {
  std::string text = "e\u0301";
  CleanText(text);
}

Reason ReadDocument(FileType type, std::string_view bytes, ReadingBudget& budget,
                    PageContent& page) {
  page = PageContent();
  const DocumentReader* reader = ReaderOf(type);
  if (reader == nullptr) return Reason::kDamaged;
  Reason reason = Reason::kEncrypted;
  if (!IsEncryptedContainer(bytes)) reason = reader->read(bytes, budget, page);
  if (reason == Reason::kNone) reason = budget.status;
  if (reason != Reason::kNone) page = PageContent();
  return reason;
}

}  // namespace vela::indexer
