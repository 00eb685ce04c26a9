// page.h: what one file says, before its words are cut.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vela::indexer {

// A stretch of the page's text. All text is clean UTF-8 (see CleanText).
struct TextRun {
  std::string text;
  uint8_t headingLevel = 0;  // 1 to 6 inside h1 to h6; 0 elsewhere
};

// A meta element: its name (or property) in lower case, and its content, one line, trimmed.
using MetaElement = std::pair<std::string, std::string>;

struct PageContent {
  std::string title;               // one line, trimmed; empty when the page has none
  std::string description;         // the same, of the meta element
  std::string canonical;           // as the page gives it, not resolved; empty when it gives none
  std::string base;                // href of the base element, the same way
  std::vector<MetaElement> metas;  // all that have a name and a content, in the page's order
  std::string time;                // of the first time element: its datetime, else its text
  std::vector<TextRun> body;       // in reading order
};

// The content of the first meta element of that name; empty when there is none.
inline std::string_view MetaContent(const PageContent& page, std::string_view name) {
  for (const auto& [elementName, content] : page.metas) {
    if (elementName == name) return content;
  }
  return {};
}

}  // namespace vela::indexer
