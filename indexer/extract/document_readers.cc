#include "indexer/extract/document_readers.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include "indexer/extract/outside_program.h"
#include "indexer/extract/pdf_page.h"
#include "indexer/extract/plain_text_page.h"
#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {

constexpr char kExtractProgram[] = "vela_extract";
constexpr char kInput[] = "/dev/stdin";
constexpr std::string_view kRichTextBegin = "{\\rtf";
constexpr std::string_view kContainerBegin = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::string_view kArchiveBegin = "PK\x03\x04";

std::string OwnFolder() {
  std::error_code error;
  const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string() : own.parent_path().string();
}

std::string_view EnvironmentPath() {
  const char* path = getenv("PATH");
  return path == nullptr ? std::string_view() : std::string_view(path);
}

}  // namespace

DocumentReaders::DocumentReaders(const std::string& folder, std::string_view path)
    : extract_(std::filesystem::path(folder) / kExtractProgram),
      pdfProgram_(FindProgram("pdftotext", path)),
      wordProgram_(FindProgram("catdoc", path)),
      sheetsProgram_(FindProgram("xls2csv", path)),
      workers_(extract_) {}

DocumentReaders::DocumentReaders() : DocumentReaders(OwnFolder(), EnvironmentPath()) {}

std::vector<std::string> DocumentReaders::Programs() const {
  return {extract_, pdfProgram_, wordProgram_, sheetsProgram_};
}

Reason DocumentReaders::ReadPdf(std::string_view document, ReadingBudget& budget,
                                PageContent& page) const {
  if (pdfProgram_.empty()) return Reason::kNoPdfProgram;
  ProgramOutput result;
  const Reason reason = RunOutsideProgram(
      extract_, pdfProgram_, {"-htmlmeta", "-enc", "UTF-8", "-", "-"}, document, budget, result);
  if (reason != Reason::kNone) return reason;
  if (result.exitStatus < 0) return Reason::kReaderFailed;
  if (result.errors.find("Incorrect password") != result.errors.npos) return Reason::kEncrypted;
  // It ends well with whatever it could read.
  if (result.exitStatus != 0) return Reason::kDamaged;
  const Reason parsed = ParsePdfText(result.output, budget, page);
  if (parsed == Reason::kMarkupTooSlow) return Reason::kDocumentTooSlow;
  return parsed == Reason::kMarkupTooLarge ? Reason::kDocumentTooLarge : parsed;
}

Reason DocumentReaders::ReadOldOffice(const std::string& program,
                                      const std::vector<std::string>& arguments,
                                      std::string_view document, ReadingBudget& budget,
                                      PageContent& page) const {
  // Of anything else these programs make text, too.
  if (!document.starts_with(kContainerBegin)) return Reason::kDamaged;
  if (program.empty()) return Reason::kNoOldOfficeProgram;
  ProgramOutput result;
  // That of spreadsheets needs the name of a file.
  const Reason reason = RunOutsideProgram(extract_, program, arguments, document, budget, result);
  if (reason != Reason::kNone) return reason;
  if (result.exitStatus < 0) return Reason::kReaderFailed;
  if (result.errors.find("ncrypted") != result.errors.npos) return Reason::kEncrypted;
  if (result.exitStatus != 0 || result.errors.find("OLE file") != result.errors.npos) {
    return Reason::kDamaged;
  }
  if (!IsValidUtf8(result.output)) result.output = RepairedUtf8(result.output);
  ParsePlainTextPage(result.output, page);
  return Reason::kNone;
}

Reason DocumentReaders::Read(FileType type, std::string_view document, ReadingBudget& budget,
                             PageContent& page) {
  page = PageContent();
  Reason reason = Reason::kNone;
  switch (type) {
    case FileType::kPdf:
      return ReadPdf(document, budget, page);
    case FileType::kOldWord:
      // Programs give that ending to whatever they take for a text.
      if (document.starts_with(kRichTextBegin)) {
        return workers_.Read(FileType::kRichText, document, budget, page);
      }
      if (document.starts_with(kArchiveBegin)) {
        return workers_.Read(FileType::kWord, document, budget, page);
      }
      return ReadOldOffice(wordProgram_, {"-d", "utf-8", kInput}, document, budget, page);
    case FileType::kOldSheets:
      // No quotes, and blanks between the cells. The first row is no title.
      reason = ReadOldOffice(sheetsProgram_, {"-d", "utf-8", "-q", "0", "-c", " ", kInput},
                             document, budget, page);
      page.title.clear();
      return reason;
    default:
      return workers_.Read(type, document, budget, page);
  }
}

}  // namespace vela::indexer
