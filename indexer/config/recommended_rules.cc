#include "indexer/config/recommended_rules.h"

#include <algorithm>

#include "indexer/report/index_error.h"
#include "indexer/words/clean_text.h"
#include "text/edit.h"

namespace vela::indexer {

std::vector<RecommendedRule> ReadRecommendedRules(std::string_view text, const std::string& path) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  if (!IsValidUtf8(text)) {
    throw IndexError(ExitStatus::kUsage, path + " is not written in UTF-8. Save it so.");
  }
  std::vector<RecommendedRule> rules;
  for (size_t number = 1; !text.empty(); ++number) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = TrimAll(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.starts_with('#')) continue;
    const size_t equals = std::min(line.find('='), line.size());
    RecommendedRule rule;
    rule.keywords = TrimAll(line.substr(0, equals));
    rule.address = TrimAll(line.substr(std::min(equals + 1, line.size())));
    rule.where = path + ", line " + std::to_string(number);
    if (rule.keywords.empty() || rule.address.empty()) {
      throw IndexError(ExitStatus::kUsage, rule.where + ": \"" + std::string(line) +
                                               "\" is not of the form KEYWORDS = ADDRESS.");
    }
    rules.push_back(std::move(rule));
  }
  return rules;
}

}  // namespace vela::indexer
