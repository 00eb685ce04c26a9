// page_date.h: when a page was written or changed.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"

namespace vela::indexer {

// A date as meta and time elements have it: "2026-03-05", "2026-03-05T18:30", or as the headers of
// the web do, "Thu, 05 Mar 2026 18:30:00 GMT", with seconds, and
// with an offset ("Z", "+01:00") or without (then UTC). Seconds since 1970; noon of the day when
// there is no time, so that it is the same day wherever it is shown. 0 for anything else and for
// what lies outside 1970 to 2037.
int64_t ReadDate(std::string_view text);

// The page's date from the first of `sources` that has one: its meta elements (of kDateMetas in
// page_date.cc, in this order: when it was changed, then when it appeared, as article:modified_time
// and schema.org say it; what Dublin Core says; last-modified and date), its first time element, or
// `fileTime`. 0 for none.
int64_t PageDate(const PageContent& page, int64_t fileTime, const std::vector<DateSource>& sources);

}  // namespace vela::indexer
