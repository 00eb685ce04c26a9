// template_file.h: `search_template.html`, the site's own page around the results, and the markers
// at which results are poured in; output/sections.h has those of the single sections.
#pragma once

#include <string_view>

namespace vela {

inline constexpr char kTemplateFileName[] = "search_template.html";

inline constexpr std::string_view kTemplateMarkerPrefix = "<!--VELA";
inline constexpr std::string_view kWholePageMarker = "<!--VELASEARCH-->";
inline constexpr std::string_view kResultsMarker = "<!--VELA_SHOW_RESULTS-->";

}  // namespace vela
