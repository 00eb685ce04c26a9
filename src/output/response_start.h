// response_start.h: the first bytes of an answer.
#pragma once

#include "output/response.h"
#include "output/sections.h"
#include "settings/settings.h"

namespace vela {

inline constexpr char kProductHomePage[] = "https://vela-search.example/";

// Writes the CGI header, with the character set unless the settings leave it out.
void WriteHeader(Response& response, const Settings& settings);

// Writes the opening of the XML document: declaration, style sheet, the channel and what it says
// of itself; with `listSettings` also the settings that shape the answers.
void WriteXmlOpening(Response& response, const Settings& settings, bool listSettings);

// Appends the line that names the engine, when the settings want it.
void AppendPoweredBy(OutputSections& sections, const Settings& settings);

}  // namespace vela
