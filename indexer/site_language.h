// site_language.h: the languages that the pages of a site are written in, as they say or, where
// they say nothing, as their text tells.
#pragma once

#include <csignal>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/source/source.h"

namespace vela::indexer {

// Pages by the code of their language ("en").
using LanguageCounts = std::map<std::string, size_t, std::less<>>;

// Whether the languages of pages that name none are to be recognised: the owner says so, or has
// categories of languages.
bool AsksForLanguages(const SiteConfig& config);

// Looks at some hundred HTML pages of the list, from its start to its end. Ends early when `stop`
// is set.
LanguageCounts LanguagesOfPages(const Source& source, const ItemList& items,
                                const volatile std::sig_atomic_t& stop);

// The language of most pages, of two with as many the first by name; empty when no page tells.
std::string MostFrequent(const LanguageCounts& counts);

// The StemmingAlgorithm for a language by its code; -1 when there is none.
int32_t StemmingOfLanguage(std::string_view language);

// Adds a category, called as its speakers call it, for each language that one of a hundred pages is
// in, sorted by their codes. Nothing where there is one language only, or no room for all.
void AddLanguageCategories(const LanguageCounts& counts, std::vector<CategoryRule>& categories);

}  // namespace vela::indexer
