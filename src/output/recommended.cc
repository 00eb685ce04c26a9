#include "output/recommended.h"

#include <algorithm>
#include <cstdarg>

#include "index/page_data.h"
#include "index/seek.h"
#include "output/highlighted.h"
#include "output/target_url.h"
#include "text/edit.h"
#include "text/wildcard.h"

namespace vela {

namespace {

// Where the writing of the links stands.
struct RecommendedState {
  Response& response;
  OutputSections& sections;
  const RecommendedInput& input;
  int32_t& shown;
  bool hasLast = false;
  int64_t lastOffset = 0;     // of the link shown last
  uint64_t filePosition = 0;  // where the page data would be read on
};

// A piece that finds no room is reported and left out.
[[gnu::format(printf, 2, 3)]] void Add(RecommendedState& state, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int32_t result =
      state.sections.texts[static_cast<size_t>(Section::kRecommended)].AppendFormatted(format,
                                                                                       arguments);
  va_end(arguments);
  if (result < 0) {
    WriteRaw(state.response, "recommended buffer could not be realloc'ed<br>");
  }
}

void AddText(RecommendedState& state, std::string_view text) {
  const Highlighted shown(text, state.input.settings, state.input.highlight);
  Add(state, "%s", shown.text());
}

// Reads the page data line; after a failed seek, whose message has been written, the file is read
// on from where it stands.
bool ReadTexts(RecommendedState& state, int64_t offset, PageTexts& texts) {
  if (SeekIndexFile(state.response, static_cast<uint64_t>(offset)) == 0) {
    state.filePosition = static_cast<uint64_t>(offset);
  }
  const std::string_view file = state.input.files.pageData.bytes();
  const uint64_t at = state.filePosition;
  state.filePosition += PageDataLineLength(file, at);
  return ReadPageData(file, at, texts);
}

void WriteXmlLink(RecommendedState& state, const PageTexts& texts, const LinkText& target) {
  Response& response = state.response;
  const auto length = [](std::string_view text) { return static_cast<int>(text.size()); };
  WriteRaw(response, "<vela:recommended>\n");
  if (ShowsImages(state.input.settings) && !texts.image.empty()) {
    WriteOut(response, "<vela:imageURL>%.*s</vela:imageURL>", length(texts.image),
             texts.image.data());
  }
  WriteOut(response, "<title>%.*s</title>\n", length(texts.title), texts.title.data());
  WriteOut(response, "<link>%s</link>\n", target.bytes);
  WriteOut(response, "<description>%.*s</description>\n", length(texts.description),
           texts.description.data());
  WriteRaw(response, "</vela:recommended>\n");
}

void AddHtmlLink(RecommendedState& state, const PageTexts& texts, const LinkText& target) {
  const Settings& settings = state.input.settings;
  const LinkAttribute attribute = ConfiguredLinkAttribute(settings);
  Add(state, "<div class=\"recommend_block\">\n");
  if (ShowsImages(settings) && !texts.image.empty()) {
    Add(state, "<div class=\"recommend_image\">");
    Add(state, "<a href=\"%s\" %s>", target.bytes, attribute.bytes);
    Add(state, "<img src=\"%.*s\" alt=\"\" class=\"recommend_image\">",
        static_cast<int>(texts.image.size()), texts.image.data());
    Add(state, "</a></div>");
  }
  Add(state, "<div class=\"recommend_title\">");
  Add(state, "<a href=\"%s\" %s>", target.bytes, attribute.bytes);
  if (texts.title.empty()) {
    Add(state, "%.*s", static_cast<int>(texts.url.size()), texts.url.data());
  } else {
    AddText(state, texts.title);
  }
  Add(state, "</a></div>\n");
  Add(state, "<div class=\"recommend_description\">");
  AddText(state, texts.description);
  Add(state, "</div>\n");
  Add(state, "<div class=\"recommend_infoline\">%.*s</div>\n", static_cast<int>(texts.url.size()),
      texts.url.data());
  Add(state, "</div>");
}

// Shows the link of one keyword. False on a fatal error.
bool ShowLink(RecommendedState& state, int64_t offset) {
  const Settings& settings = state.input.settings;
  state.hasLast = true;
  state.lastOffset = offset;
  if (state.shown == 0 && !state.response.xml) {
    Add(state, "<div class=\"recommended\">\n");
    Add(state, "<div class=\"recommended_heading\">%s</div>\n",
        Text(settings.language, Str::kRecommended));
  }
  PageTexts texts;
  if (!ReadTexts(state, offset, texts)) {
    WriteError(state.response,
               "Error: Corrupted or invalid index files. Please re-index your and try again.",
               ErrorEnd::kPlain);
    return false;
  }
  const LinkText target = RecommendedTarget(settings, texts.url, state.input.encodedQuery,
                                            View(state.input.query.text));
  // Kept: the fragment that went into the link is gone from the address shown.
  if (PointsToWords(settings)) texts.url = texts.url.substr(0, texts.url.find('#'));
  if (state.response.xml) {
    WriteXmlLink(state, texts, target);
  } else {
    AddHtmlLink(state, texts, target);
  }
  ++state.shown;
  return true;
}

}  // namespace

bool MatchesKeyword(const RecommendedInput& input, std::string_view keyword) {
  const Settings& settings = input.settings;
  const TextMode mode = WordMode(settings);
  for (int32_t i = 0; i < input.query.terms.size(); ++i) {
    const std::string_view term = input.query.terms[i];
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
  RecommendedState state = {response, sections, input, shown};
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
  if (shown > 0 && !response.xml) Add(state, "</div>\n");
  return true;
}

}  // namespace vela
