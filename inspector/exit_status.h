// exit_status.h: how a run of the inspector ends.
#pragma once

namespace vela::inspector {

// The exit status of the program.
enum class ExitStatus {
  kSound = 0,     // nothing is wrong with the index; what was asked for was shown
  kFindings = 1,  // something is; there is no such word or page, or the page is not found
  kUnusable = 2,  // the search program cannot answer from it
  kUsage = 3,     // the command line is wrong
};

}  // namespace vela::inspector
