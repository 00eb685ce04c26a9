// fault.h: what can be wrong with an index, one row each: its code in a report, the sentence that a
// person reads, and what to do about it.
#pragma once

#include <cstdint>
#include <string_view>

namespace vela::inspector {

// In the order of kFaults.
enum class Fault : uint8_t {
  // Any file.
  kUnreadable,
  kMissing,
  kNotUsed,
  kWrongForm,
  kWrongSize,
  kWrongCount,
  kWrongOrder,
  kBeyondEnd,
  kBadText,
  kUnsafeText,
  kTooLong,
  kRepeated,
  // The settings and the template.
  kUnknownKey,
  kNoNumber,
  kOutOfRange,
  kMissingText,
  kMissingMarker,
  // Words and pages.
  kUnknownWord,
  kUnknownPage,
  kUnknownVariant,
  kBadScore,
  kBadWeight,
  kNoBlock,
  kMisplaced,
  kNotFirst,
  kNotListed,
  kUnclaimed,
  kBadCategory,
  kBadField,
  kBadReference,
  // Files that repeat what others say.
  kOtherFile,
  kOtherContent,
  kBadChecksum,
  kCount,  // of the faults; none itself
};

struct FaultRow {
  std::string_view code;
  std::string_view text;
  std::string_view remedy;
};

const FaultRow& RowOf(Fault fault);

}  // namespace vela::inspector
