// line_format.h: the forms of a line of the settings file, read as a formatted read would.
//
// A blank of a form stands for any run of white space, also none. A value that does not fit its
// form leaves the output as it was, and the result is false.
#pragma once

#include <cstdint>
#include <string_view>

namespace vela {

// The first run of characters that are no white space.
std::string_view FirstToken(std::string_view line);

// `KEY = 123`, the key at the very start of the line; saturates at the limits of int32_t.
bool ParseInteger(std::string_view line, std::string_view key, int32_t& value);

// `KEY = "text"`, the key at the very start: the text up to the next double quote, or without one
// to the end of the line, line feed included. It must hold at least one character.
bool ParseQuoted(std::string_view line, std::string_view key, std::string_view& value);

// The same behind any first token, which blanks may precede.
bool ParseQuotedAfterToken(std::string_view line, std::string_view& value);

// `KEY =text`: what follows the equals sign and white space, up to the line feed; not empty.
bool ParseRest(std::string_view line, std::string_view key, std::string_view& value);

}  // namespace vela
