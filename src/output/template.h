// template.h: the site's own page, with the sections poured in where it carries markers.
//
// Besides the section markers (sections.h) a template may hold
//   <!--VELASEARCH-->            the whole default page in its fixed order
//   <!--VELA_SHOW_SEARCHFORM-->  the form
//   <!--VELA_SHOW_RESULTS-->     the result blocks
//   <!--VELA_SHOW_QUERY-->       the query, escaped
// A marker may stand any number of times; one that is unknown stays, with the rest of its line.
#pragma once

#include <string_view>

#include "output/response.h"
#include "output/sections.h"
#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

// What the page is made from.
struct PageParts {
  const Settings& settings;
  const IndexDirectory& directory;
  const OutputSections& sections;
  std::string_view displayQuery;  // escaped
  std::string_view scriptUrl;     // as the web server names the program
};

// Writes the rest of the response: the filled template, or in XML mode the closing tags.
void FillTemplate(Response& response, const PageParts& parts);

}  // namespace vela
