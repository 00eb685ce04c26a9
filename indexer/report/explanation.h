// explanation.h: what becomes of one page and why, for its owner (--explain-page).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vela::indexer {

struct ExplanationLine {
  std::string label;                 // "Title"
  std::string text;                  // behind it
  std::vector<std::string> details;  // below it, one a line
};

struct Explanation {
  std::string page;      // as messages call it
  bool isTaken = false;  // it is in the index, or would be in that of a run now
  std::string outcome;   // "left out: noindex"
  std::vector<ExplanationLine> lines;

  void Add(std::string label, std::string text, std::vector<std::string> details = {});
  // A line that says how many there are: "3" and `what`. None where there are none.
  void AddList(std::string label, const char* what, std::vector<std::string> details);
};

// For a person: what became of the page, then a line for each label. Of many details the first are
// shown, unless `showsAll`.
std::string ExplanationText(const Explanation& explanation, bool showsAll);

}  // namespace vela::indexer
