// config_keys.h: the tables [site], [crawl], [index], [search], [spelling], [suggestions],
// [recommended] and [log] of vela_index.toml, each key one row.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "indexer/config/config_table.h"
#include "indexer/config/options.h"

namespace vela::indexer {

// In bytes.
constexpr size_t kPathLimit = 4000;
constexpr size_t kBaseAddressLimit = 1900;  // an answer has room for a query behind it
constexpr size_t kNameLimit = 500;

// How the file is called in messages, and where paths in it begin.
struct ConfigSource {
  std::string file;
  std::filesystem::path folder;
};

// Reads these tables, where `top` has them, into `options`, whose fields hold the defaults before.
// Throws IndexError (usage; failed for a file that they name and that cannot be read).
void ReadKeyTables(ConfigTable& top, const ConfigSource& source, Options& options);

}  // namespace vela::indexer
