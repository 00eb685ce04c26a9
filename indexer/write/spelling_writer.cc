#include "indexer/write/spelling_writer.h"

#include <algorithm>
#include <compare>
#include <string>
#include <vector>

#include "format/spelling.h"
#include "indexer/write/out_file.h"
#include "text/ascii.h"
#include "text/sound_key.h"

namespace vela::indexer {

namespace {

constexpr size_t kShortestWord = 2;

// A digit or a sign says that the word is a name or a number, which nobody means by another word.
bool IsPlainWord(std::string_view text) {
  return text.size() >= kShortestWord && std::ranges::all_of(text, [](char c) {
           return IsAlpha(c) || static_cast<unsigned char>(c) >= 0x80;
         });
}

}  // namespace

SpellingSizes WriteSpelling(const std::filesystem::path& path, const Vocabulary& vocabulary,
                            const std::vector<uint32_t>& order, uint64_t firstWord) {
  struct WordOfKey {
    uint64_t key = 0;  // StartNumber: keys are shorter than that is
    uint32_t place = 0;
    auto operator<=>(const WordOfKey&) const = default;
  };
  static_assert(kSoundKeyLength <= sizeof(uint64_t));
  std::vector<WordOfKey> words;
  for (uint32_t place = 0; place < order.size(); ++place) {
    const Word& word = vocabulary.words[order[place]];
    if (!word.isWritten || word.pageCount == 0 || !IsPlainWord(TextOf(word, vocabulary))) continue;
    const SoundKey key = MakeSoundKey(TextOf(word, vocabulary));
    if (IsEmpty(key)) continue;
    words.push_back({.key = StartNumber(View(key)), .place = place});
  }
  std::ranges::sort(words);
  OutFile file(path);
  SpellingSizes sizes;
  size_t ofKey = 0;  // words so far
  for (size_t i = 0; i < words.size(); ++i) {
    const WordOfKey& word = words[i];
    const bool isFirst = i == 0 || words[i - 1].key != word.key;
    ofKey = isFirst ? 1 : ofKey + 1;
    if (isFirst) {
      if (i != 0) file.Write("\n");
      file.Write(View(MakeSoundKey(TextOf(vocabulary.words[order[word.place]], vocabulary))));
      ++sizes.entries;
    }
    if (ofKey <= kSpellingWordLimit) file.Write(" " + std::to_string(firstWord + word.place));
  }
  if (!words.empty()) file.Write("\n");
  sizes.fileBytes = file.Finish();
  return sizes;
}

}  // namespace vela::indexer
