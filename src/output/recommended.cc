#include "output/recommended.h"

#include <algorithm>

#include "index/page_data.h"
#include "index/seek.h"
#include "output/messages.h"
#include "output/recommended_html.h"
#include "output/recommended_xml.h"
#include "output/target_url.h"
#include "search/run_terms.h"
#include "text/edit.h"
#include "text/wildcard.h"

namespace vela {

namespace {

// Where the writing of the links stands.
struct RecommendedState {
  RecommendedSection out;
  const RecommendedInput& input;
  int32_t& shown;
  bool hasLast = false;
  int64_t lastOffset = 0;     // of the link shown last
  uint64_t filePosition = 0;  // where the page data would be read on
};

// Reads the page data line. Kept: at a position that no file has, which is reported, the file is
// read on from where it stands (unit recommended_test).
bool ReadTexts(RecommendedState& state, int64_t offset, PageTexts& texts) {
  const auto position = static_cast<uint64_t>(offset);
  if (CanSeekTo(position)) {
    state.filePosition = position;
  } else {
    WriteSeekFailure(state.out.response, position);
  }
  const std::string_view file = state.input.files.pageData.bytes();
  const uint64_t at = state.filePosition;
  state.filePosition += PageDataLineLength(file, at);
  return ReadPageData(file, at, texts);
}

// Shows the link of one keyword. False on a fatal error.
bool ShowLink(RecommendedState& state, int64_t offset) {
  const Settings& settings = state.input.settings;
  state.hasLast = true;
  state.lastOffset = offset;
  const bool xml = state.out.response.xml;
  if (state.shown == 0 && !xml) AppendRecommendedOpening(state.out);
  PageTexts texts;
  if (!ReadTexts(state, offset, texts)) {
    WriteMessage(state.out.response, Message::kCorruptRecommended);
    return false;
  }
  const LinkText target = RecommendedTarget(settings, texts.url, state.input.encodedQuery,
                                            View(state.input.query.text));
  // Kept: the fragment that went into the link is gone from the address shown (golden
  // output/recommended_link_keeps_fragment).
  if (PointsToWords(settings)) texts.url = texts.url.substr(0, texts.url.find('#'));
  if (xml) {
    WriteRecommendedXml(state.out.response, settings, texts, target);
  } else {
    AppendRecommendedLink(state.out, texts, target);
  }
  ++state.shown;
  return true;
}

}  // namespace

bool MatchesKeyword(const RecommendedInput& input, std::string_view keyword) {
  const Settings& settings = input.settings;
  const TextMode mode = WordMode(settings);
  for (int32_t i = 0; i < input.query.terms.size(); ++i) {
    QueryText joined;
    const std::string_view term = JoinedRuns(input.query.terms[i], settings, joined);
    if (term.empty()) continue;  // what a stray quote leaves
    bool matches = false;
    // In a substring search the words of a phrase stand for themselves.
    const bool isPlainPhrase = SearchesSubstrings(settings) && IsPhrase(term, settings);
    if (HasWildcard(term) && !isPlainPhrase) {
      matches = MatchesWildcard(keyword, term, mode.foldCase);
    } else if (SearchesSubstrings(settings)) {
      matches = FindNoCase(keyword, term, mode.utf8) != keyword.npos;
    } else {
      matches = WordCompare(mode, keyword, term) == 0;
    }
    if (!matches && HasWildcard(keyword)) matches = MatchesWildcard(term, keyword, mode.foldCase);
    if (matches) return true;
  }
  return WordCompare(mode, keyword, View(input.query.text)) == 0;
}

bool WriteRecommended(Response& response, OutputSections& sections, const RecommendedInput& input,
                      int32_t& shown) {
  RecommendedState state = {.out = {.response = response,
                                    .sections = sections,
                                    .settings = input.settings,
                                    .highlight = input.highlight},
                            .input = input,
                            .shown = shown};
  const RecommendedTies& ties = input.files.recommended;
  for (int32_t i = 0; i < ties.keywords.size(); ++i) {
    const int64_t offset = ties.dataOffsets[static_cast<size_t>(i)];
    std::string_view rest = ties.keywords.At(i);
    while (!rest.empty()) {
      const std::string_view keyword = TrimAll(rest.substr(0, rest.find(',')));
      rest.remove_prefix(std::min(rest.find(','), rest.size() - 1) + 1);
      if (shown >= input.settings.RecommendedMax) break;
      const bool isRepeated = state.hasLast && state.lastOffset == offset;
      if (keyword.empty() || isRepeated || !MatchesKeyword(input, keyword)) continue;
      if (!ShowLink(state, offset)) return false;
    }
  }
  if (shown > 0 && !response.xml) AppendRecommendedClosing(state.out);
  return true;
}

}  // namespace vela
