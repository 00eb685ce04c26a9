// template_words.h: the few words that the built-in templates hold themselves, by language. All
// other texts of a page come from the language file.
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// Brings a built-in template, which is in English, into the built-in language of that name: the
// language of the page, its heading and the word that unfolds the form's choices. A language that
// is not built in leaves the template in English.
void TranslateTemplate(std::string& page, std::string_view language);

}  // namespace vela::indexer
