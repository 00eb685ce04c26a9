// clean_text.h: text as words are cut from it: valid UTF-8, composed, with one kind of blank.
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

bool IsValidUtf8(std::string_view text);

// `bytes` with U+FFFD in the place of what is not valid.
std::string RepairedUtf8(std::string_view bytes);

// Prepares UTF-8 text for cutting: composed characters (NFC); every kind of blank, line end and
// control character becomes " ", soft hyphens and zero-width breaks vanish, the hyphens U+2010 and
// U+2011 become "-"; of more than 30 marks over one letter the first 30 stay. Text that is not
// valid UTF-8 is repaired with U+FFFD.
void CleanText(std::string& text);

// Takes blanks off the ends and makes one of each run of them.
std::string CollapseBlanks(const std::string& text);

}  // namespace vela::indexer
