// meta_elements.h: what a page says of itself beside its text, kept within limits.
#pragma once

#include <string>
#include <string_view>

#include "indexer/extract/page.h"

namespace vela::indexer {

// The text clean (see CleanText), trimmed, and with one blank in the place of several.
std::string OneLine(std::string text);

// Adds a meta element of that name, in lower case. Nothing for one that is empty, longer than meant
// for readers, or one too many.
void AddMeta(std::string_view name, std::string text, PageContent& page);

}  // namespace vela::indexer
