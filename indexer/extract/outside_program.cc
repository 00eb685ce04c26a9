#include "indexer/extract/outside_program.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "indexer/extract/child_process.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kSystemPath = "/usr/local/bin:/usr/bin:/bin";
constexpr size_t kErrorsKept = size_t{1} << 14;

bool WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

size_t SizeOf(int file) {
  struct stat info = {};
  return fstat(file, &info) == 0 ? static_cast<size_t>(std::max<off_t>(info.st_size, 0)) : 0;
}

// The first `size` bytes.
std::string ReadStart(int file, size_t size) {
  std::string bytes(size, '\0');
  size_t used = 0;
  while (used < size) {
    const ssize_t got = pread(file, bytes.data() + used, size - used, static_cast<off_t>(used));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    used += static_cast<size_t>(got);
  }
  bytes.resize(used);
  return bytes;
}

std::string FindIn(std::string_view folders, std::string_view name) {
  while (!folders.empty()) {
    const size_t end = std::min(folders.find(':'), folders.size());
    const std::filesystem::path program = std::filesystem::path(folders.substr(0, end)) / name;
    folders.remove_prefix(std::min(end + 1, folders.size()));
    struct stat info = {};
    if (program.is_absolute() && stat(program.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
        access(program.c_str(), X_OK) == 0) {
      return program.string();
    }
  }
  return {};
}

}  // namespace

std::string FindProgram(std::string_view name, std::string_view path) {
  std::string found = FindIn(path, name);
  return found.empty() ? FindIn(kSystemPath, name) : found;
}

Reason RunOutsideProgram(const std::string& launcher, const std::string& program,
                         const std::vector<std::string>& arguments, std::string_view document,
                         ReadingBudget& budget, ProgramOutput& result) {
  const Descriptor input = NewMemoryFile();
  const Descriptor output = NewMemoryFile();
  const Descriptor errors = NewMemoryFile();
  if (!input.isOpen() || !output.isOpen() || !errors.isOpen() || !WriteAll(input.get(), document) ||
      lseek(input.get(), 0, SEEK_SET) != 0) {
    return Reason::kNoMemory;
  }
  const size_t outputLimit = budget.bytesLimit - budget.bytes;
  std::vector<std::string> all = {"--run", std::to_string(outputLimit), program};
  all.insert(all.end(), arguments.begin(), arguments.end());
  ChildProcess process;
  if (!process.Start(launcher, all,
                     {.input = input.get(), .output = output.get(), .error = errors.get()})) {
    return Reason::kReaderMissing;
  }
  result.exitStatus = process.Wait(budget);
  if (budget.status == Reason::kStopped) return Reason::kStopped;
  if (budget.status != Reason::kNone) return Reason::kDocumentTooSlow;
  if (result.exitStatus == kCannotRun) return Reason::kReaderMissing;
  const size_t size = SizeOf(output.get());
  // A program that may not write more is ended by a signal or by itself.
  if (size >= outputLimit || !TakeBytes(budget, size)) return Reason::kDocumentTooLarge;
  result.output = ReadStart(output.get(), size);
  result.errors = ReadStart(errors.get(), std::min(SizeOf(errors.get()), kErrorsKept));
  return Reason::kNone;
}

}  // namespace vela::indexer
