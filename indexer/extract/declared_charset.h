// declared_charset.h: the character set that the markup of a page names as its own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// The names that the first 4 kB of `markup`, in any set that holds ASCII, declare, in lower case
// and in the order in which they count: that of the XML declaration, then those of meta elements
// (charset, or content of http-equiv "content-type"). Comments, scripts and other elements that
// hold only characters declare nothing.
std::vector<std::string> DeclaredCharsets(std::string_view markup);

}  // namespace vela::indexer
