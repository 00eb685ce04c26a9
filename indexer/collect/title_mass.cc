#include "indexer/collect/title_mass.h"

#include <algorithm>
#include <set>
#include <string>

#include "format/word_weight.h"

namespace vela::indexer {

namespace {

void AddTo(uint32_t& sum, uint32_t mass) { sum = std::min(sum + mass, kTitleMassLimit); }

}  // namespace

TitleMasses::TitleMasses(size_t pageCount, std::string_view stopWords, const Vocabulary& vocabulary,
                         WordForms& forms)
    : titles_(pageCount), isStopWord_(vocabulary.words.size()) {
  std::set<std::string, std::less<>> bases;
  while (!stopWords.empty()) {
    const std::string_view word = stopWords.substr(0, stopWords.find(' '));
    bases.emplace(forms.FoundBase(word));
    stopWords.remove_prefix(std::min(word.size() + 1, stopWords.size()));
  }
  for (size_t i = 0; i < vocabulary.words.size(); ++i) {
    isStopWord_[i] = bases.contains(TextOf(vocabulary.words[i], vocabulary));
  }
}

void TitleMasses::Add(const Posting& posting, uint32_t mass) {
  Title& title = titles_[posting.page];
  const bool isWord = (posting.zones & kTitleWord) != 0;
  if (isStopWord_[posting.word]) {
    if (isWord) AddTo(title.ofStopWords, mass);
    return;
  }
  if (isWord) AddTo(title.ofWords, mass);
  if ((posting.zones & kTitlePart) != 0) AddTo(title.ofParts, mass);
}

uint32_t TitleMasses::Of(uint32_t page) const {
  const Title& title = titles_[page];
  const uint32_t mass = std::min(title.ofWords, title.ofParts);
  return mass != 0 ? mass : title.ofStopWords;
}

}  // namespace vela::indexer
