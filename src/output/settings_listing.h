// settings_listing.h: the settings that shape an answer, as elements of the XML document.
#pragma once

#include "output/response.h"
#include "settings/settings.h"

namespace vela {

// Writes one element a line; texts as they stand, without escaping.
void WriteSettingsListing(Response& response, const Settings& settings);

}  // namespace vela
