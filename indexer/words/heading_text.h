// heading_text.h: what a title or heading says, without what templates put around it.
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// The heading on one line without the sign that links to it ("\u00B6" or "#" at its end) and
// without its number: "3.2.1. Names", "Chapter 5. Names", "5) Names" and "Anhang A. Names" are
// "Names". What would leave nothing stays: "2.7" and "3.11.2 Documentation" in front of no other
// word.
std::string PlainHeading(std::string_view heading);

}  // namespace vela::indexer
