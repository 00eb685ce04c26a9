#include "indexer/report/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "indexer/report/terminal.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace {
constexpr std::chrono::milliseconds kInterval(200);
}

void Progress::Begin(const std::string& stage, uint64_t total) {
  Clear();
  done_ = stages();
  stage_ = stage;
  total_ = total;
  begun_ = Clock::now();
  shownAt_ = Clock::time_point();
  Step(0);
}

void Progress::Step(uint64_t done) {
  if (!shown_) return;
  const Clock::time_point now = Clock::now();
  if (now - shownAt_ < kInterval) return;
  shownAt_ = now;
  const double seconds = std::chrono::duration<double>(now - begun_).count();
  std::string line = stage_;
  if (total_ != 0) line += " " + CountText(done) + " of " + CountText(total_);
  if (done != 0 && seconds > 0.5) {
    const double rate = static_cast<double>(done) / seconds;
    char text[80];
    snprintf(text, sizeof text, rate < 10 ? ", %.1f a second" : ", %.0f a second", rate);
    line += text;
    if (total_ > done) {
      const auto left =
          static_cast<uint64_t>(std::llround(static_cast<double>(total_ - done) / rate));
      if (left >= 60) {
        snprintf(text, sizeof text, ", %llu min %llu s left",
                 static_cast<unsigned long long>(left / 60),
                 static_cast<unsigned long long>(left % 60));
      } else {
        snprintf(text, sizeof text, ", %llu s left", static_cast<unsigned long long>(left));
      }
      line += text;
    }
  }
  // A line that the terminal breaks could not be rewritten.
  const size_t width = TerminalWidth(STDERR_FILENO);
  if (width != 0 && line.size() >= width) line.resize(width - 1);
  fprintf(stderr, "\r\033[K%s", line.c_str());
  fflush(stderr);
  onLine_ = true;
}

void Progress::Step(uint64_t done, uint64_t total) {
  total_ = total;
  Step(done);
}

void Progress::Clear() {
  if (onLine_) {
    fputs("\r\033[K", stderr);
    fflush(stderr);
  }
  onLine_ = false;
}

std::vector<std::pair<std::string, double>> Progress::stages() const {
  std::vector<std::pair<std::string, double>> stages = done_;
  if (stage_.empty()) return stages;
  const double seconds = std::chrono::duration<double>(Clock::now() - begun_).count();
  // A stage that goes on after another one is one stage.
  const auto same = std::ranges::find(stages, stage_, &std::pair<std::string, double>::first);
  if (same != stages.end()) {
    same->second += seconds;
  } else {
    stages.emplace_back(stage_, seconds);
  }
  return stages;
}

}  // namespace vela::indexer
