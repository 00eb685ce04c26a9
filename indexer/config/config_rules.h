// config_rules.h: the tables [[category]], [[boost]], [[content]], [[field]] and
// [[synonym]] of vela_index.toml,
// each a rule of the site that its keys make together.
#pragma once

#include <string>

#include "indexer/config/config_table.h"
#include "indexer/config/site_config.h"

namespace vela::indexer {

// Adds the rules of the file, called `file` in messages, to those of `config`. Throws IndexError
// (usage).
void ReadRuleTables(ConfigTable& top, const std::string& file, SiteConfig& config);

}  // namespace vela::indexer
