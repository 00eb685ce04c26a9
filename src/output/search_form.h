// search_form.h: the search form, spread over the form sections of the page.
#pragma once

#include <string_view>

#include "output/sections.h"
#include "search/search_request.h"
#include "settings/settings.h"

namespace vela {

// Fills the form sections for the form that the settings choose (none, basic or advanced), with
// the request's choices filled in. `displayQuery` is escaped; `scriptUrl` is the address of the
// program as the web server names it.
void FillSearchForm(OutputSections& sections, const Settings& settings,
                    const SearchRequest& request, const char* displayQuery,
                    std::string_view scriptUrl);

}  // namespace vela
