// page_text.h: the reader of the text of every page as word numbers (format/page_text.h).
#pragma once

#include <cstdint>
#include <string_view>

#include "format/page_text.h"
#include "settings/file_pieces.h"

namespace vela {

// Whether the file holds the text that an indexer puts in its place when the index was built
// without page text. Kept: at most six bytes are looked at, of which the seventh is then missing,
// so that the answer is never yes (golden index/pagetext_placeholder_is_not_seen).
bool IsPageTextPlaceholder(std::string_view file);

struct PageTextToken {
  uint32_t word = kPageEndWord;  // as at the end of the data
  uint8_t variant = 0;           // of the word's spellings
};

// Reads tokens forward from a position. `atEnd` is the end-of-file flag of a stream that is read
// 128 bytes at a time: raised by a read that comes up short, cleared by positioning.
struct PageTextReader {
  std::string_view file;
  int32_t tokenSize = 0;   // DictIDLen; below 1 nothing is ever read
  uint64_t position = 0;   // of the next token
  uint64_t bufferEnd = 0;  // how far the stream has been read
  bool atEnd = false;
  FileStretches* stretches = nullptr;  // of the same file, where they can be had; not owned
};

// Positions the reader. Any position can be taken; beyond the end of the file there is no token.
void SeekPageText(PageTextReader& reader, uint64_t position);

// Passes over tokens up to the next one of `word` or kPageEndWord, or to the end of the data.
void SkipToWord(PageTextReader& reader, uint32_t word);

// Passes over tokens up to the next one of `first` behind which `second` or a sign stands, a word
// from kFirstSignWord to `lastSign`, or up to kPageEndWord, or to the end of the data.
void SkipToPair(PageTextReader& reader, uint32_t first, uint32_t second, int32_t lastSign);

// Reads the next token; the bytes consumed, 0 at the end of the data. Bytes at the end that make no
// whole token are never returned.
int32_t ReadPageTextToken(PageTextReader& reader, PageTextToken& token);

}  // namespace vela
