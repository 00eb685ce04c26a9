#include "indexer/publish/search_program.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "indexer/publish/carry_over.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

namespace {

// An open file; closed with its owner.
struct OpenFile {
  int descriptor = -1;
  ~OpenFile() {
    if (descriptor >= 0) close(descriptor);
  }
};

[[noreturn]] void FailProgram(const std::string& file, const std::string& why) {
  FailPublishing("Cannot use " + file + " for --program", why + ". Check the path");
}

}  // namespace

void InstallProgram(const std::string& file, const std::filesystem::path& fresh) {
  // Without O_NONBLOCK a pipe would keep the run waiting.
  const OpenFile program = {open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
  struct stat info = {};
  if (program.descriptor < 0 || fstat(program.descriptor, &info) != 0) {
    FailProgram(file, strerror(errno));
  }
  if (!S_ISREG(info.st_mode)) FailProgram(file, "it is no file");
  if (info.st_size == 0) FailProgram(file, "it is empty");
  const std::filesystem::path installed = fresh / kSearchProgramName;
  OutFile out(installed);
  std::array<char, 65536> bytes;
  ssize_t got = 0;
  while ((got = read(program.descriptor, bytes.data(), bytes.size())) != 0) {
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FailProgram(file, strerror(errno));
    out.Write({bytes.data(), static_cast<size_t>(got)});
  }
  out.Finish();
  if (chmod(installed.c_str(), 0755) != 0) {
    FailPublishing("Cannot make " + installed.string() + " executable", strerror(errno));
  }
}

}  // namespace vela::indexer
