// document_readers.h: the programs that read documents, found once for all pages of a run.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "format/page_info.h"
#include "indexer/extract/document_workers.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

class DocumentReaders {
 public:
  // `folder`: where vela_extract lies. `path`: the folders in which other programs are looked for,
  // with ":" between them, before those of the system.
  DocumentReaders(const std::string& folder, std::string_view path);
  // Beside this program, and in the PATH of the environment.
  DocumentReaders();

  // The programs, by their whole paths; empty for those that are not there.
  std::vector<std::string> Programs() const;

  // Has a program read a document of that type, in a process of its own: nothing that is in it can
  // harm this one. kNone, or why it is left out. Any number of threads may call it at once.
  [[nodiscard]] Reason Read(FileType type, std::string_view document, ReadingBudget& budget,
                            PageContent& page);

 private:
  Reason ReadPdf(std::string_view document, ReadingBudget& budget, PageContent& page) const;
  Reason ReadOldOffice(const std::string& program, const std::vector<std::string>& arguments,
                       std::string_view document, ReadingBudget& budget, PageContent& page) const;

  std::string extract_;     // vela_extract
  std::string pdfProgram_;  // these are empty where there is none
  std::string wordProgram_;
  std::string sheetsProgram_;
  DocumentWorkers workers_;
};

}  // namespace vela::indexer
