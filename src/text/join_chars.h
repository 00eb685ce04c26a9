// join_chars.h: the round trip of join characters through numeric character references, around
// highlighting.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// Writes `text` to `out` with every numeric reference to a character of `joinChars` replaced by
// that character. `out` must hold text.size() + 1 bytes. A reference is "&#", decimal or "x" and
// hexadecimal digits, and a ";" fewer than 8 bytes behind the "&"; without a ";" it is plain text.
// The reference 0 (also a malformed one) counts as listed: the text ends there. Returns the length
// written; a terminator follows it.
size_t DecodeJoinChars(std::string_view text, char* out, std::string_view joinChars);

// Writes `text` to `out` with every character of `joinChars` written as a decimal reference, unless
// it belongs to a reference already. Bytes from 0x80 up give negative numbers. `out` must hold
// 8 * text.size() + 1 bytes. Returns the length written; a terminator follows it.
size_t EncodeJoinChars(std::string_view text, char* out, std::string_view joinChars);

}  // namespace vela
