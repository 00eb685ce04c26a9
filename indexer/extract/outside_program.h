// outside_program.h: programs of other makers that turn a document into text. They run locked in by
// vela_extract, which lets them read files and nothing else.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

struct ProgramOutput {
  int exitStatus = -1;  // -1: a signal ended it
  std::string output;
  std::string errors;  // the beginning of what it said
};

// Where programs are looked for: the folders of `path`, one behind the other with ":" between them,
// then those of the system. The whole path; empty when there is none.
std::string FindProgram(std::string_view name, std::string_view path);

// Runs the program of the absolute path `program` with `document` as its input, started by
// `launcher`, the path of vela_extract. kNone: it ran to its end, whatever that was.
// kReaderMissing: the launcher cannot run. kDocumentTooSlow, kDocumentTooLarge, kStopped,
// kNoMemory.
[[nodiscard]] Reason RunOutsideProgram(const std::string& launcher, const std::string& program,
                                       const std::vector<std::string>& arguments,
                                       std::string_view document, ReadingBudget& budget,
                                       ProgramOutput& result);

}  // namespace vela::indexer
