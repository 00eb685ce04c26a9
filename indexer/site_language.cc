#include "indexer/site_language.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "indexer/extract/declared_language.h"
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

}  // namespace

std::string LanguageOfPages(const FolderSource& source, const std::vector<SourceItem>& items,
                            const volatile std::sig_atomic_t& stop) {
  std::map<std::string, size_t> pages;
  const size_t step = std::max<size_t>(1, items.size() / kSample);
  for (size_t i = 0; i < items.size() && stop == 0; i += step) {
    FileContent file;
    if (items[i].type != FileType::kHtml || ReadItem(source, items[i], file) != Reason::kNone) {
      continue;
    }
    std::string language = DeclaredLanguage(file.bytes);
    if (!language.empty()) ++pages[std::move(language)];
  }
  const auto most =
      std::ranges::max_element(pages, {}, [](const auto& language) { return language.second; });
  return most == pages.end() ? std::string() : most->first;
}

int32_t StemmingOfLanguage(std::string_view language) {
  const auto* found = std::ranges::find(kLanguages, language, &StemmedLanguage::code);
  return found == std::end(kLanguages) ? -1 : int32_t{found->algorithm};
}

}  // namespace vela::indexer
