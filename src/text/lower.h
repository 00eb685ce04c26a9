// lower.h: lower-casing in the two text modes. The mapping is compiled into the program.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// Adds 0x20 to every byte from "A" to "Z"; accented letters of single-byte sets stay as they are.
void LowerSingleByte(char* text, size_t length);

// Bytes of a UTF-8 sequence by its first byte: 1 to 4; 1 for continuation bytes and 0xF8 and above.
size_t Utf8Length(unsigned char lead);

// The lower-case form of one UTF-8 character.
struct LoweredCharacter {
  char bytes[4] = {};
  size_t length = 0;  // bytes of the form; 0 only for an empty text
};

// Lower-cases the character at the start of `text`. A character without a lower-case form, a
// malformed or a cut one gives itself (of a cut one, what is there). The form has the length of the
// character, but for U+0130, which gives one byte.
LoweredCharacter LowerCharacter(std::string_view text);

// Lower-cases UTF-8 text in place, character by character; the length stays. U+03C0 and U+0440 are
// left alone. Kept: U+0130 becomes "i" followed by the second byte of the character, since the walk
// goes on behind the bytes that were written (unit lower_test).
void LowerUtf8(char* text, size_t length);

// LowerUtf8 or LowerSingleByte, by the character set of the index.
void LowerText(char* text, size_t length, bool utf8);

}  // namespace vela
