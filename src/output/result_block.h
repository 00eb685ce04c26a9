// result_block.h: the blocks of the results on the current page; items in XML mode.
#pragma once

#include "index/dictionary.h"
#include "index/index_files.h"
#include "output/links.h"
#include "output/response.h"
#include "output/sections.h"
#include "search/highlight_terms.h"
#include "search/query.h"
#include "search/ranking.h"
#include "search/search_request.h"
#include "settings/settings.h"

namespace vela {

// What the blocks are made from; refers to records that outlive it.
struct ResultBlocks {
  const Settings& settings;
  const SearchRequest& request;
  const Query& query;
  const LinkParameters& links;
  const IndexFiles& files;
  const Dictionary& dictionary;
  const HighlightTerms& highlight;
  bool showsContext = false;  // the search was for words, and the settings want context
};

enum class BlockStatus { kOk, kCorruptPageData, kInvalidCategory };

// Writes the results that the requested page shows. After a failure what was already written
// stays; its message is left to the caller.
[[nodiscard]] BlockStatus WriteResultBlocks(Response& response, OutputSections& sections,
                                            const ResultBlocks& blocks, const ResultList& results);

}  // namespace vela
