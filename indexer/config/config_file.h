// config_file.h: vela_index.toml, the site owner's configuration.
//
// assets/vela_index.example.toml shows every key with its meaning; docs/man/vela_index.toml.5 lists
// them. A key that is not known, a value of another type and a value out of range are refused with
// a message that names the line and what to do.
#pragma once

#include <string>
#include <string_view>

#include "indexer/config/options.h"

namespace vela::indexer {

// Reads the file into `options`, whose fields hold the defaults before. Paths in the file are
// taken from the folder that it lies in. Throws IndexError (usage; failed when it cannot be read).
void ReadConfigFile(const std::string& path, Options& options);

// The same for the content of a file called `path`.
void ReadConfigText(std::string_view text, const std::string& path, Options& options);

// Writes the commented example to `path`, which must not exist. Throws IndexError.
void WriteExampleConfig(const std::string& path);

}  // namespace vela::indexer
