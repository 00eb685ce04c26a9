// completion_fold.h: how what is typed and what is offered compare while a visitor types
// (CompleteAnyWord). Both sides are UTF-8 and go through this one piece of code.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// Lower-cases the text in place and makes one blank of all signs and blanks between two words; the
// joints ".", "-" and "_" stay, the ends have no blank. Returns the new length, never more than
// `length`.
size_t FoldForCompletion(char* text, size_t length);

// Whether a word, or a part of a joined word, begins at `at` of a folded text: behind a blank or a
// joint, and at every character of a script that is written without blanks.
bool BeginsWord(std::string_view folded, size_t at);

// Whether `word` stands in the folded text where a word begins.
bool HoldsBeginning(std::string_view folded, std::string_view word);

}  // namespace vela
