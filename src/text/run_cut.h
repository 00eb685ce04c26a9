// run_cut.h: pieces of scripts that are written without blanks between words: Chinese, Japanese,
// Thai, Lao, Khmer and Burmese. The query and the indexed pages are cut by this one piece of code.
//
// A piece is one character with the marks that belong to it. It begins at every character that is
// no mark, whatever stands around it, so that the pieces of a word are the same in every text.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// Bytes of the piece at the start of UTF-8 text; 0 when the text begins with anything else. More
// marks than any language writes begin a piece of their own.
size_t RunPieceLength(std::string_view text);

// Whether `text` holds a piece anywhere.
bool HasRunPiece(std::string_view text);

// Writes one piece as it is compared: half-width kana as full-width ones, a kana and its voicing
// mark as one character, and no variation selectors. Returns the new length, never more than
// `length`.
size_t FoldRunPiece(char* piece, size_t length);

}  // namespace vela
