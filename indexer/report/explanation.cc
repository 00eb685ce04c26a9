#include "indexer/report/explanation.h"

#include <utility>

#include "indexer/report/terminal.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

void Explanation::Add(std::string label, std::string text, std::vector<std::string> details) {
  lines.push_back({std::move(label), std::move(text), std::move(details)});
}

void Explanation::AddList(std::string label, const char* what, std::vector<std::string> details) {
  if (details.empty()) return;
  std::string text = CountText(details.size()) + what;
  Add(std::move(label), std::move(text), std::move(details));
}

std::string ExplanationText(const Explanation& explanation, bool showsAll) {
  constexpr size_t kLabelWidth = 14;
  constexpr size_t kDetailLimit = 8;
  const std::string margin(kLabelWidth + 2, ' ');
  std::string text = Shown(explanation.page) + ": " + Shown(explanation.outcome) + "\n";
  for (const ExplanationLine& line : explanation.lines) {
    std::string label = line.label;
    label.resize(kLabelWidth, ' ');
    text += "  " + label + Shown(line.text) + "\n";
    size_t shown = 0;
    for (const std::string& detail : line.details) {
      if (!showsAll && shown == kDetailLimit) break;
      text += margin + "- " + Shown(detail) + "\n";
      ++shown;
    }
    if (shown < line.details.size()) {
      text += margin + "- and " + CountText(line.details.size() - shown) + " more (--verbose)\n";
    }
  }
  return text;
}

}  // namespace vela::indexer
