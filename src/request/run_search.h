// run_search.h: the stage that runs one search.
#pragma once

namespace vela {

struct SearchContext;

// Searches for the parsed query and writes the whole answer. The request has ended when it returns,
// well or not; always 0.
int RunSearch(SearchContext& ctx);

}  // namespace vela
