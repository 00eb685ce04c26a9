// content_keys.h: the keys of [index] and [[content]] that say what of a page is its content.
#pragma once

#include <cstddef>
#include <cstdint>

#include "indexer/config/config_table.h"
#include "indexer/config/site_config.h"

namespace vela::indexer {

constexpr size_t kSelectorBytesLimit = 1000;  // of one text, which may hold several

constexpr int64_t kSectionWordsLimit = 1'000'000;  // of section_pages

// Reads them into `rule`, whose fields hold what is true without them, and adds their selectors to
// `config.selectors`. `where` names the table in messages. Throws IndexError (usage).
void ReadContentKeys(ConfigTable& table, const std::string& where, SiteConfig& config,
                     ContentRule& rule);

}  // namespace vela::indexer
