// word_cut.h: where the words of a text begin and end.
//
// A text is cut at its blanks into chunks (one of unusual length into several), and a chunk by the
// code that cuts queries, so that what a visitor types meets what the index holds. On top of that,
// signs that a query keeps but that belong to no word (quotes, ";", "=", dashes ...) are taken off
// the ends of words and cut words apart; and a word can be found by more than its own form:
//   parts    of a joined word ("node.js" by "node" and "js");
//   wholes   of words that signs inside cut apart, as the query would have them ("a<b");
//   plain    forms without accents ("cafe" for "café"; see plain_forms.h) and without the particle
//   of
//            a Korean word (see korean_forms.h);
//   compatible forms of characters that stand for others ("m2" for "m²"; see compatible_text.h).
//
// Where a script has no blanks between words, its pieces (text/run_cut.h) are words of their own if
// the query is cut there, too (CutRuns). If not, words are told apart by word_breaks.h, and such
// words are found one by one, two that follow each other as one, and all that stands between blanks
// and signs.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/words/symbols.h"
#include "indexer/words/word_breaks.h"

namespace vela::indexer {

// The characters that join two words into one, as the setting WordJoinChars has them. Signs inside
// numbers, names and compounds; "#" and "++" at a word's end stay without being listed. An
// apostrophe is left out on purpose: "library's" is found by "library", "l'heure" by "heure".
constexpr std::string_view kWordJoinChars = ".-_";

// Longer words are no words: they are neither stored nor found, only their parts are.
constexpr size_t kWordBytesLimit = 120;

// A longer run without blanks (data, a minified script) is several chunks: what the cutting of one
// takes is many times its length.
constexpr size_t kChunkBytesLimit = 8192;

// What becomes of scripts without blanks between words.
enum class RunCut : uint8_t { kWords, kPieces };

struct TextToken {
  char32_t sign = 0;         // 0 for a word; of a picture of several characters the first
  std::string_view base;     // of a word: lower-cased, as the dictionary has it
  std::string_view surface;  // as the page writes it; kWordBreakSign where it writes nothing
  // Of a word: a piece of a script without blanks. Between two of them nothing is written, unless
  // kBlankSign stands there. A character that stands for several is written with the first of them,
  // kWordBreakSign with the others.
  bool isPiece = false;
};

// A further form that finds the word `token`.
struct FoundForm {
  uint32_t token = 0;  // its place in `tokens`
  std::string text;
};

// One character of a chunk, or the several of one picture (see GoesWithSign).
struct ChunkCharacter {
  uint32_t at = 0;
  uint32_t length = 0;
  char32_t character = 0;
  CharacterKind kind = CharacterKind::kWord;
};

// The tokens of one chunk. All views hold until the next cut.
struct ChunkTokens {
  std::vector<TextToken> tokens;
  std::vector<FoundForm> forms;
  std::string surface, lower, scratch;
  std::vector<ChunkCharacter> characters;
  std::deque<std::string> pieces;  // bases that stand nowhere in `lower`
  WordBreaks breaks;
  RunCut runs = RunCut::kWords;
  bool isAscii = false;  // all of the chunk
};

// Takes the next chunk off the start of clean text (see CleanText): a run without blanks, or up to
// kChunkBytesLimit bytes of a longer one. That is cut behind a sign where there is one near, and
// never so that a part of a word which is too long would be a word; what is left of it stands at
// the start of `text`, without a blank before it. Empty when there is none.
std::string_view NextChunk(std::string_view& text);

// Cuts one chunk, in time and memory in proportion to its length.
void CutChunk(std::string_view chunk, ChunkTokens& out, RunCut runs = RunCut::kWords);

}  // namespace vela::indexer
