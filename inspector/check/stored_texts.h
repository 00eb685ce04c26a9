// stored_texts.h: what the texts of an index have in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vela::inspector {

// Whether the text is whole in its character set and without control characters.
bool IsCleanText(std::string_view text, bool utf8);

// Whether the text would begin a tag, or end the attribute that it stands in.
bool HasMarkup(std::string_view text);

// Goes through the lines of a text file.
struct NumberedLines {
  std::string_view rest;
  size_t number = 0;     // of the line taken last, from 1
  bool isWhole = false;  // it ended in a line feed

  // The next line without its line feed; false at the end.
  bool Next(std::string_view& line);
};

// Takes what stands before the next blank off the line, and the blank.
std::string_view TakeWord(std::string_view& line);

// Whether the text is a decimal number, with "-" or without.
bool IsDecimal(std::string_view text);

// Whether a line of the file begins at the place.
bool IsLineStart(std::string_view file, uint64_t at);

}  // namespace vela::inspector
