// seek.h: positions in the binary index files.
#pragma once

#include <cstdint>

#include "output/response.h"

namespace vela {

// Whether a file can be positioned at `offset`: file positions are signed 64-bit numbers. A
// position beyond the end of a file can be taken; reading there finds nothing.
constexpr bool CanSeekTo(uint64_t offset) { return offset <= INT64_MAX; }

// Writes the message of a failed seek. Kept: in XML mode the error element is not closed
// (golden index/seek_error_in_xml_is_not_closed).
void WriteSeekError(Response& response, uint64_t offset);

// 0 when the position can be taken; otherwise writes the message and gives nonzero.
[[nodiscard]] int SeekIndexFile(Response& response, uint64_t offset);

}  // namespace vela
