#include "indexer/write/recommended_writer.h"

#include <algorithm>
#include <string_view>

#include "format/recommended.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/plain_forms.h"
#include "indexer/words/query_folding.h"
#include "indexer/words/word_cut.h"
#include "indexer/write/out_file.h"
#include "text/edit.h"
#include "text/lower.h"
#include "text/word_split.h"

namespace vela::indexer {

namespace {

// One keyword as a query that says the same would be compared with it.
std::string QueryForm(std::string_view keyword, const IndexCharset& charset) {
  std::string text = FoldedQuery(keyword);
  CleanText(text);
  LowerUtf8(text.data(), text.size());
  std::erase(text, '"');
  text.resize(SeparateWords(text.data(), text.size(), kWordJoinChars));
  std::string form;
  if (!charset.Exactly(CollapseBlanks(text), form)) return {};
  return form;
}

std::string QueryForms(std::string_view keywords, const IndexCharset& charset) {
  std::string forms;
  while (!keywords.empty()) {
    const size_t end = std::min(keywords.find(kKeywordSeparator), keywords.size());
    const std::string_view keyword = keywords.substr(0, end);
    keywords.remove_prefix(std::min(end + 1, keywords.size()));
    std::vector<std::string> spellings = PlainForms(keyword);  // "cafe" for "café" as well
    spellings.emplace(spellings.begin(), keyword);
    for (const std::string& spelling : spellings) {
      const std::string form = QueryForm(spelling, charset);
      if (form.empty()) continue;
      if (!forms.empty()) forms += kKeywordSeparator;
      forms += form;
    }
  }
  return forms;
}

}  // namespace

RecommendedSizes WriteRecommended(const std::filesystem::path& path,
                                  const std::vector<Recommendation>& recommendations,
                                  const PageTableWriter& table, const IndexCharset& charset) {
  RecommendedSizes sizes;
  OutFile file(path);
  for (const auto& [rule, page] : recommendations) {
    if (!page.has_value()) {
      sizes.unused.push_back({Reason::kNoPageToRecommend, rule.where, rule.address});
      continue;
    }
    const std::string keywords = QueryForms(rule.keywords, charset);
    if (keywords.empty() || keywords.size() > kRecommendedKeywordsLimit) {
      sizes.unused.push_back({keywords.empty() ? Reason::kNoKeyword : Reason::kKeywordsTooLong,
                              rule.where, rule.address});
      continue;
    }
    const std::string line = keywords + " " + std::to_string(table.LineAt(*page)) + "\n";
    sizes.longestLine = std::max(sizes.longestLine, line.size());
    file.Write(line);
    ++sizes.entries;
  }
  sizes.fileBytes = file.Finish();
  return sizes;
}

}  // namespace vela::indexer
