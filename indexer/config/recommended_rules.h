// recommended_rules.h: the owner's file of recommended pages.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"

namespace vela::indexer {

// Lines `keywords = address` of the owner's file; several keywords are separated by ",". Empty
// lines and those that begin with "#" are passed over. Throws IndexError (usage) naming `path` and
// the line that is no such line.
std::vector<RecommendedRule> ReadRecommendedRules(std::string_view text, const std::string& path);

}  // namespace vela::indexer
