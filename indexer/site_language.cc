#include "indexer/site_language.h"

#include <unicode/uldnames.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "indexer/extract/declared_language.h"
#include "indexer/extract/decoding.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/words/detected_language.h"
#include "text/stemmer.h"

namespace vela::indexer {

namespace {

// Pages that are looked at. Sites declare one language by their template, or one a folder.
constexpr size_t kSample = 400;

struct StemmedLanguage {
  std::string_view code;
  StemmingAlgorithm algorithm;
};

constexpr StemmedLanguage kLanguages[] = {
    {"da", kStemDanish},     {"de", kStemGerman},   {"en", kStemEnglish},   {"es", kStemSpanish},
    {"fi", kStemFinnish},    {"fr", kStemFrench},   {"hu", kStemHungarian}, {"it", kStemItalian},
    {"nb", kStemNorwegian},  {"nl", kStemDutch},    {"nn", kStemNorwegian}, {"no", kStemNorwegian},
    {"pt", kStemPortuguese}, {"ro", kStemRomanian}, {"ru", kStemRussian},   {"sv", kStemSwedish},
    {"tr", kStemTurkish},
};

// The language that a page says it is in, else the one of its text; empty for neither.
std::string LanguageOfPage(const FileContent& file) {
  std::string language = DeclaredLanguage(file.bytes);
  if (!language.empty()) return language;
  ReadingBudget budget = StartReading({}, file.bytes.size());
  std::string text;
  const Reason reason = ConvertToUtf8(file.bytes, true, budget, text, file.charset);
  return reason == Reason::kNone ? DetectedLanguage(text, true) : std::string();
}

// What speakers of the language call it, as it stands in a list; the code where that is not known.
std::string OwnNameOf(const std::string& language) {
  constexpr int32_t kNameLength = 100;
  UErrorCode status = U_ZERO_ERROR;
  UDisplayContext contexts[] = {UDISPCTX_CAPITALIZATION_FOR_UI_LIST_OR_MENU};
  ULocaleDisplayNames* names = uldn_openForContext(language.c_str(), contexts, 1, &status);
  UChar name[kNameLength];
  const int32_t length =
      uldn_languageDisplayName(names, language.c_str(), name, kNameLength, &status);
  uldn_close(names);
  if (U_FAILURE(status) != 0 || length <= 0) return language;
  std::string text;
  return icu::UnicodeString(name, length).toUTF8String(text);
}

}  // namespace

bool AsksForLanguages(const SiteConfig& config) {
  return config.recognisesLanguages || config.languageCategories ||
         std::ranges::any_of(config.categories,
                             [](const CategoryRule& rule) { return !rule.languages.empty(); });
}

LanguageCounts LanguagesOfPages(const Source& source, const ItemList& items,
                                const volatile std::sig_atomic_t& stop) {
  LanguageCounts counts;
  const size_t step = std::max<size_t>(1, items.size() / kSample);
  for (size_t i = 0; i < items.size() && stop == 0; i += step) {
    FileContent file;
    const SourceItem item = items[i];
    if (item.type != FileType::kHtml || source.Read(item, file) != Reason::kNone) continue;
    std::string language = LanguageOfPage(file);
    if (!language.empty()) ++counts[std::move(language)];
  }
  return counts;
}

std::string MostFrequent(const LanguageCounts& counts) {
  const auto most =
      std::ranges::max_element(counts, {}, [](const auto& language) { return language.second; });
  return most == counts.end() ? std::string() : most->first;
}

void AddLanguageCategories(const LanguageCounts& counts, std::vector<CategoryRule>& categories) {
  constexpr size_t kLeastPercent = 1;
  size_t pages = 0;
  for (const auto& [language, count] : counts) pages += count;
  std::vector<CategoryRule> added;
  for (const auto& [language, count] : counts) {
    if (count * 100 < pages * kLeastPercent || !IsLanguageCode(language)) continue;
    added.push_back({.name = OwnNameOf(language), .pages = {}, .languages = {language}});
  }
  constexpr size_t kLeastLanguages = 2;
  if (added.size() < kLeastLanguages || categories.size() + added.size() > kCategoryLimit) return;
  std::ranges::move(added, std::back_inserter(categories));
}

int32_t StemmingOfLanguage(std::string_view language) {
  const auto* found = std::ranges::find(kLanguages, language, &StemmedLanguage::code);
  return found == std::end(kLanguages) ? -1 : int32_t{found->algorithm};
}

}  // namespace vela::indexer
