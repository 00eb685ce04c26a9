// reading_budget.h: what the reading of one page may cost, and what it has cost.
// A reader asks before it takes memory and as it goes on; once refused, it ends and hands the
// status up. No page written for readers comes near the limits.
#pragma once

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>

#include "indexer/report/reason.h"

namespace vela::indexer {

struct ReadingNotes;

// What the reading of any page may cost.
struct ReadingLimits {
  std::chrono::seconds time{60};  // a hundred megabytes of markup take a few
  size_t bytes = size_t{64} << 20;
  size_t factor = 8;                                 // and so many times the size of its file
  const volatile std::sig_atomic_t* stop = nullptr;  // not owned; null: nobody can stop it
  ReadingNotes* notes = nullptr;  // not owned; null: nobody asks how the page is read
};

struct ReadingBudget {
  std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();
  size_t bytesLimit = SIZE_MAX;                      // of memory, in all
  const volatile std::sig_atomic_t* stop = nullptr;  // not owned; null: nobody can stop it
  ReadingNotes* notes = nullptr;                     // the same; null: nobody asks

  // Filled by the reader.
  // kNone; or why the reading ends: kMarkupTooSlow (the deadline has passed), kMarkupTooLarge (more
  // memory was asked for than is allowed) or kStopped. The first stays.
  Reason status = Reason::kNone;
  uint64_t steps = 0;     // bytes looked at, tokens, elements opened or closed
  uint64_t nextLook = 0;  // at how many steps the clock is read again
  size_t bytes = 0;       // asked for so far
};

// The budget of a page of `pageBytes`, whose reading begins now.
ReadingBudget StartReading(const ReadingLimits& limits, size_t pageBytes);

// Looks at the clock and the stop flag.
void CheckBudget(ReadingBudget& budget);

// Counts `steps` and, every 64 Ki of them, calls CheckBudget. False: the reading has to end.
inline bool TakeSteps(ReadingBudget& budget, uint64_t steps) {
  budget.steps += steps;
  if (budget.steps >= budget.nextLook) CheckBudget(budget);
  return budget.status == Reason::kNone;
}

// Asks for `bytes` more. False: they must not be taken, the reading has to end.
[[nodiscard]] bool TakeBytes(ReadingBudget& budget, size_t bytes);

}  // namespace vela::indexer
