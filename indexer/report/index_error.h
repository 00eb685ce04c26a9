// index_error.h: how a run ends.
#pragma once

#include <stdexcept>
#include <string>

namespace vela::indexer {

// The exit status of the program.
enum class ExitStatus {
  kSuccess = 0,
  kFailed = 1,       // a file or folder could not be read or written; the old index is untouched
  kUsage = 2,        // the command line is wrong
  kNothing = 3,      // no page was found to index; the old index is untouched
  kInterrupted = 4,  // stopped by a signal; the old index is untouched
  kBusy = 5,         // another run is writing this index
  kShrunk = 6,       // too few pages (stop_when_fewer); the old index is untouched
  kBrokenLinks = 7,  // links lead nowhere (--check-links=fail); the old index is untouched
  kLeftOut = 8,      // the page to explain is in no index (--explain-page)
};

// Thrown by every stage that cannot go on; the message says what to do about it.
struct IndexError : std::runtime_error {
  IndexError(ExitStatus s, const std::string& message) : std::runtime_error(message), status(s) {}
  ExitStatus status;
};

}  // namespace vela::indexer
