// explanation_report.h: all that is told of one search and one page of it.
#pragma once

#include <optional>
#include <string>

#include "inspector/explain/explained_search.h"
#include "inspector/findings/json_text.h"

namespace vela::inspector {

struct ExplanationReport {
  std::string text;
  JsonText json;         // a whole object
  bool isFound = false;  // the page; without one, any page
};

// Explains the page, or without one the first that is found, and the page right before it. Of the
// results `listed` are listed. Throws std::runtime_error where the index is damaged.
ExplanationReport Explain(SearchedIndex& index, const Question& question,
                          std::optional<uint32_t> page, size_t listed);

}  // namespace vela::inspector
