#include "indexer/write/spelling_writer.h"

#include <algorithm>
#include <map>
#include <string>

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
  // std::string compares bytes as unsigned, as the search does.
  std::map<std::string, std::vector<uint64_t>> keys;
  for (size_t place = 0; place < order.size(); ++place) {
    const Word& word = vocabulary.words[order[place]];
    if (!word.isWritten || word.pageCount == 0 || !IsPlainWord(TextOf(word))) continue;
    const SoundKey key = MakeSoundKey(TextOf(word));
    if (IsEmpty(key)) continue;
    std::vector<uint64_t>& numbers = keys[std::string(View(key))];
    if (numbers.size() < kSpellingWordLimit) numbers.push_back(firstWord + place);
  }
  OutFile file(path);
  for (const auto& [key, numbers] : keys) {
    file.Write(key);
    for (const uint64_t number : numbers) file.Write(" " + std::to_string(number));
    file.Write("\n");
  }
  SpellingSizes sizes;
  sizes.entries = keys.size();
  sizes.fileBytes = file.Finish();
  return sizes;
}

}  // namespace vela::indexer
