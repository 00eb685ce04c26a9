// response_start.h: the header of an answer.
#pragma once

#include "output/response.h"
#include "settings/settings.h"

namespace vela {

// Writes the CGI header, with the character set unless the settings leave it out.
void WriteHeader(Response& response, const Settings& settings);

}  // namespace vela
