// compound_file_fuzz.cc: the file system in which older documents lie. Input: a line with the name
// of a stream, behind it the file.
#include <string>

#include "indexer/documents/compound_file.h"
#include "program/fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view bytes = Text(data, size);
  const std::string_view name = TakeLine(bytes);
  constexpr size_t kMost = size_t{1} << 20;
  indexer::ReadingBudget budget = indexer::StartReading({.bytes = kMost}, bytes.size());
  indexer::CompoundFile file;
  if (file.Open(bytes, budget) != indexer::Reason::kNone) return 0;
  const std::string stream = file.Stream(name, budget);
  VELA_CHECK(budget.bytes <= budget.bytesLimit);
  // However its sectors lead to one another.
  VELA_CHECK(stream.size() <= bytes.size());
  VELA_CHECK(file.Stream(name, budget) == stream || budget.status != indexer::Reason::kNone);
  return 0;
}
