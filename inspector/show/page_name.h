// page_name.h: the page that somebody means on the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "inspector/opened/opened_index.h"

namespace vela::inspector {

// The page of that number or address; of an address its end is enough where it is that of one page
// alone.
std::optional<uint32_t> FindPage(const OpenedIndex& index, std::string_view name);

// "page 12, https://x.example/a.html".
std::string PageName(const OpenedIndex& index, uint32_t page);

// Why FindPage has found none.
std::string NoPageText(const OpenedIndex& index, std::string_view name);

}  // namespace vela::inspector
