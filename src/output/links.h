// links.h: the addresses that lead from the results page to other searches.
#pragma once

#include <cstdint>
#include <string_view>

#include "search/filters.h"
#include "search/query.h"
#include "search/search_request.h"
#include "settings/settings.h"
#include "text/fixed_text.h"

namespace vela {

// An address, or a part of one; what passes 2083 bytes is cut, wherever that falls.
using LinkText = FixedText<2084>;

// What every link of the page carries besides its own parameters.
struct LinkParameters {
  FixedText<6256> query;  // the normalised query, URL-encoded; longer than any link
  LinkText categories;    // "&amp;vela_cat%5B%5D=..." for each selected category
  LinkText dates;         // "&amp;vela_datefrom=...&amp;vela_dateto=..." while a range is valid
  // "&amp;name=..." for each constraint on a meta field, and what asks for a search that is not
  // corrected where this one was not to be
  LinkText metaFields;
};

LinkParameters MakeLinkParameters(const Settings& settings, const SearchRequest& request,
                                  std::string_view query, const DateRange& dates);

// Joins the link-back address and a link query.
LinkText MakeLink(const Settings& settings, const LinkText& linkQuery);

// Formats a link query and joins it to the link-back address.
[[gnu::format(printf, 2, 3)]] LinkText MakeLinkf(const Settings& settings, const char* format, ...);

}  // namespace vela
