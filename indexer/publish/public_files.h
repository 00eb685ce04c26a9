// public_files.h: the files of the index folder that are no index: the template and what the pages
// of the search link to.
#pragma once

#include <filesystem>
#include <string>

#include "indexer/config/language_file.h"
#include "indexer/config/options.h"
#include "indexer/publish/index_folder.h"
#include "indexer/report/reason.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// Writes search_template.html, the one that options.templateName gives (see LoadTemplate); when
// that is empty, the one that the index has is kept unless it is an unchanged copy of a built-in
// one, which is written anew in the language of the search; a first index gets the default. Returns
// what to warn the owner of: a template in which no result would be shown, or that is in another
// language; kNone: nothing.
Finding WriteTemplate(const Options& options, const TemplateWords& words,
                      const IndexCharset& charset, const IndexFolder& folder);

// Writes the styles, scripts and style sheets that come with the program, always anew, and
// vela_opensearch.xml when the address of the search is known. Asks for the folder of the search
// log when searches are logged.
void WritePublicFiles(const SiteConfig& config, bool suggestions, const IndexCharset& charset,
                      IndexFolder& folder);

// Whether the web server will not be able to write the log: its folder in `target` is made by this
// run or an earlier one, belongs to this user alone, and nobody has written a log there. Otherwise
// no reason.
Finding LogFolderFault(const SiteConfig& config, const std::filesystem::path& target);

}  // namespace vela::indexer
