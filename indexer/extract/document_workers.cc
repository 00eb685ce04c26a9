#include "indexer/extract/document_workers.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <utility>

#include "index/byte_cursor.h"
#include "indexer/extract/page_bytes.h"

namespace vela::indexer {

namespace {

constexpr int kLookMilliseconds = 50;
// Of memory that a worker loses or breaks into pieces, no more than this many documents' worth
// gathers.
constexpr uint32_t kDocumentsOfWorker = 1000;
constexpr size_t kSizeWidth = 8;

void AppendNumber(uint64_t value, size_t width, std::string& out) {
  for (size_t i = 0; i < width; ++i) out += static_cast<char>(value >> (8 * i));
}

uint64_t MillisecondsLeft(const ReadingBudget& budget) {
  using namespace std::chrono;
  constexpr int64_t kDay = 24 * 3600 * 1000;  // where there is no deadline
  const auto now = steady_clock::now();
  if (budget.deadline <= now) return 0;
  if (budget.deadline - now > milliseconds(kDay)) return kDay;
  return static_cast<uint64_t>(duration_cast<milliseconds>(budget.deadline - now).count());
}

// Waits until the socket is ready, or `budget` is used up.
bool WaitFor(int socket, int16_t events, ReadingBudget& budget) {
  for (;;) {
    struct pollfd ready = {socket, events, 0};
    if (poll(&ready, 1, kLookMilliseconds) > 0) return true;
    CheckBudget(budget);
    if (budget.status != Reason::kNone) return false;
  }
}

// False: the other end broke down, or `budget` is used up.
bool Send(int socket, std::string_view bytes, ReadingBudget& budget) {
  while (!bytes.empty()) {
    if (!WaitFor(socket, POLLOUT, budget)) return false;
    const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

// Appends exactly `size` bytes. The memory for them is taken as they come.
bool Receive(int socket, size_t size, ReadingBudget& budget, std::string& out) {
  constexpr size_t kPortion = size_t{1} << 16;
  while (size != 0) {
    if (!WaitFor(socket, POLLIN, budget)) return false;
    const size_t before = out.size();
    const size_t portion = std::min(size, kPortion);
    out.resize(before + portion);
    const ssize_t got = recv(socket, out.data() + before, portion, MSG_DONTWAIT);
    out.resize(before + static_cast<size_t>(std::max<ssize_t>(got, 0)));
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (got <= 0) return false;
    size -= static_cast<size_t>(got);
  }
  return true;
}

// The same of a document, whose reader says it of the text.
Reason OfDocument(Reason reason) {
  if (reason == Reason::kMarkupTooSlow) return Reason::kDocumentTooSlow;
  return reason == Reason::kMarkupTooLarge ? Reason::kDocumentTooLarge : reason;
}

}  // namespace

std::string RequestBytes(const DocumentRequest& request) {
  std::string out;
  AppendNumber(static_cast<uint64_t>(request.type), 1, out);
  AppendNumber(request.bytesLimit, kSizeWidth, out);
  AppendNumber(request.milliseconds, kSizeWidth, out);
  AppendNumber(request.size, kSizeWidth, out);
  return out;
}

DocumentRequest ReadRequest(std::string_view bytes) {
  ByteCursor cursor{bytes};
  DocumentRequest request;
  request.type = static_cast<FileType>(TakeLittleEndian(cursor, 1));
  request.bytesLimit = TakeLittleEndian(cursor, kSizeWidth);
  request.milliseconds = TakeLittleEndian(cursor, kSizeWidth);
  request.size = TakeLittleEndian(cursor, kSizeWidth);
  return request;
}

DocumentWorkers::DocumentWorkers(std::string program) : program_(std::move(program)) {}

DocumentWorkers::~DocumentWorkers() = default;

bool DocumentWorkers::StartWorker(Worker& worker) const {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return false;
  worker.socket = Descriptor(ends[0]);
  const Descriptor other(ends[1]);
  return worker.process.Start(program_, {}, {.input = other.get(), .output = other.get()});
}

DocumentWorkers::Worker DocumentWorkers::TakeIdle() {
  const std::lock_guard lock(mutex_);
  if (idle_.empty()) return {};
  Worker worker = std::move(idle_.back());
  idle_.pop_back();
  return worker;
}

void DocumentWorkers::Return(Worker worker) {
  if (worker.documents >= kDocumentsOfWorker) return;
  const std::lock_guard lock(mutex_);
  idle_.push_back(std::move(worker));
}

// kReaderFailed: the worker is of no more use.
Reason DocumentWorkers::Ask(Worker& worker, FileType type, std::string_view document,
                            ReadingBudget& budget, PageContent& page) const {
  const std::string request = RequestBytes({.type = type,
                                            .bytesLimit = budget.bytesLimit,
                                            .milliseconds = MillisecondsLeft(budget),
                                            .size = document.size()});
  const int socket = worker.socket.get();
  std::string bytes;
  if (!Send(socket, request, budget) || !Send(socket, document, budget) ||
      !Receive(socket, kSizeWidth, budget, bytes)) {
    return Reason::kReaderFailed;
  }
  const uint64_t size = ReadLittleEndian(bytes, 0, kSizeWidth);
  bytes.clear();
  Reason reason = Reason::kNone;
  if (!TakeBytes(budget, size) || !Receive(socket, size, budget, bytes) ||
      !ReadPageBytes(bytes, reason, page)) {
    return Reason::kReaderFailed;
  }
  return reason;
}

Reason DocumentWorkers::Read(FileType type, std::string_view document, ReadingBudget& budget,
                             PageContent& page) {
  for (;;) {
    page = PageContent();
    Worker worker = TakeIdle();
    const bool isFresh = !worker.process.isRunning();
    if (isFresh && !StartWorker(worker)) return Reason::kReaderMissing;
    ++worker.documents;
    const Reason reason = Ask(worker, type, document, budget, page);
    if (reason != Reason::kReaderFailed) {
      Return(std::move(worker));
      return OfDocument(reason);
    }
    if (budget.status != Reason::kNone) return OfDocument(budget.status);
    // What came before may have harmed it.
    if (!isFresh) continue;
    // A program that lacks a library or the means to lock itself in says so by its end.
    ReadingBudget moment;
    moment.deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    return worker.process.Wait(moment) == kCannotRun ? Reason::kReaderMissing
                                                     : Reason::kReaderFailed;
  }
}

}  // namespace vela::indexer
