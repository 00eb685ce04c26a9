// ending.h: the one way to end a request. Open to every room.
#pragma once

namespace vela {

struct SearchContext;

// Completes the response around what was written (the page's template, or the closing tags in XML
// mode), hands it to the web server and releases the context. Always 0, so that a stage may say
// `return EndRequest(ctx);`. A second call does nothing.
int EndRequest(SearchContext& ctx);

}  // namespace vela
