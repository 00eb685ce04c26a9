#include "indexer/write/corrections_writer.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <string_view>

#include "format/corrections.h"
#include "indexer/write/out_file.h"
#include "text/ascii.h"
#include "text/lower.h"
#include "text/slips.h"

namespace vela::indexer {

namespace {

// From here on scripts write words in so few characters that another one is another word.
constexpr char32_t kIdeographs = 0x3000;

struct MeantWord {
  std::string text;
  uint32_t pages = 0;
  uint32_t letterSet = 0;
};
using LetterGroups = std::vector<std::vector<MeantWord>>;  // by the number of letters

// A digit or a sign says that the word is a name or a number, which nobody means by another word.
bool IsOfLetters(std::string_view text, const WordLetters& letters) {
  return std::ranges::all_of(
             text, [](char c) { return IsLower(c) || static_cast<unsigned char>(c) >= 0x80; }) &&
         std::all_of(letters.letters.begin(), letters.letters.begin() + letters.count,
                     [](char32_t letter) { return letter < kIdeographs; });
}

// What pages write for the word, in lower case, each once.
std::set<std::string> FormsOf(const Vocabulary& vocabulary, const Word& word, bool utf8) {
  std::set<std::string> forms;
  if (word.isOwnForm) forms.emplace(TextOf(word, vocabulary));
  for (uint32_t v = word.firstVariant; v != kNone32; v = vocabulary.variants[v].next) {
    std::string form(TextOf(vocabulary.variants[v], vocabulary));
    LowerText(form.data(), form.size(), utf8);
    forms.insert(std::move(form));
  }
  return forms;
}

LetterGroups GroupsOf(const Vocabulary& vocabulary, const std::vector<uint32_t>& order, bool utf8) {
  LetterGroups groups(kWordLettersLimit + 1);
  size_t taken = 0;
  WordLetters letters;
  for (const uint32_t number : order) {
    const Word& word = vocabulary.words[number];
    if (!(word.isWritten || word.isOwnForm) || word.pageCount == 0) continue;
    for (const std::string& form : FormsOf(vocabulary, word, utf8)) {
      if (!ReadLetters(form, utf8, letters) || letters.count < kCorrectionLettersLeast ||
          !IsOfLetters(form, letters)) {
        continue;
      }
      if (taken++ == kCorrectionWordLimit) return groups;
      groups[letters.count].push_back({form, word.pageCount, LetterSetOf(letters)});
    }
  }
  return groups;
}

template <typename Visit>
void ForEachWord(const LetterGroups& groups, Visit visit) {
  for (const std::vector<MeantWord>& group : groups) {
    for (const MeantWord& word : group) visit(word);
  }
}

}  // namespace

uint64_t WriteCorrections(const std::filesystem::path& path, const Vocabulary& vocabulary,
                          const std::vector<uint32_t>& order, bool utf8) {
  const LetterGroups groups = GroupsOf(vocabulary, order, utf8);
  CorrectionHeader header;
  for (size_t i = 0; i < groups.size(); ++i) {
    header.groups[i + 1] = header.groups[i] + static_cast<uint32_t>(groups[i].size());
  }
  header.words = header.groups.back();
  ForEachWord(groups, [&](const MeantWord& word) {
    header.textBytes += static_cast<uint32_t>(word.text.size());
  });
  OutFile file(path);
  char bytes[sizeof header];
  memcpy(bytes, &header, sizeof header);
  file.Write({bytes, sizeof bytes});
  ForEachWord(groups, [&](const MeantWord& word) {
    file.WriteNumber(word.letterSet, kCorrectionLetterSetWidth);
  });
  ForEachWord(groups,
              [&](const MeantWord& word) { file.WriteNumber(word.pages, kCorrectionPagesWidth); });
  uint32_t start = 0;
  ForEachWord(groups, [&](const MeantWord& word) {
    file.WriteNumber(start, kCorrectionStartWidth);
    start += static_cast<uint32_t>(word.text.size());
  });
  file.WriteNumber(start, kCorrectionStartWidth);
  ForEachWord(groups, [&](const MeantWord& word) { file.Write(word.text); });
  return file.Finish();
}

}  // namespace vela::indexer
