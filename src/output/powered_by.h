// powered_by.h: the line of the page that names the engine.
#pragma once

#include "output/sections.h"
#include "settings/settings.h"

namespace vela {

// Appends the line, when the settings want it.
void AppendPoweredBy(OutputSections& sections, const Settings& settings);

}  // namespace vela
