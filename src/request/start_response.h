// start_response.h: the first stage of an answer.
#pragma once

namespace vela {

struct SearchContext;

// Settles the request with the settings, writes the header, opens the XML document or fills the
// search form, and brings the query into the form of the index. 0 when the request has ended here:
// there is nothing to search for, or the page lies beyond the limit.
int StartResponse(SearchContext& ctx);

}  // namespace vela
