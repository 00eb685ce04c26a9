// corrections_fuzz.cc: the reader of the words that others may be meant as, and the distance of
// words. Input: a line with the word typed, then the file.
#include <algorithm>

#include "index/corrections.h"
#include "program/fuzz/check.h"
#include "text/slips.h"

namespace vela::fuzz {
namespace {

// What is offered is made of letters, in whole characters.
void CheckText(std::string_view text, bool utf8, const WordLetters& letters) {
  for (const char c : text) {
    VELA_CHECK((c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0x80);
  }
  VELA_CHECK(letters.count <= text.size());
  VELA_CHECK(utf8 || letters.count == text.size());
}

void CheckWords(const CorrectionFile& file, const WordLetters& typed, bool utf8) {
  const SlipCounter counter(typed);
  size_t visited = 0;
  file.ForEachNear(0, kWordLettersLimit, LetterSetOf(typed), 32, [&](uint32_t word) {
    VELA_CHECK(++visited <= kCorrectionWordLimit);
    WordLetters letters;
    const std::string_view text = file.TextOf(word, utf8, letters);
    file.PagesOf(word);
    if (text.empty()) return;
    CheckText(text, utf8, letters);
    const uint32_t slips = counter.CountTo(letters);
    VELA_CHECK(slips == SlipCounter(letters).CountTo(typed));
    VELA_CHECK(slips <= std::max(typed.count, letters.count));
    VELA_CHECK((slips == 0) == (SlipCost(typed, letters) == 0));
    const uint32_t differing = LetterSetOf(typed) ^ LetterSetOf(letters);
    VELA_CHECK(static_cast<uint32_t>(__builtin_popcount(differing)) <= 2 * slips);
  });
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view bytes = Text(data, size);
  const std::string_view word = TakeLine(bytes);
  CorrectionFile file;
  file.Open(bytes);
  for (const bool utf8 : {true, false}) {
    WordLetters typed;
    if (!ReadLetters(word, utf8, typed)) continue;
    CheckWords(file, typed, utf8);
  }
  return 0;
}
