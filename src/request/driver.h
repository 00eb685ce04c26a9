// driver.h: the run of one request, from the program's arguments to the last byte of the answer.
#pragma once

#include <span>

#include "request/cgi_form.h"

namespace vela {

struct SearchContext;

// Answers one request. `arguments` begin with the program's path. The exit status of the process:
// 0, or 1 for a request that cannot be decoded or names a category that the index cannot have.
int RunRequest(SearchContext& ctx, std::span<const char* const> arguments, const CgiSource& source);

}  // namespace vela
