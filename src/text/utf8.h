// utf8.h: characters of UTF-8 text, which may be broken anywhere.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// Stands in the place of bytes that belong to no character.
constexpr char32_t kReplacementCharacter = 0xFFFD;

// The character at `text[at]`, and its length in bytes through `length`. A byte that belongs to no
// character counts as one of its own, with the value kReplacementCharacter; so do overlong forms
// and surrogates.
char32_t DecodeCharacter(std::string_view text, size_t at, size_t& length);

}  // namespace vela
