#include "indexer/write/word_map_writer.h"

#include <algorithm>

#include "format/word_map.h"
#include "format/word_weight.h"
#include "indexer/collect/score.h"
#include "indexer/collect/word_weight.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

WordMapResult WriteWordMap(const std::filesystem::path& path, PostingRuns& postings,
                           const Vocabulary& vocabulary, const ChunkedList<PageLengths>& pages,
                           size_t tokenBytes, WeightInput* weights) {
  WordMapResult result;
  result.offsets.assign(vocabulary.words.size(), 0);
  ScoreContext context;
  context.pages = static_cast<uint32_t>(pages.size());
  double words = 0;
  for (size_t page = 0; page < pages.size(); ++page) words += pages[page].bodyWords;
  context.averageWords = pages.empty() ? 0 : words / static_cast<double>(pages.size());
  WeightContext weight = {.averageWords = context.averageWords};
  uint32_t titleMass = 0;
  LinkCountReader links(weights != nullptr ? std::span<const LinkCount>(weights->links)
                                           : std::span<const LinkCount>());
  OutFile file(path);
  uint32_t current = kNone32;
  postings.ForEachSorted([&](const Posting& posting) {
    if (posting.word != current) {
      current = posting.word;
      const Word& word = vocabulary.words[current];
      context.pagesWithWord = word.pageCount;
      context.inSomeTitle = word.inTitle;
      context.mostOnPage = word.mostOnPage;
      titleMass = WordMass(word.pageCount, context.pages);
      weight.mass = WordMass(word.pageCount - word.addressOnlyPages, context.pages);
      weight.mostLinking = links.BeginWord(current);
      result.offsets[current] = file.size();
      file.WriteNumber(context.pagesWithWord, kWordListCountWidth);
    }
    const PageLengths& page = pages[posting.page];
    context.pageWords = page.bodyWords;
    context.titleWords = page.titleWords;
    weight.pageWords = page.bodyWords;
    weight.linkShare = page.linkShare;
    weight.linking = links.PagesTo(posting.page);
    if (weights != nullptr) weights->titles.Add(posting, titleMass);
    file.WriteNumber(weights != nullptr ? WordWeight(posting, weight) : WordScore(posting, context),
                     kWordMapScoreWidth);
    file.WriteNumber(posting.blocks, kWordMapProximityWidth);
    file.WriteNumber(posting.page, kWordMapPageWidth);
    file.WriteNumber((page.firstToken + posting.token) * tokenBytes, kWordMapPositionWidth);
  });
  result.fileBytes = file.Finish();
  return result;
}

}  // namespace vela::indexer
