#include "output/highlighted.h"

namespace vela {

Highlighted::Highlighted(std::string_view text, const Settings& settings,
                         const HighlightTerms& terms) {
  if (PassesTextsThroughMarking(settings) && !text.empty()) {
    size_t length = 0;
    const HighlightRules rules = {.mode = WordMode(settings),
                                  .joinChars = View(settings.WordJoinChars),
                                  .cutsRuns = CutsRuns(settings)};
    if (HighlightText(text, terms, rules, shown_, length)) return;
  }
  if (shown_.TryAllocate(text.size() + 1)) text.copy(shown_.data(), text.size());
}

}  // namespace vela
