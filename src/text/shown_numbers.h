// shown_numbers.h: numbers as a person reads them, for terminals and reports.
#pragma once

#include <cstdint>
#include <string>

namespace vela {

// "12,345".
std::string CountText(uint64_t count);

// "1.2 MB" and the like, in powers of a thousand; below one kB "1 byte", "12 bytes".
std::string BytesText(uint64_t bytes);

}  // namespace vela
