#include "indexer/config/setting_keys.h"

#include <algorithm>
#include <limits>

#include "format/page_data.h"
#include "format/settings_file.h"
namespace vela::indexer {

namespace {

constexpr int32_t kAny = std::numeric_limits<int32_t>::max();
constexpr int32_t kMega = 1 << 20;

// At this value of WeightProximity a page's final score does not depend on how its words
// spread over it: that factor is raised to the number of words and would outweigh every word's
// score (collect/score.h).
constexpr int32_t kProximityWeight = -17;

constexpr NumberKey kNumberKeys[] = {
    {"NoCharset", 0, 0, 1},
    {"MinWordLen", 1, 0, 100},  // "C", "5" and the "t" of "don't" are words
    {"SearchAsSubstring", 0, 0, 1},
    {"DefaultToAnd", 0, 0, 1},  // pages with all words come first anyway
    {"DefaultSort", 0, 0, 2},
    {"WordSplit", 0, 0, 1},
    {"FormFormat", 2, 0, 2},
    {"DotNetUseFormTags", 1, 0, 1},
    {"DotNetUsePostBacks", 0, 0, 1},
    {"DisplayNumber", 1, 0, 1},
    {"DisplayTitle", 1, 0, 1},
    {"DisplayMetaDesc", 1, 0, 1},
    {"DisplayMetaFields", 1, 0, 1},
    {"DisplayContext", 1, 0, 1},
    {"DisplayTerms", 0, 0, 1},
    {"DisplayScore", 0, 0, 1},
    {"DisplayDate", 1, 0, 1},
    {"DisplayFilesize", 0, 0, 1},
    {"DisplayURL", 1, 0, 1},
    {"TruncateShowURL", 90, 0, kAddressLimit},
    {"UseVelaImage", 1, 0, 1},
    {"DisplayCatSummary", 1, 0, 1},
    {"SearchMultiCats", 0, 0, 1},
    {"UseDateTime", 1, 0, 1},
    {"DateRangeSearch", 0, 0, 1},
    {"DateRangeFormat", 0, 0, 1},
    {"Highlighting", 1, 0, 1},
    {"HighlightLimit", 30, 0, kAny},
    {"GotoHighlight", 0, 0, 1},
    {"PdfHighlight", 0, 0, 1},
    {"ContextSize", 30, 0, 1000},
    {"MaxContextKeywords", 3, 0, 100},
    {"AllowExactPhrase", 1, 0, 1},
    {"MaxContextSeeks", 10000, 0, kAny},
    {"MaxMatches", 100000, 1, kAny},
    {"MaxResultsPerQuery", 1000, 1, kAny},
    {"MaxSearchTime", 10, 1, kAny},
    {"UseLinkTarget", 0, 0, 1},
    {"PluginOpenNewWindow", 0, 0, 1},
    {"FileTypePluginStart", 4, 0, 256},
    {"VelaInfo", 0, 0, 1},
    {"Timing", 1, 0, 1},
    {"Logging", 0, 0, 1},
    {"UseXML", 0, 0, 1},
    {"XMLHighlight", 0, 0, 1},
    {"SpellingWhenLessThan", 1, 0, kAny},
    {"RecommendedMax", 3, 1, 1000},
    {"MetaMoneyShowDec", 1, 0, 1},
    {"MaxKeyWordLineLen", 256, 64, kMega},
    {"WeightProximity", kProximityWeight, -100, 100},
};

constexpr NumberKey kExtensionKeys[] = {
    {"CutSigns", 1, 0, 1}, {"PlainQueries", 1, 0, 1},     {"OfferWords", 1, 0, 1},
    {"Ranking", 1, 0, 1},  {"SpellingDistance", 1, 0, 1}, {"ShowCorrected", 1, 0, 1},
    {"Passages", 1, 0, 1}, {"SectionLinks", 1, 0, 1},     {"CompleteAnyWord", 1, 0, 1},
    {"CutRuns", 1, 0, 1},  {"AmendedAnswers", 1, 0, 1},
};

// DatePickerPath stands before LinkBackURL: the search program forgets the latter when it reads the
// former.
constexpr TextKey kTextKeys[] = {
    {"LogFileName", ".//logs//searchwords.log"},
    {"LinkTarget", ""},
    {"DatePickerPath", ""},
    {"LinkBackURL", "search.cgi"},
    {"XMLTitle", ""},
    {"XMLDesc", ""},
    {"XMLURL", ""},
    {"XMLXSLTURL", ""},
    {"XMLOpenSearchDescURL", ""},
    {"MetaMoneyCurrency", "&#36;"},
};

constexpr TextKey kExtensionTextKeys[] = {
    {"StopWords", ""},
};

struct RefusedKey {
  std::string_view key;
  std::string_view reason;
};

constexpr std::string_view kFollows = "it follows from the pages that were read";

constexpr RefusedKey kRefusedKeys[] = {
    {"Version", "it names the indexer"},
    {"UseUTF8", "it follows from charset in [index]"},
    {"Charset", "it follows from charset in [index]"},
    {"Codepage", "it follows from charset in [index]"},
    {"MapAccents", "it follows from charset in [index]"},
    {"UseStemming", "it follows from stemming in [index]"},
    {"StemmingAlgo", "it follows from stemming in [index]"},
    {"ToLowerSearchWords", "the words of the index are in lower case"},
    {"WordJoinChars", "pages and queries must be cut at the same characters"},
    {"UseAutoComplete", "it follows from [suggestions]"},
    {"Spelling", "it follows from [spelling]"},
    {"NumSpellings", kFollows},
    {"Recommended", "it follows from [recommended]"},
    {"NumRecommended", kFollows},
    {"UseCats", "it follows from the [[category]] tables"},
    {"NumCats", "it follows from the [[category]] tables"},
    {"NumCatBytes", "it follows from the [[category]] tables"},
    {kCategoryNamesLine, "it follows from the [[category]] tables"},
    {"UseMetaFields", "it follows from the [[field]] tables"},
    {"NumMetaFields", "it follows from the [[field]] tables"},
    {kMetaFieldsLine, "it follows from the [[field]] tables"},
    {"UseBigPageInfoData", "the records of pages never need it"},
    {"DictIDLen", kFollows},
    {"DictReservedLimit", kFollows},
    {"DictReservedPrefixes", kFollows},
    {"DictReservedSuffixes", kFollows},
    {"DictReservedNoSpaces", kFollows},
    {"PhraseSigns", "what stands between two words is always one entry of the page text"},
    {"Synonyms", kFollows},
    {"NumKeywords", kFollows},
    {"NumPages", kFollows},
    {"NumVariants", kFollows},
    {"PageInfoSize", kFollows},
    {"LookupGeneration", kFollows},
    {"OutputVariantBufferSize", kFollows},
    {"OutputBasewordBufferSize", kFollows},
};

constexpr bool IsSection(std::string_view key) {
  return key == kCategoryNamesLine || key == kMetaFieldsLine;
}

template <typename Key, size_t N>
constexpr size_t CountIn(const Key (&keys)[N], std::string_view key) {
  return static_cast<size_t>(
      std::ranges::count_if(keys, [key](const Key& each) { return each.key == key; }));
}

// Whether every key that the search program reads is either the owner's or refused, once.
template <typename Setting, size_t N, typename... Tables>
constexpr bool AllStandOnce(const Setting (&settings)[N], const Tables&... tables) {
  return std::ranges::all_of(
      settings, [&](const Setting& setting) { return (CountIn(tables, setting.key) + ...) == 1; });
}

// GCC 12 takes none of this for a constant while it adds the checks of the sanitizers.
#ifndef __SANITIZE_ADDRESS__
static_assert(AllStandOnce(kNumberSettings, kNumberKeys, kExtensionKeys, kRefusedKeys));
static_assert(AllStandOnce(kTextSettings, kTextKeys, kExtensionTextKeys, kRefusedKeys));

// Whether the search program reads every key of the tables.
static_assert(std::ranges::all_of(kNumberKeys, [](const NumberKey& key) {
  return FindNumberSetting(key.key) != nullptr;
}));
static_assert(std::ranges::all_of(kExtensionKeys, [](const NumberKey& key) {
  return FindNumberSetting(key.key) != nullptr;
}));
static_assert(std::ranges::all_of(kRefusedKeys, [](const RefusedKey& refused) {
  return FindNumberSetting(refused.key) != nullptr || FindTextSetting(refused.key) != nullptr ||
         IsSection(refused.key);
}));
#endif

}  // namespace

std::span<const NumberKey> NumberKeys() { return kNumberKeys; }

std::span<const NumberKey> ExtensionKeys() { return kExtensionKeys; }

std::span<const TextKey> TextKeys() { return kTextKeys; }

std::span<const TextKey> ExtensionTextKeys() { return kExtensionTextKeys; }

std::string_view RefusedKeyReason(std::string_view key) {
  for (const RefusedKey& refused : kRefusedKeys) {
    if (refused.key == key) return refused.reason;
  }
  if (key.starts_with(kLanguageKeyPrefix)) {
    return "texts come from the language file (language in [site])";
  }
  return {};
}

}  // namespace vela::indexer
