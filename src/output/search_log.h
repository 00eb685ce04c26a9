// search_log.h: the log of searches, one line each, for the site owner.
//
//   2026-03-05, 09:04:07, 10.0.0.1, "query", Matches = 3, OR, PerPage = 10, PageNum = 0, No cats,
//   Time = 0.042, Rec = 0
//
// on one line, ended by carriage return and line feed. Double quotes of the query are doubled,
// control bytes in it are blanks.
#pragma once

#include <cstdint>
#include <string_view>

#include "output/response.h"
#include "search/search_request.h"
#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

struct SearchLogEntry {
  double endTime = 0;  // seconds since 1970
  double seconds = 0;  // that the search took
  std::string_view remoteAddress;
  std::string_view query;  // as typed
  int32_t matches = 0;
  int32_t page = 0;  // 0 when the request names none
  int32_t recommended = 0;
};

// Appends the line in one write, so that concurrent requests never mix their lines. A log that
// cannot be opened is reported on the page; a query that is too long with its quotes doubled is not
// logged.
void WriteSearchLog(Response& response, const IndexDirectory& directory, const Settings& settings,
                    const SearchRequest& request, const SearchLogEntry& entry);

// The message of a system error number, ended by a blank.
FixedText<64> SystemErrorMessage(int number);

}  // namespace vela
