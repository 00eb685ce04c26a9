// site_language.h: the language that the pages of a site are written in, as most of them say or,
// where they say nothing, as their function words tell.
#pragma once

#include <csignal>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/source/source.h"

namespace vela::indexer {

// The language of most of the HTML pages ("en"): the one that a page declares, else the one that it
// has most function words of. Of two with as many pages the first by name. Looks at some hundred
// pages of the list, from its start to its end. Empty when no page tells anything. Ends early when
// `stop` is set.
std::string LanguageOfPages(const Source& source, const std::vector<SourceItem>& items,
                            const volatile std::sig_atomic_t& stop);

// The StemmingAlgorithm for a language by its code; -1 when there is none.
int32_t StemmingOfLanguage(std::string_view language);

}  // namespace vela::indexer
