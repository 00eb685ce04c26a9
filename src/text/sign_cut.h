// sign_cut.h: cutting a query where pages are cut, before the words are separated (word_split.h).
#pragma once

#include <cstddef>

namespace vela {

// Blanks what joins no words: underscores that no letter or digit of ASCII follows and more than
// two of them in a row, full stops that neither those nor an underscore that is left follows, and
// the last two hyphens before a blank. Asterisks and question marks count as letters. Byte for
// byte.
void BlankLooseJoins(char* text, size_t length);

// Brings a query, in UTF-8 or a single-byte set, into the form of words on pages; returns the new
// length, never more than `length`. In a single-byte set only signs of ASCII are known.
//
// Signs beyond ASCII and those of ASCII that have no meaning in a query (; < = > ` ~) become
// blanks, as do all kinds of blanks, line ends and control characters; what cannot be seen
// vanishes; all hyphens are "-". Signs of ASCII that have a meaning stay. Pictures stay where they
// stand alone between blanks, as they are words of pages then. Typographic quotes and guillemets
// become straight quotes where they stand in pairs around words; single ones and those of one word
// that may be apostrophes do only around several words. Hyphens beside other signs ("[-1]",
// "(re-)use", "->") exclude nothing and are taken off, as are signs with a meaning that stand alone
// between blanks. The text stays as it is when memory is out.
size_t CutAtSigns(char* text, size_t length, bool utf8);

}  // namespace vela
