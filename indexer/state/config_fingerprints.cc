#include "indexer/state/config_fingerprints.h"

#include "indexer/config/extensions.h"
#include "indexer/config/setting_keys.h"

namespace vela::indexer {

namespace {

// One function for each kind of value; a field of a new kind does not compile without its own. So
// does none of these after a field has joined its structure.
void Add(const std::string& text, FingerprintOfAll& all) { all.Add(text); }
void Add(int32_t number, FingerprintOfAll& all) { all.Add(static_cast<uint64_t>(int64_t{number})); }
void Add(uint32_t number, FingerprintOfAll& all) { all.Add(uint64_t{number}); }
void Add(uint64_t number, FingerprintOfAll& all) { all.Add(number); }
void Add(bool flag, FingerprintOfAll& all) { all.Add(uint64_t{flag ? 1U : 0U}); }
void Add(DateSource source, FingerprintOfAll& all) { all.Add(static_cast<uint64_t>(source)); }

template <typename Value>
void Add(const std::vector<Value>& values, FingerprintOfAll& all);

void Add(const CategoryRule& rule, FingerprintOfAll& all) {
  const auto& [name, pages, languages] = rule;
  Add(name, all);
  Add(pages, all);
  Add(languages, all);
}

void Add(const ElementSelector& selector, FingerprintOfAll& all) {
  const auto& [text, parts, number] = selector;
  Add(text, all);
  (void)parts;  // follow from the text
  Add(number, all);
}

void Add(const ContentRule& rule, FingerprintOfAll& all) {
  const auto& [pages, excludeElements, onlyElements, indexesNavigation, prefersMain, sectionWords,
               where] = rule;
  Add(pages, all);
  Add(excludeElements, all);
  Add(onlyElements, all);
  Add(indexesNavigation, all);
  Add(prefersMain, all);
  Add(sectionWords, all);
  (void)where;  // for messages
}

void Add(const SiteHabits& habits, FingerprintOfAll& all) {
  const auto& [names, sharedTitle, repeatedTexts] = habits;
  Add(names, all);
  Add(sharedTitle, all);
  Add(repeatedTexts, all);
}

void Add(const BoostRule& rule, FingerprintOfAll& all) {
  const auto& [pages, tenths, where] = rule;
  Add(pages, all);
  Add(int32_t{tenths}, all);
  (void)where;  // for messages
}

void Add(const SynonymRule& rule, FingerprintOfAll& all) {
  const auto& [words] = rule;
  Add(words, all);
}

void Add(const FieldRule& rule, FingerprintOfAll& all) {
  const auto& [name, meta, label, kind, method, values] = rule;
  Add(name, all);
  Add(meta, all);
  Add(label, all);
  Add(kind, all);
  Add(method, all);
  Add(values, all);
}

void Add(const RecommendedRule& rule, FingerprintOfAll& all) {
  const auto& [keywords, address, where, title, text] = rule;
  Add(keywords, all);
  Add(address, all);
  (void)where;  // for messages
  Add(title, all);
  Add(text, all);
}

void Add(const SettingValue& value, FingerprintOfAll& all) {
  const auto& [isText, number, text] = value;
  Add(isText, all);
  Add(number, all);
  Add(text, all);
}

template <typename Value>
void Add(const std::vector<Value>& values, FingerprintOfAll& all) {
  all.Add(uint64_t{values.size()});
  for (const Value& value : values) Add(value, all);
}

}  // namespace

ConfigFingerprints FingerprintsOf(const SiteConfig& config) {
  const auto& [endings, charset, stemming, images, linkTexts, dates, trustsFileDates,
               recognisesLanguages, languageCategories, leavesOutRepeatedText, nearDuplicates,
               content, contentRules, selectors, categories, fields, boosts, synonyms, recommended,
               recommendedFile, siteName, habits, spelling, suggestions, mostSuggestions,
               extensions, searchAddress, searchName, searchDescription, styleSheet, logging,
               logFile, settings] = config;
  FingerprintOfAll blocks;
  (void)endings;  // which items there are, and their types, is told by the list
  Add(IndexesPictures(config), blocks);
  Add(charset, blocks);
  Add(stemming, blocks);
  Add(images, blocks);
  Add(linkTexts, blocks);
  Add(dates, blocks);
  Add(content, blocks);
  Add(contentRules, blocks);
  Add(recognisesLanguages, blocks);
  (void)selectors;  // they stand in the rules, with their numbers
  Add(fields, blocks);
  Add(siteName, blocks);
  Add(leavesOutRepeatedText, blocks);
  Add(habits, blocks);
  Add(suggestions, blocks);
  for (const NumberKey& key : ExtensionKeys()) Add(ExtensionValue(config, key.key), blocks);

  FingerprintOfAll index;
  Add(trustsFileDates, index);
  Add(categories, index);
  (void)languageCategories;  // they have joined the others
  Add(static_cast<int32_t>(nearDuplicates), index);
  Add(boosts, index);
  Add(synonyms, index);
  Add(recommended, index);
  (void)recommendedFile;  // its lines are in `recommended`
  Add(spelling, index);
  Add(mostSuggestions, index);
  Add(extensions, index);
  Add(searchAddress, index);
  Add(searchName, index);
  Add(searchDescription, index);
  Add(styleSheet, index);
  Add(logging, index);
  Add(logFile, index);
  for (const auto& [key, value] : settings) {
    Add(key, index);
    Add(value, index);
  }
  return {.blocks = blocks.Finish(), .index = index.Finish()};
}

}  // namespace vela::indexer
