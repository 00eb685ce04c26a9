// usage.h: what the program says of itself to a person who starts it in a terminal.
#pragma once

#include <span>
#include <string_view>

#include "request/cgi_form.h"

namespace vela {

// The text that the only argument asks for, "--help" or "--version"; empty when there is another
// argument or none, and always for a request: a web server sets REQUEST_METHOD or
// GATEWAY_INTERFACE. `arguments` begin with the program's path.
std::string_view UsageText(std::span<const char* const> arguments, const CgiSource& source);

}  // namespace vela
