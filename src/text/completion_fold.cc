#include "text/completion_fold.h"

#include <cstring>

#include "text/lower.h"
#include "text/run_cut.h"
#include "text/signs.h"
#include "text/utf8.h"

namespace vela {

namespace {

constexpr std::string_view kJoints = ".-_";

bool IsJoint(char c) { return kJoints.find(c) != std::string_view::npos; }

bool IsTrail(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

size_t FoldForCompletion(char* text, size_t length) {
  LowerUtf8(text, length);
  const std::string_view view(text, length);
  size_t out = 0;
  bool blank = false;
  size_t size = 0;
  for (size_t at = 0; at < length; at += size) {
    const char32_t c = DecodeCharacter(view, at, size);
    const bool isKept = size == 1 && IsJoint(text[at]);
    // ASCII control characters are no signs of the table, and no parts of words either.
    if (c <= ' ' || (!isKept && KindOf(c) != CharacterKind::kWord)) {
      blank = true;
      continue;
    }
    if (blank && out > 0) text[out++] = ' ';
    blank = false;
    memmove(text + out, text + at, size);
    out += size;
  }
  return out;
}

bool BeginsWord(std::string_view folded, size_t at) {
  if (at >= folded.size() || folded[at] == ' ' || IsJoint(folded[at])) return false;
  if (at == 0 || folded[at - 1] == ' ' || IsJoint(folded[at - 1])) return true;
  return !IsTrail(folded[at]) && RunPieceLength(folded.substr(at)) > 0;
}

bool HoldsBeginning(std::string_view folded, std::string_view word) {
  for (size_t at = folded.find(word); at != folded.npos; at = folded.find(word, at + 1)) {
    if (BeginsWord(folded, at)) return true;
  }
  return false;
}

}  // namespace vela
