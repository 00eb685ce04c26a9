// former_settings.h: the settings of an index that gives way to a new one.
#pragma once

#include <ctime>
#include <filesystem>
#include <memory>

#include "settings/settings.h"

namespace vela::indexer {

// Those of the index in `folder`, where links may lead on; null when there are none that can be
// read.
std::unique_ptr<Settings> ReadFormerSettings(const std::filesystem::path& folder);

// How long the index in `folder` is kept at least after another took its place, in seconds: a
// minute, for as long web servers let a program run; and with a larger MaxSearchTime so much longer
// that a search may use it up, at most a day.
std::time_t SecondsToKeep(const std::filesystem::path& folder);

}  // namespace vela::indexer
