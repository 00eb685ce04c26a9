// declared_language.h: the language that a page says it is written in.
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// The language of the html element, lang or else xml:lang, that stands in the first 4 kB of
// `markup`, in any character set that holds ASCII: in lower case, without what stands behind its
// first hyphen ("pt" of "pt-BR"). Empty when there is none.
std::string DeclaredLanguage(std::string_view markup);

}  // namespace vela::indexer
