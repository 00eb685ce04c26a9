// Reads documents for vela_index, which starts it: locked in, so that what is in them cannot do
// harm (sandbox.h). Without arguments it reads one document after the other from its standard
// input, which is a socket (document_workers.h). With "--run LIMIT PROGRAM ARGUMENTS" it becomes
// that program, which may write LIMIT bytes.
#include <fcntl.h>
#include <unicode/uclean.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <clocale>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/documents/documents.h"
#include "indexer/documents/sandbox.h"
#include "indexer/extract/child_process.h"
#include "indexer/extract/document_workers.h"
#include "indexer/extract/page_bytes.h"

namespace {

using namespace vela;
using namespace vela::indexer;

// Appends exactly `size` bytes of the standard input; the memory for them is taken as they come.
bool Receive(size_t size, std::string& out) {
  constexpr size_t kPortion = size_t{1} << 16;
  while (size != 0) {
    const size_t before = out.size();
    out.resize(before + std::min(size, kPortion));
    const ssize_t got = read(STDIN_FILENO, out.data() + before, out.size() - before);
    if (got < 0 && errno == EINTR) {
      out.resize(before);
      continue;
    }
    if (got <= 0) return false;
    out.resize(before + static_cast<size_t>(got));
    size -= static_cast<size_t>(got);
  }
  return true;
}

bool Send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = write(STDOUT_FILENO, bytes.data(), bytes.size());
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

std::string Answer(const DocumentRequest& request, std::string_view document) try {
  ReadingBudget budget;
  budget.deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(request.milliseconds);
  budget.bytesLimit = request.bytesLimit;
  PageContent page;
  const Reason reason = ReadDocument(request.type, document, budget, page);
  return PageBytes(reason, page);
} catch (const std::bad_alloc&) {
  return PageBytes(Reason::kNoMemory, {});
}

// Answers until the other end is closed.
void Serve() {
  std::string head;
  while (Receive(DocumentRequest::kBytes, head)) {
    const DocumentRequest request = ReadRequest(head);
    head.clear();
    std::string document;
    if (!Receive(request.size, document)) return;
    const std::string page = Answer(request, document);
    std::string size;
    for (size_t i = 0; i < sizeof(uint64_t); ++i) {
      size += static_cast<char>(uint64_t{page.size()} >> (8 * i));
    }
    if (!Send(size) || !Send(page)) return;
  }
}

int Run(int argc, char** argv) {
  constexpr int kLeast = 4;
  constexpr uint64_t kSeconds = 120;
  SandboxLimits limits = {.seconds = kSeconds};
  const std::string_view number = argc < kLeast ? "" : argv[2];
  const auto read = std::from_chars(number.data(), number.data() + number.size(), limits.written);
  if (number.empty() || read.ec != std::errc() || read.ptr != number.data() + number.size()) {
    return kCannotRun;
  }
  RunLockedIn(argv[3], std::vector<std::string>(argv + 3, argv + argc), limits);
  return kCannotRun;
}

}  // namespace

int main(int argc, char** argv) {
  // Nothing that vela_index has open is of use here.
  close_range(STDERR_FILENO + 1, ~0U, 0);
  if (argc > 1 && std::string_view(argv[1]) == "--run") return Run(argc, argv);
  if (argc > 1 || isatty(STDIN_FILENO) != 0) {
    constexpr std::string_view kUsage =
        "vela_extract reads documents for vela_index, which starts it. See vela_index(1).\n";
    return write(STDERR_FILENO, kUsage.data(), kUsage.size()) < 0 ? 1 : 2;
  }
  // What libraries read from files at their first use.
  setlocale(LC_CTYPE, "C.UTF-8");
  UErrorCode status = U_ZERO_ERROR;
  u_init(&status);
  PrepareReaders();
  if (U_FAILURE(status) || !LockIn({})) return kCannotRun;
  Serve();
  // Nothing is left to be put in order.
  _exit(0);
}
