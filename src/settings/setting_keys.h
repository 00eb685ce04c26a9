// setting_keys.h: the keys of the settings file (format/settings_file.h) with the fields that they
// fill. The reader goes through these tables, and what the indexer writes is held against them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

#include "settings/settings.h"

namespace vela {

struct NumberSetting {
  std::string_view key;
  int32_t Settings::*field;
};

inline constexpr NumberSetting kNumberSettings[] = {
    {"UseUTF8", &Settings::UseUTF8},
    {"Codepage", &Settings::Codepage},
    {"UseStemming", &Settings::UseStemming},
    {"StemmingAlgo", &Settings::StemmingAlgo},
    {"NoCharset", &Settings::NoCharset},
    {"MinWordLen", &Settings::MinWordLen},
    {"Highlighting", &Settings::Highlighting},
    {"HighlightLimit", &Settings::HighlightLimit},
    {"GotoHighlight", &Settings::GotoHighlight},
    {"PdfHighlight", &Settings::PdfHighlight},
    {"FormFormat", &Settings::FormFormat},
    {"DisplayMetaDesc", &Settings::DisplayMetaDesc},
    {"DisplayMetaFields", &Settings::DisplayMetaFields},
    {"DotNetUseFormTags", &Settings::DotNetUseFormTags},
    {"DotNetUsePostBacks", &Settings::DotNetUsePostBacks},
    {"UseDateTime", &Settings::UseDateTime},
    {"DisplayDate", &Settings::DisplayDate},
    {"DefaultSort", &Settings::DefaultSort},
    {"DateRangeSearch", &Settings::DateRangeSearch},
    {"DateRangeFormat", &Settings::DateRangeFormat},
    {"UseAutoComplete", &Settings::UseAutoComplete},
    {"DisplayContext", &Settings::DisplayContext},
    {"DisplayNumber", &Settings::DisplayNumber},
    {"DisplayTitle", &Settings::DisplayTitle},
    {"DisplayTerms", &Settings::DisplayTerms},
    {"DisplayScore", &Settings::DisplayScore},
    {"DisplayURL", &Settings::DisplayURL},
    {"TruncateShowURL", &Settings::TruncateShowURL},
    {"DisplayFilesize", &Settings::DisplayFilesize},
    {"UseVelaImage", &Settings::UseVelaImage},
    {"DisplayCatSummary", &Settings::DisplayCatSummary},
    {"Logging", &Settings::Logging},
    {"MaxKeyWordLineLen", &Settings::MaxKeyWordLineLen},
    {"OutputVariantBufferSize", &Settings::OutputVariantBufferSize},
    {"OutputBasewordBufferSize", &Settings::OutputBasewordBufferSize},
    {"DictIDLen", &Settings::DictIDLen},
    {"DictReservedLimit", &Settings::DictReservedLimit},
    {"DictReservedPrefixes", &Settings::DictReservedPrefixes},
    {"DictReservedSuffixes", &Settings::DictReservedSuffixes},
    {"DictReservedNoSpaces", &Settings::DictReservedNoSpaces},
    {"UseBigPageInfoData", &Settings::UseBigPageInfoData},
    {"PluginOpenNewWindow", &Settings::PluginOpenNewWindow},
    {"FileTypePluginStart", &Settings::FileTypePluginStart},
    {"WordSplit", &Settings::WordSplit},
    {"VelaInfo", &Settings::VelaInfo},
    {"Timing", &Settings::Timing},
    {"SearchAsSubstring", &Settings::SearchAsSubstring},
    {"ToLowerSearchWords", &Settings::ToLowerSearchWords},
    {"ContextSize", &Settings::ContextSize},
    {"MaxContextKeywords", &Settings::MaxContextKeywords},
    {"MaxResultsPerQuery", &Settings::MaxResultsPerQuery},
    {"WeightProximity", &Settings::WeightProximity},
    {"AllowExactPhrase", &Settings::AllowExactPhrase},
    {"MaxContextSeeks", &Settings::MaxContextSeeks},
    {"PhraseSigns", &Settings::PhraseSigns},
    {"MaxMatches", &Settings::MaxMatches},
    {"MaxSearchTime", &Settings::MaxSearchTime},
    {"UseLinkTarget", &Settings::UseLinkTarget},
    {"Spelling", &Settings::Spelling},
    {"SpellingWhenLessThan", &Settings::SpellingWhenLessThan},
    {"NumSpellings", &Settings::NumSpellings},
    {"Recommended", &Settings::Recommended},
    {"NumRecommended", &Settings::NumRecommended},
    {"RecommendedMax", &Settings::RecommendedMax},
    {"UseCats", &Settings::UseCats},
    {"SearchMultiCats", &Settings::SearchMultiCats},
    {"NumKeywords", &Settings::NumKeywords},
    {"NumPages", &Settings::NumPages},
    {"NumVariants", &Settings::NumVariants},
    {"PageInfoSize", &Settings::PageInfoSize},
    {"LookupGeneration", &Settings::LookupGeneration},
    {"DefaultToAnd", &Settings::DefaultToAnd},
    {"UseXML", &Settings::UseXML},
    {"XMLHighlight", &Settings::XMLHighlight},
    {"NumCats", &Settings::NumCats},
    {"NumCatBytes", &Settings::NumCatBytes},
    {"UseMetaFields", &Settings::UseMetaFields},
    {"NumMetaFields", &Settings::NumMetaFields},
    {"MetaMoneyShowDec", &Settings::MetaMoneyShowDec},
    {"MapAccents", &Settings::MapAccents},
    {"CutSigns", &Settings::CutSigns},
    {"PlainQueries", &Settings::PlainQueries},
    {"Synonyms", &Settings::Synonyms},
    {"OfferWords", &Settings::OfferWords},
    {"Ranking", &Settings::Ranking},
    {"SpellingDistance", &Settings::SpellingDistance},
    {"ShowCorrected", &Settings::ShowCorrected},
    {"Passages", &Settings::Passages},
    {"SectionLinks", &Settings::SectionLinks},
    {"CompleteAnyWord", &Settings::CompleteAnyWord},
    {"CutRuns", &Settings::CutRuns},
    {"AmendedAnswers", &Settings::AmendedAnswers},
};

struct TextSetting {
  std::string_view key;
  void (*store)(Settings& settings, std::string_view value);  // cuts what does not fit
  size_t capacity;                                            // bytes of a value that are kept
  bool isEmptiedFirst;  // a line without a value leaves the field empty
};

template <auto kField>
constexpr TextSetting TextSettingOf(std::string_view key, bool isEmptiedFirst = false) {
  using Field = std::remove_reference_t<decltype(std::declval<Settings&>().*kField)>;
  return {key, [](Settings& settings, std::string_view value) { Set(settings.*kField, value); },
          Field::kCapacity, isEmptiedFirst};
}

inline constexpr TextSetting kTextSettings[] = {
    TextSettingOf<&Settings::Charset>("Charset"),
    TextSettingOf<&Settings::DatePickerPath>("DatePickerPath"),
    TextSettingOf<&Settings::Version>("Version"),
    TextSettingOf<&Settings::LogFileName>("LogFileName"),
    TextSettingOf<&Settings::LinkTarget>("LinkTarget"),
    TextSettingOf<&Settings::WordJoinChars>("WordJoinChars"),
    TextSettingOf<&Settings::LinkBackURL>("LinkBackURL", true),
    TextSettingOf<&Settings::XMLTitle>("XMLTitle", true),
    TextSettingOf<&Settings::XMLDesc>("XMLDesc", true),
    TextSettingOf<&Settings::XMLURL>("XMLURL", true),
    TextSettingOf<&Settings::XMLXSLTURL>("XMLXSLTURL", true),
    TextSettingOf<&Settings::XMLOpenSearchDescURL>("XMLOpenSearchDescURL", true),
    TextSettingOf<&Settings::MetaMoneyCurrency>("MetaMoneyCurrency"),
    TextSettingOf<&Settings::StopWords>("StopWords"),
};

// The row of a key; null when no number or text has that key.
constexpr const NumberSetting* FindNumberSetting(std::string_view key) {
  for (const NumberSetting& setting : kNumberSettings) {
    if (setting.key == key) return &setting;
  }
  return nullptr;
}
constexpr const TextSetting* FindTextSetting(std::string_view key) {
  for (const TextSetting& setting : kTextSettings) {
    if (setting.key == key) return &setting;
  }
  return nullptr;
}

}  // namespace vela
