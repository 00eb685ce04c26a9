// corrections_file.h: the file of corrections for tests, put together by hand.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "format/corrections.h"
#include "support/loaded_site.h"
#include "text/slips.h"

namespace vela::support {

struct MeantWord {
  std::string text;  // at most kWordLettersLimit letters
  uint32_t pages = 1;
};

// The bytes of a file of these words, which come in the order of their letters.
inline std::string CorrectionsFile(const std::vector<MeantWord>& words) {
  std::string header = "correct" + LittleEndian(0, 1);
  std::string sets, pages, starts, texts;
  std::vector<uint32_t> groups(kWordLettersLimit + 2);
  for (const MeantWord& word : words) {
    WordLetters letters;
    EXPECT_TRUE(ReadLetters(word.text, true, letters)) << word.text;
    for (size_t i = letters.count + 1; i < groups.size(); ++i) ++groups[i];
    sets += LittleEndian(LetterSetOf(letters), 4);
    pages += LittleEndian(word.pages, 4);
    starts += LittleEndian(texts.size(), 4);
    texts += word.text;
  }
  starts += LittleEndian(texts.size(), 4);
  header += LittleEndian(words.size(), 4) + LittleEndian(texts.size(), 4);
  for (const uint32_t group : groups) header += LittleEndian(group, 4);
  return header + sets + pages + starts + texts;
}

}  // namespace vela::support
