// document_fuzz.cc: the readers of documents that are archives. Input: a line, "word", "slides",
// "sheets", "open", "epub", "show" or "raw"; behind it the main part of such a document, which is
// packed with what else it needs ("show": the stream of an older presentation, its last record the
// last edit), or of "raw" a whole file, tried as each of them.
#include <string>

#include "indexer/documents/documents.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/page_content.h"
#include "support/compound_builder.h"
#include "support/sample_documents.h"

namespace vela::fuzz {
namespace {

void ReadAs(FileType type, const std::string& bytes) {
  const indexer::ReadingLimits limits = {.bytes = size_t{8} << 20};
  indexer::PageContent pages[2];
  indexer::Reason reasons[2];
  for (int i = 0; i < 2; ++i) {
    indexer::ReadingBudget budget = indexer::StartReading(limits, bytes.size());
    reasons[i] = indexer::ReadDocument(type, bytes, budget, pages[i]);
  }
  VELA_CHECK(reasons[0] == reasons[1] && Listing(pages[0]) == Listing(pages[1]));
  CheckPage(pages[0]);
  if (reasons[0] != indexer::Reason::kNone) VELA_CHECK(pages[0].body.empty());
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view rest = Text(data, size);
  const std::string_view kind = TakeLine(rest);
  const std::string part(rest);
  if (kind == "word") {
    support::ZipParts parts = support::WordParts("");
    parts[2].second = part;
    ReadAs(FileType::kWord, support::ZipOf(parts));
  } else if (kind == "slides") {
    support::ZipParts parts = support::OfficeParts("a.xml", part);
    parts.emplace_back("_rels/a.xml.rels", support::RelationshipsXml({{"r1", "slide", "a.xml"}}));
    ReadAs(FileType::kSlides, support::ZipOf(parts));
  } else if (kind == "sheets") {
    support::ZipParts parts = support::OfficeParts("a.xml", part);
    parts.emplace_back("_rels/a.xml.rels",
                       support::RelationshipsXml(
                           {{"r1", "worksheet", "a.xml"}, {"r2", "sharedStrings", "a.xml"}}));
    ReadAs(FileType::kSheets, support::ZipOf(parts));
  } else if (kind == "open") {
    support::ZipParts parts = support::OpenDocumentParts("");
    parts[3].second = part;
    ReadAs(FileType::kOpenDocument, support::ZipOf(parts));
  } else if (kind == "epub") {
    support::ZipParts parts = support::EpubParts();
    parts[2].second = part;
    ReadAs(FileType::kEpub, support::ZipOf(parts));
  } else if (kind == "show") {
    constexpr size_t kEditBytes = 36;
    const size_t edit = part.size() < kEditBytes ? 0 : part.size() - kEditBytes;
    const std::string user =
        std::string(16, '\0') + support::LittleEndian(static_cast<uint32_t>(edit), 4);
    ReadAs(FileType::kOldSlides,
           support::CompoundOf({{"Current User", user}, {"PowerPoint Document", part}}));
  } else if (kind == "raw") {
    for (const FileType type : {FileType::kWord, FileType::kOpenDocument, FileType::kEpub,
                                FileType::kOldSlides, FileType::kPicture}) {
      ReadAs(type, part);
    }
  }
  return 0;
}
