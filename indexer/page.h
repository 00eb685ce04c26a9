// page.h: what one file says, before its words are cut.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vela::indexer {

// A stretch of the page's text. All text is clean UTF-8 (see CleanText).
struct TextRun {
  std::string text;
  uint8_t headingLevel = 0;  // 1 to 6 inside h1 to h6; 0 elsewhere
};

struct PageContent {
  std::string title;          // one line, trimmed; empty when the page has none
  std::string description;    // the same, of the meta element
  std::string canonical;      // as the page gives it, not resolved; empty when it gives none
  std::string base;           // href of the base element, the same way
  bool noindex = false;       // the page asks not to be found
  std::vector<TextRun> body;  // in reading order
};

}  // namespace vela::indexer
