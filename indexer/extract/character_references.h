// character_references.h: "&amp;", "&#8212;" and their like.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vela::indexer {

// What a character reference stands for.
struct CharacterReference {
  size_t length = 0;      // its bytes in the markup, "&" included; 0: it is none, "&" is text
  char text[8] = {};      // UTF-8, one or two characters
  size_t textLength = 0;  // bytes of `text`
};

// Reads the reference at the start of `markup`, which is its "&". `inAttribute`: in the value of an
// attribute a name without a semicolon before "=", a letter or a digit is none, as addresses hold
// such. Takes time in proportion to the reference.
CharacterReference ReadCharacterReference(std::string_view markup, bool inAttribute);

// Appends `markup` to `text`, references resolved.
void AppendResolved(std::string_view markup, bool inAttribute, std::string& text);

}  // namespace vela::indexer
