#include "inspector/check/setting_ranges.h"

#include <algorithm>
#include <limits>

#include "format/page_data.h"
#include "format/page_text.h"
#include "settings/setting_keys.h"
#include "text/stemmer.h"

namespace vela::inspector {

namespace {

constexpr int32_t kAny = std::numeric_limits<int32_t>::max();

constexpr SettingRange kRanges[] = {
    {"UseUTF8", 0, 1},
    {"Codepage", 0, kAny},
    {"UseStemming", 0, 1},
    {"StemmingAlgo", 0, kStemmingAlgorithmCount - 1},
    {"NoCharset", 0, 1},
    {"MinWordLen", 0, 100},
    {"Highlighting", 0, 1},
    {"HighlightLimit", 0, kAny},
    {"GotoHighlight", 0, 1},
    {"PdfHighlight", 0, 1},
    {"FormFormat", 0, 2},
    {"DisplayMetaDesc", 0, 1},
    {"DisplayMetaFields", 0, 1},
    {"DotNetUseFormTags", 0, 1},
    {"DotNetUsePostBacks", 0, 1},
    {"UseDateTime", 0, 1},
    {"DisplayDate", 0, 1},
    {"DefaultSort", 0, 2},
    {"DateRangeSearch", 0, 1},
    {"DateRangeFormat", 0, 1},
    {"UseAutoComplete", 0, 1},
    {"DisplayContext", 0, 1},
    {"DisplayNumber", 0, 1},
    {"DisplayTitle", 0, 1},
    {"DisplayTerms", 0, 1},
    {"DisplayScore", 0, 1},
    {"DisplayURL", 0, 1},
    {"TruncateShowURL", 0, kAddressLimit},
    {"DisplayFilesize", 0, 1},
    {"UseVelaImage", 0, 1},
    {"DisplayCatSummary", 0, 1},
    {"Logging", 0, 1},
    {"MaxKeyWordLineLen", 2, kAny},
    {"OutputVariantBufferSize", 0, kAny},
    {"OutputBasewordBufferSize", 1, kAny},
    {"DictIDLen", kTokenVariantWidth + 1, kTokenWidthLimit},
    {"DictReservedLimit", kRunEndWord, kAny},
    {"DictReservedPrefixes", kRunEndWord, kAny},
    {"DictReservedSuffixes", kRunEndWord, kAny},
    {"DictReservedNoSpaces", kRunEndWord, kAny},
    {"UseBigPageInfoData", 0, 1},
    {"PluginOpenNewWindow", 0, 1},
    {"FileTypePluginStart", 0, 256},
    {"WordSplit", 0, 1},
    {"VelaInfo", 0, 1},
    {"Timing", 0, 1},
    {"SearchAsSubstring", 0, 1},
    {"ToLowerSearchWords", 0, 1},
    {"ContextSize", 0, 1000},
    {"MaxContextKeywords", 0, 100},
    {"MaxResultsPerQuery", 1, kAny},
    {"WeightProximity", -100, 100},
    {"AllowExactPhrase", 0, 1},
    {"MaxContextSeeks", 0, kAny},
    {"PhraseSigns", 0, 100},
    {"MaxMatches", 1, kAny},
    {"MaxSearchTime", 1, kAny},
    {"UseLinkTarget", 0, 1},
    {"Spelling", 0, 1},
    {"SpellingWhenLessThan", 0, kAny},
    {"NumSpellings", 0, kAny},
    {"Recommended", 0, 1},
    {"NumRecommended", 0, kAny},
    {"RecommendedMax", 0, kAny},
    {"UseCats", 0, 1},
    {"SearchMultiCats", 0, 1},
    {"NumKeywords", 1, kAny},
    {"NumPages", 0, kAny / 4},
    {"NumVariants", 0, kAny},
    {"PageInfoSize", 0, kAny},
    {"LookupGeneration", 0, kAny},
    {"DefaultToAnd", 0, 1},
    {"UseXML", 0, 1},
    {"XMLHighlight", 0, 1},
    {"NumCats", 0, kAny},
    {"NumCatBytes", 0, kAny},
    {"UseMetaFields", 0, 1},
    {"NumMetaFields", 0, kAny},
    {"MetaMoneyShowDec", 0, 1},
    {"MapAccents", 0, 1},
    {"CutSigns", 0, 1},
    {"PlainQueries", 0, 1},
    {"Synonyms", 0, kAny},
    {"OfferWords", 0, 1},
    {"Ranking", 0, 1},
    {"SpellingDistance", 0, 1},
    {"ShowCorrected", 0, 1},
    {"Passages", 0, 1},
    {"SectionLinks", 0, 1},
    {"CompleteAnyWord", 0, 1},
    {"CutRuns", 0, 1},
    {"AmendedAnswers", 0, 1},
};

constexpr const SettingRange* Find(std::string_view key) {
  for (const SettingRange& range : kRanges) {
    if (range.key == key) return &range;
  }
  return nullptr;
}

// GCC 12 takes none of this for a constant while it adds the checks of the sanitizers.
#ifndef __SANITIZE_ADDRESS__
static_assert(std::size(kRanges) == std::size(kNumberSettings));
static_assert(std::ranges::all_of(kNumberSettings, [](const NumberSetting& setting) {
  return Find(setting.key) != nullptr;
}));
#endif

}  // namespace

const SettingRange* FindSettingRange(std::string_view key) { return Find(key); }

}  // namespace vela::inspector
