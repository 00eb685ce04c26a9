// presentation_forms.h: characters that stand for an Arabic letter in the shape that it takes
// inside a word, as the text of some PDF files has them. Pages and queries are read by this one
// table.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// The letters (UTF-8, at most four bytes) that `c` stands for; empty when it is no such form.
std::string_view LettersOfForm(char32_t c);

// Whether UTF-8 text may hold such a form: false for nearly every text without one.
bool MayHoldForms(std::string_view text);

// Writes UTF-8 text with letters in the place of their forms to `out`, as many whole characters as
// have room in `capacity` bytes. Returns their bytes; the text must not lie in `out`.
size_t WriteWithoutForms(std::string_view text, char* out, size_t capacity);

}  // namespace vela
