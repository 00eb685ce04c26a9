// progress.h: what a person at the terminal sees while the indexer works.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vela::indexer {

// One line on standard error, rewritten a few times a second: what is done, how far, how fast, how
// long it will take. Says nothing when it is switched off.
class Progress {
 public:
  explicit Progress(bool shown) : shown_(shown) {}
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // A stage of `total` steps begins; 0 for one whose length is not known.
  void Begin(const std::string& stage, uint64_t total);
  void Step(uint64_t done);
  // The same of a stage whose length grows as it goes on.
  void Step(uint64_t done, uint64_t total);
  void Clear();

  // The stages so far and the seconds that each took, the present one included.
  std::vector<std::pair<std::string, double>> stages() const;

 private:
  using Clock = std::chrono::steady_clock;

  bool shown_;
  bool onLine_ = false;
  std::string stage_;
  uint64_t total_ = 0;
  Clock::time_point begun_;
  Clock::time_point shownAt_;
  std::vector<std::pair<std::string, double>> done_;
};

}  // namespace vela::indexer
