// report_text.h: what was found, for people and for programs.
#pragma once

#include <string>

#include "inspector/findings/findings.h"
#include "inspector/findings/json_text.h"

namespace vela::inspector {

// A paragraph for each finding that was kept, how many more there are of its kind, and the sum.
std::string ReportText(const Findings& findings);

// The member "findings" of the object at hand: how many there are, and those that were kept:
//
//   "sound":false,"usable":true,"findings":[{"file":"vela_wordmap.vdat","byte":120,
//   "fault":"misplaced","text":...,"detail":...,"remedy":...}],
//   "counts":[{"file":...,"fault":...,"count":12}]
//
// A finding has "line" (from 1) or "byte" (from 0) where it has a place.
void WriteFindings(const Findings& findings, JsonText& json);

}  // namespace vela::inspector
