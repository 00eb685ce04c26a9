// progress.h: what a person at the terminal sees while a large index is checked.
#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

namespace vela::inspector {

// One line on standard error, rewritten a few times a second. Says nothing when it is switched off.
class Progress {
 public:
  explicit Progress(bool shown) : shown_(shown) {}
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // The check of a file begins, of `total` steps.
  void Begin(std::string_view file, uint64_t total);
  void Step(uint64_t done) {
    if (shown_) Show(done);
  }
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  void Show(uint64_t done);

  bool shown_;
  bool onLine_ = false;
  std::string_view file_;
  uint64_t total_ = 0;
  Clock::time_point shownAt_;
};

}  // namespace vela::inspector
