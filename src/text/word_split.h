// word_split.h: which characters end a word. The query and the indexed pages are cut by this one
// piece of code, so that what a visitor types is what the index holds.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// Replaces in place every character that separates words by a blank, except where it is listed in
// `joinChars`, takes joining characters off the ends of words, and drops one at the end of the
// text. Kept as parts of words wherever they stand: a leading "-" (exclusion), trailing "#" and
// "++", and the prefixes "site:" and "url:". Double quotes, asterisks and question marks are left
// alone. Returns the new length, never more than `length`. Linear in `length`; no NUL is written.
size_t SeparateWords(char* text, size_t length, std::string_view joinChars);

}  // namespace vela
