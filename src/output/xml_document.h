// xml_document.h: the XML document around what a request finds.
#pragma once

#include "output/response.h"
#include "settings/settings.h"

namespace vela {

// Writes the opening: declaration, style sheet, the channel and what it says of itself; with
// `listSettings` also the settings that shape the answers. Texts of the settings file go out raw.
void WriteXmlOpening(Response& response, const Settings& settings, bool listSettings);

// Writes the closing tags.
void WriteXmlClosing(Response& response);

}  // namespace vela
