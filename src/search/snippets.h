// snippets.h: short pieces of a page's text around the words that matched.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/dictionary.h"
#include "index/page_text.h"
#include "search/highlight_terms.h"
#include "search/passages.h"
#include "search/ranking.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/word_compare.h"

namespace vela {

// How a word of a piece is marked.
enum class SlotMark : uint8_t { kNone, kWhole, kOpen, kClose };

struct SnippetSlot {
  int32_t word = 0;     // in the dictionary
  uint8_t variant = 0;  // its spelling
  SlotMark mark = SlotMark::kNone;
};

// One piece of text: words and punctuation in order. Reused from piece to piece.
struct SnippetPiece {
  OwnedArray<SnippetSlot> slots;
  int32_t count = 0;
  int32_t damagedTokens = 0;  // tokens of another indexing session, left out
};

// What the snippets are taken from.
struct SnippetSource {
  const Settings& settings;
  const Dictionary& dictionary;
  const HighlightTerms& terms;
  bool marksWords = false;            // as the request settled it
  const PassagePlan* plan = nullptr;  // the pieces to take; null: those around the first matches
  PageTextReader& text;
};

// Where the walk over the pieces of one result stands.
struct SnippetWalk {
  int32_t pieces = 0;  // how many there may be
  int32_t wordsPerPiece = 0;
  int64_t backOff = 0;  // bytes of text shown ahead of a match
  int32_t next = 0;
  uint64_t firstStart = 0;  // of the first piece
  uint64_t lastStart = 0;   // of the piece before
  uint64_t lastEnd = 0;
  bool stopped = false;  // the page, or the data, ended
};

SnippetWalk StartSnippets(const Settings& settings, const ResultEntry& entry);

enum class SnippetStatus { kPiece, kDone, kNoMemory };

// Reads the next piece, up to a page boundary; a boundary ahead of the match empties what was read.
// Where words are to be marked, those that match are.
[[nodiscard]] SnippetStatus NextPiece(SnippetWalk& walk, const SnippetSource& source,
                                      const ResultEntry& entry, SnippetPiece& piece);

}  // namespace vela
