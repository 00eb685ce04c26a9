// typed_text.h: what was typed, without what no answer can show.
#pragma once

#include "search/query.h"

namespace vela {

// Replaces control characters, U+FFFE and U+FFFF, which XML does not allow, and in UTF-8 whatever
// is no character, by U+FFFD; tabs and line ends become blanks. In a single-byte set all of them
// become blanks. What grows too long is cut behind a character.
void ReplaceUnshowable(QueryText& text, bool utf8);

// Takes a character off the end of UTF-8 text that was cut inside it.
void DropCutCharacter(DisplayQuery& text);

}  // namespace vela
