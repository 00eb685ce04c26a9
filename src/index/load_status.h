// load_status.h: how reading an index file in has gone.
#pragma once

#include <cstdint>

namespace vela {

enum class LoadStatus : uint8_t {
  kOk,
  kCannotOpen,       // missing, or nothing that can be read as a file
  kNoMemory,         // also for a size in the settings that no memory can hold
  kPlaceholder,      // page text: the index was built without it
  kTooShort,         // page info: shorter than PageInfoSize
  kRecordBeyondEnd,  // page info: fewer records than NumPages
  kSlackAtEnd,       // page info: more of them
};

}  // namespace vela
