// highlighted.h: a text of the index as it is shown, with the words of the query marked.
#pragma once

#include <string_view>

#include "output/highlight.h"
#include "search/highlight_terms.h"
#include "settings/settings.h"
#include "text/owned_array.h"

namespace vela {

// Owns the shown form. With Highlighting 0, or without memory for the marks, the text as it stands.
class Highlighted {
 public:
  Highlighted(std::string_view text, const Settings& settings, const HighlightTerms& terms);
  // NUL-terminated; "" when memory is out altogether.
  const char* text() const { return shown_.empty() ? "" : shown_.data(); }

 private:
  OwnedArray<char> shown_;
};

}  // namespace vela
