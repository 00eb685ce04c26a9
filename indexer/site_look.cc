#include "indexer/site_look.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "indexer/collect/number_table.h"
#include "indexer/collect/site_habits.h"
#include "indexer/extract/read_page.h"
#include "indexer/run_conditions.h"
#include "indexer/site_language.h"
#include "indexer/words/word_forms.h"
#include "text/stemmer.h"

namespace vela::indexer {

namespace {

// Chooses the stemming by what the pages say of their language. Returns what to tell the owner.
std::string ChooseStemming(const LanguageCounts& languages, const IndexCharset& charset,
                           SiteConfig& config) {
  const std::string language = MostFrequent(languages);
  config.stemming = StemmingOfLanguage(language);
  if (language.empty()) return "off, as no page tells its language";
  if (config.stemming < 0) return "off, as there is none for the language \"" + language + "\"";
  const std::string name = StemmingAlgorithmName(config.stemming);
  if (HasStemmer(charset, config.stemming)) return name + ", as most pages are in that language";
  config.stemming = -1;
  return "off, as there is no " + name + " for " + charset.name();
}

// Some pages of the site are read to find what they share. They are those whose addresses have the
// smallest hashes, so that a page more or less changes little.
void FindHabits(const Source& source, const ItemList& items, const std::string& base,
                const volatile std::sig_atomic_t& stop, const SiteConfig& config, SiteLook& found) {
  constexpr size_t kSample = 400;
  std::vector<std::pair<uint64_t, size_t>> order;  // a hash, and the place in the list
  size_t number = 0;
  for (const SourceItem& item : items) {
    if (item.type == FileType::kHtml) order.emplace_back(TextHash(item.address), number);
    ++number;
  }
  std::ranges::sort(order);
  order.resize(std::min(order.size(), kSample));
  std::ranges::sort(order, {}, [](const auto& each) { return each.second; });
  const ContentChoices content(config, base);
  const PageWishes wishes = {.images = false, .dates = {}, .content = &content};
  HabitsLook look;
  for (const auto& [hash, place] : order) {
    FileContent file;
    Page page;
    const SourceItem item = items[place];
    if (source.Read(item, file) != Reason::kNone) continue;
    const Reason reason = ReadPage(item, std::move(file), wishes, {.stop = &stop}, page);
    CheckStop(stop);
    if (reason == Reason::kNone) look.AddPage(page);
  }
  found.habits = look.Finish(config);
  found.repeatedTexts = look.Examples(found.habits);
}

}  // namespace

SiteLook LookAtSite(const Source& source, const ItemList& items, const std::string& base,
                    const volatile std::sig_atomic_t& stop, const SiteConfig& config) {
  SiteLook look;
  if (config.stemming == kStemmingByPages || config.languageCategories) {
    look.languages = LanguagesOfPages(source, items, stop);
  }
  if (WantsLook(config)) FindHabits(source, items, base, stop, config, look);
  return look;
}

void Settle(const SiteLook& look, const IndexCharset& charset, SiteConfig& config,
            IndexSummary& summary) {
  if (config.stemming == kStemmingByPages) {
    summary.stemming = ChooseStemming(look.languages, charset, config);
  }
  if (config.languageCategories) AddLanguageCategories(look.languages, config.categories);
  config.recognisesLanguages = AsksForLanguages(config);
  if (WantsLook(config)) {
    if (config.siteName == kAutoSiteName) config.habits.names = look.habits.names;
    config.habits.sharedTitle = look.habits.sharedTitle;
    config.habits.repeatedTexts = look.habits.repeatedTexts;
    summary.sharedTitle = look.habits.sharedTitle;
    summary.repeatedTexts = look.repeatedTexts;
  }
  summary.siteNames = config.habits.names;
}

}  // namespace vela::indexer
