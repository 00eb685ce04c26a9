#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

namespace {

constexpr uint64_t kStepsBetweenLooks = uint64_t{1} << 16;

// The first reason stays.
void End(ReadingBudget& budget, Reason status) {
  if (budget.status == Reason::kNone) budget.status = status;
}

}  // namespace

ReadingBudget StartReading(const ReadingLimits& limits, size_t pageBytes) {
  ReadingBudget budget;
  budget.deadline = std::chrono::steady_clock::now() + limits.time;
  budget.bytesLimit = limits.bytes + pageBytes * limits.factor;
  budget.stop = limits.stop;
  budget.notes = limits.notes;
  return budget;
}

void CheckBudget(ReadingBudget& budget) {
  budget.nextLook = budget.steps + kStepsBetweenLooks;
  if (budget.stop != nullptr && *budget.stop != 0) End(budget, Reason::kStopped);
  if (std::chrono::steady_clock::now() >= budget.deadline) End(budget, Reason::kMarkupTooSlow);
}

bool TakeBytes(ReadingBudget& budget, size_t bytes) {
  if (bytes > budget.bytesLimit - budget.bytes) {
    End(budget, Reason::kMarkupTooLarge);
  } else {
    budget.bytes += bytes;
  }
  CheckBudget(budget);
  return budget.status == Reason::kNone;
}

}  // namespace vela::indexer
