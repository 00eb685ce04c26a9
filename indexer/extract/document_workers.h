// document_workers.h: documents are read by a program beside this one, vela_extract, which can do
// nothing but that: what a hostile document does to it costs that document.
//
// A worker is one process of it. It takes one document after the other through a socket, and is
// replaced when it breaks down, takes too long, or answers what no worker would. Little-endian:
//
//   there   1  FileType
//           8  how many bytes of memory its text may take (ReadingBudget)
//           8  how many milliseconds it may take
//           8  size of the document, and as many bytes
//   back    8  size of the page, and as many bytes (see PageBytes)
#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "format/page_info.h"
#include "indexer/extract/child_process.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

struct DocumentRequest {
  static constexpr size_t kBytes = 25;

  FileType type = FileType::kHtml;
  uint64_t bytesLimit = 0;
  uint64_t milliseconds = 0;
  uint64_t size = 0;  // of the document
};
std::string RequestBytes(const DocumentRequest& request);
// Of kBytes bytes.
DocumentRequest ReadRequest(std::string_view bytes);

class DocumentWorkers {
 public:
  // `program`: the absolute path of vela_extract, which need not be there.
  explicit DocumentWorkers(std::string program);
  ~DocumentWorkers();

  // Has a worker read a document. kNone, or why it is left out. Any number of threads may call it
  // at once; there are as many workers as ever were busy at a time.
  [[nodiscard]] Reason Read(FileType type, std::string_view document, ReadingBudget& budget,
                            PageContent& page);

 private:
  struct Worker {
    ChildProcess process;
    Descriptor socket;
    uint32_t documents = 0;  // that it was given
  };

  bool StartWorker(Worker& worker) const;
  Worker TakeIdle();
  void Return(Worker worker);
  Reason Ask(Worker& worker, FileType type, std::string_view document, ReadingBudget& budget,
             PageContent& page) const;

  std::string program_;
  std::mutex mutex_;
  std::vector<Worker> idle_;  // guarded by mutex_
};

}  // namespace vela::indexer
