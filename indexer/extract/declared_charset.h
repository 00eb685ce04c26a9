// declared_charset.h: the character set that the markup of a page names as its own.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace vela::indexer {

// Calls `use` for the names that the first 4 kB of `markup`, in any set that holds ASCII, declare,
// until it returns true: in lower case and in the order in which they count, that of the XML
// declaration, then those of meta elements (charset, or content of http-equiv "content-type").
// Comments, scripts and other elements that hold only characters declare nothing.
void ForEachDeclaredCharset(std::string_view markup,
                            const std::function<bool(const std::string& name)>& use);

}  // namespace vela::indexer
