// page_data.h: `vela_pagedata.vdat`, the texts of every page.
//
// A text file, a line a page at the position that its record names (page_info.h), and one for
// what is recommended and is no page (recommended.h):
//
//   address|title|description|picture|
//
// Each of the four may be empty and holds no "|". They are put on the page as stored: safe for
// HTML.
#pragma once

#include <cstddef>

namespace vela {

inline constexpr char kPageDataFileName[] = "vela_pagedata.vdat";

inline constexpr char kPageDataFieldEnd = '|';
inline constexpr size_t kPageDataFields = 4;

inline constexpr size_t kPageDataLineLimit = 7260;  // bytes of a line, its line feed included
inline constexpr size_t kAddressLimit = 2083;       // bytes kept of an address or a picture's

}  // namespace vela
