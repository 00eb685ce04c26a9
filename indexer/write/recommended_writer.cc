#include "indexer/write/recommended_writer.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

#include "format/recommended.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/plain_forms.h"
#include "indexer/words/query_folding.h"
#include "indexer/words/stored_text.h"
#include "indexer/words/word_cut.h"
#include "indexer/write/out_file.h"
#include "text/edit.h"
#include "text/lower.h"
#include "text/word_split.h"

namespace vela::indexer {

namespace {

// One keyword as a query that says the same would be compared with it.
std::string QueryForm(std::string_view keyword, const IndexCharset& charset, bool cutsSigns) {
  std::string text = FoldedQuery(keyword, cutsSigns);
  CleanText(text);
  LowerUtf8(text.data(), text.size());
  std::erase(text, '"');
  text.resize(SeparateWords(text.data(), text.size(), kWordJoinChars));
  std::string form;
  if (!charset.Exactly(CollapseBlanks(text), form)) return {};
  return form;
}

std::string QueryForms(std::string_view keywords, const IndexCharset& charset, bool cutsSigns) {
  std::string forms;
  while (!keywords.empty()) {
    const size_t end = std::min(keywords.find(kKeywordSeparator), keywords.size());
    const std::string_view keyword = keywords.substr(0, end);
    keywords.remove_prefix(std::min(end + 1, keywords.size()));
    std::vector<std::string> spellings = PlainForms(keyword);  // "cafe" for "café" as well
    spellings.emplace(spellings.begin(), keyword);
    for (const std::string& spelling : spellings) {
      const std::string form = QueryForm(spelling, charset, cutsSigns);
      if (form.empty()) continue;
      if (!forms.empty()) forms += kKeywordSeparator;
      forms += form;
    }
  }
  return forms;
}

// Where the texts of what is recommended stand in the page data.
class RecommendedLines {
 public:
  // Both outlive the lines.
  RecommendedLines(PageTableWriter& table, const IndexCharset& charset)
      : table_(table), charset_(charset) {}

  // The place of the page's own line, or of one with the owner's words.
  uint64_t At(const Recommendation& recommendation) {
    const RecommendedRule& rule = recommendation.rule;
    const bool isPage = recommendation.page.has_value();
    if (isPage && rule.title.empty() && rule.text.empty())
      return table_.LineAt(*recommendation.page);
    PageLine line;
    if (isPage) {
      line = table_.ReadLine(*recommendation.page);
    } else {
      line.address = recommendation.link;
    }
    if (!rule.title.empty() || !isPage) {
      const std::string& title = rule.title.empty() ? rule.address : rule.title;
      line.title = StoredText(title, kPageTitleLimit, charset_);
    }
    if (!rule.text.empty())
      line.description = StoredText(rule.text, kPageDescriptionLimit, charset_);
    // The search shows a link once where rules that follow each other name the same place.
    const auto [place, isNew] =
        places_.try_emplace({line.address, line.title, line.description}, uint64_t{0});
    if (isNew) place->second = table_.AddLine(line);
    return place->second;
  }

 private:
  PageTableWriter& table_;
  const IndexCharset& charset_;
  std::map<std::array<std::string, 3>, uint64_t> places_;
};

}  // namespace

RecommendedSizes WriteRecommended(const std::filesystem::path& path,
                                  const std::vector<Recommendation>& recommendations,
                                  PageTableWriter& table, const IndexCharset& charset,
                                  bool cutsSigns) {
  RecommendedSizes sizes;
  OutFile file(path);
  RecommendedLines lines(table, charset);
  for (const Recommendation& recommendation : recommendations) {
    const RecommendedRule& rule = recommendation.rule;
    if (!recommendation.page.has_value() && recommendation.link.empty()) {
      sizes.unused.push_back({Reason::kNoPageToRecommend, rule.where, rule.address});
      continue;
    }
    const std::string keywords = QueryForms(rule.keywords, charset, cutsSigns);
    if (keywords.empty() || keywords.size() > kRecommendedKeywordsLimit) {
      sizes.unused.push_back({keywords.empty() ? Reason::kNoKeyword : Reason::kKeywordsTooLong,
                              rule.where, rule.address});
      continue;
    }
    const std::string line = keywords + " " + std::to_string(lines.At(recommendation)) + "\n";
    sizes.longestLine = std::max(sizes.longestLine, line.size());
    file.Write(line);
    ++sizes.entries;
  }
  sizes.fileBytes = file.Finish();
  return sizes;
}

}  // namespace vela::indexer
