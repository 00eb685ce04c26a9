// explain_facts.h: where the file of a page is from, and what the page says of itself.
#pragma once

#include <vector>

#include "indexer/config/options.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_notes.h"
#include "indexer/report/explanation.h"
#include "indexer/report/reason.h"
#include "indexer/source/source.h"

namespace vela::indexer {

void ExplainFile(const SourceItem& item, const FileContent& file, const Options& options,
                 Explanation& said);

// In which character set the page is written; nothing where that is not looked for.
void ExplainCharset(const ReadingNotes& notes, Explanation& said);

// Its title, description, language, date and picture. `options` are as the look at the site has
// settled them.
void ExplainFacts(const Page& page, const Options& options, Explanation& said);

// What the page has for the owner's fields; `faults` are of values that were left out, each of the
// field that it names (Finding::where).
void ExplainFields(const Page& page, const std::vector<FieldRule>& fields,
                   const std::vector<Finding>& faults, Explanation& said);

}  // namespace vela::indexer
