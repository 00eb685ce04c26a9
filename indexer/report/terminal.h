// terminal.h: what a terminal shows, and nothing else gets.
#pragma once

#include <cstddef>
#include <string>

namespace vela::indexer {

// Whether `descriptor` is a terminal whose owner wants colours: NO_COLOR is unset or empty.
bool ShowsColors(int descriptor);

// What a file or page is called may hold bytes that a terminal obeys: "?" in their place.
std::string Shown(std::string text);

// A summary (summary.h) with its first line in bold and its warnings in yellow.
std::string Colored(const std::string& summary);

// The characters that fit on a line of the terminal; 0 when that is not known.
size_t TerminalWidth(int descriptor);

}  // namespace vela::indexer
