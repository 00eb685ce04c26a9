// highlight.h: marking the words of a query in a title or a description.
#pragma once

#include <cstddef>
#include <string_view>

#include "search/highlight_terms.h"
#include "text/owned_array.h"
#include "text/word_compare.h"

namespace vela {

// What highlighting needs to know of the settings.
struct HighlightRules {
  TextMode mode;
  std::string_view joinChars;
  bool cutsRuns = false;  // pieces of scripts without blanks are words
};

enum class TokenKind {
  kNone,    // nothing is left
  kWord,    // a word
  kSingle,  // one character, or one numeric character reference
};

// Walks over a text word by word. A blank or punctuation is a token of its own; a join character
// belongs to a word when a letter, a digit, another join character or the end follows.
// Kept: a word of 400 characters without a break ends the walk behind these (golden
// output/highlight_word_of_401_characters).
struct Tokenizer {
  std::string_view rest;
  bool cutsRuns = false;  // a piece of a script without blanks is a word of its own
};
TokenKind NextToken(Tokenizer& tokenizer, std::string_view joinChars, std::string_view& token);

// The text with every word that matches a term between `<span class="highlight">` and `</span>`,
// and every phrase as one run. `marked` owns the result; null-terminated, `length` bytes. False
// when memory is out.
[[nodiscard]] bool HighlightText(std::string_view text, const HighlightTerms& terms,
                                 const HighlightRules& rules, OwnedArray<char>& marked,
                                 size_t& length);

}  // namespace vela
