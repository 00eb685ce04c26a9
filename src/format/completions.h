// completions.h: `vela_completions.vdat`, by which what is typed is found at the beginning of any
// word of a suggestion (CompleteAnyWord).
//
// It says nothing that the autocomplete file does not say, and belongs to the one of that size and
// sample. Little-endian: a CompletionsHeader, `lines` times a CompletionLine in the order of the
// autocomplete file, `beginnings` times a CompletionBeginning, and `textBytes` bytes of text: for
// each line what it offers, folded (text/completion_fold.h), and, behind a line feed, the same
// without accents where that differs; a line feed ends each.
//
// A beginning is a place of the text where a word begins. They are in the order of the bytes from
// there to the line feed, equal ones in the order of the lines.
#pragma once

#include <cstddef>
#include <cstdint>

#include "format/lookup.h"

namespace vela {

inline constexpr char kCompletionsFileName[] = "vela_completions.vdat";

inline constexpr uint64_t kCompletionsMagic = 0x0031'6574'656C'7043U;  // "Cplete1" and a zero byte

struct CompletionsHeader {
  uint64_t magic = kCompletionsMagic;
  LookupFileFacts autocomplete;
  uint64_t lines = 0;
  uint64_t beginnings = 0;
  uint64_t textBytes = 0;
};
static_assert(sizeof(CompletionsHeader) == 48);

struct CompletionLine {
  uint32_t start = 0;       // of the line in the autocomplete file
  uint32_t text = 0;        // of its text among the texts ...
  uint32_t textLength = 0;  // ... with the form without accents
};
static_assert(sizeof(CompletionLine) == 12);

struct CompletionBeginning {
  uint32_t at = 0;    // among the texts
  uint32_t line = 0;  // number of the line; kCompletionOfLine is added where the text itself begins
};
static_assert(sizeof(CompletionBeginning) == 8);
inline constexpr uint32_t kCompletionOfLine = uint32_t{1} << 31;

}  // namespace vela
