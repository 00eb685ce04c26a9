#include "inspector/findings/progress.h"

#include <cstdio>

namespace vela::inspector {

namespace {
constexpr std::chrono::milliseconds kInterval(200);
}

void Progress::Begin(std::string_view file, uint64_t total) {
  file_ = file;
  total_ = total;
  Step(0);
}

void Progress::Show(uint64_t done) {
  const Clock::time_point now = Clock::now();
  if (now - shownAt_ < kInterval) return;
  shownAt_ = now;
  const double share = total_ == 0 ? 1 : static_cast<double>(done) / static_cast<double>(total_);
  fprintf(stderr, "\r\033[KChecking %.*s, %d %%", static_cast<int>(file_.size()), file_.data(),
          static_cast<int>(share * 100));
  fflush(stderr);
  onLine_ = true;
}

void Progress::Clear() {
  if (onLine_) {
    fputs("\r\033[K", stderr);
    fflush(stderr);
  }
  onLine_ = false;
}

}  // namespace vela::inspector
