#include "indexer/write/word_map_writer.h"

#include "format/word_map.h"
#include "indexer/collect/score.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

WordMapResult WriteWordMap(const std::filesystem::path& path, PostingRuns& postings,
                           const Vocabulary& vocabulary, const std::vector<PageLengths>& pages,
                           size_t tokenBytes) {
  WordMapResult result;
  result.offsets.assign(vocabulary.words.size(), 0);
  ScoreContext context;
  context.pages = static_cast<uint32_t>(pages.size());
  double words = 0;
  for (const PageLengths& page : pages) words += page.bodyWords;
  context.averageWords = pages.empty() ? 0 : words / static_cast<double>(pages.size());
  OutFile file(path);
  uint32_t current = kNone32;
  postings.ForEachSorted([&](const Posting& posting) {
    if (posting.word != current) {
      current = posting.word;
      const Word& word = vocabulary.words[current];
      context.pagesWithWord = word.pageCount;
      context.inSomeTitle = word.inTitle;
      context.mostOnPage = word.mostOnPage;
      result.offsets[current] = file.size();
      file.WriteNumber(context.pagesWithWord, kWordListCountWidth);
    }
    const PageLengths& page = pages[posting.page];
    context.pageWords = page.bodyWords;
    context.titleWords = page.titleWords;
    file.WriteNumber(WordScore(posting, context), kWordMapScoreWidth);
    file.WriteNumber(posting.blocks, kWordMapProximityWidth);
    file.WriteNumber(posting.page, kWordMapPageWidth);
    file.WriteNumber((page.firstToken + posting.token) * tokenBytes, kWordMapPositionWidth);
  });
  result.fileBytes = file.Finish();
  return result;
}

}  // namespace vela::indexer
