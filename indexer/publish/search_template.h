// search_template.h: the page around the results, built in or a file of the owner's.
#pragma once

#include <string>
#include <string_view>

#include "indexer/config/language_file.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// "default", "minimal" and "embed" are built in; anything else is a file, taken as it stands. A
// built-in template is brought into the language of the search page (see FillTemplateWords) and the
// character set of the index; it links to vela_opensearch.xml when `openSearch` says that this is
// written. Throws IndexError.
std::string LoadTemplate(const std::string& name, const TemplateWords& words, bool openSearch,
                         const IndexCharset& charset);

// The name of the built-in template of which `page` is an unchanged copy, as LoadTemplate makes it
// in any language that comes with the program; empty when it is none.
std::string_view UnchangedTemplate(std::string_view page);

// What a template says of its language, <html lang="...">; empty where it says nothing.
std::string_view TemplateLanguage(std::string_view page);

// `page` with the words where it has their keys in two braces: {{TEMPLATE_SEARCH}}. Braces around
// anything else stay.
std::string FillTemplateWords(std::string_view page, const TemplateWords& words);

}  // namespace vela::indexer
