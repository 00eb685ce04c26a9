// phrase.h: quoted phrases, whose words must stand one after another.
//
// Candidates come from the word-map lists of the words; each is confirmed in the page text.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/dictionary.h"
#include "index/page_text.h"
#include "index/text_pairs.h"
#include "index/word_map.h"
#include "search/lookup.h"
#include "settings/settings.h"
#include "text/owned_array.h"

namespace vela {

struct PhraseWord {
  int32_t number = -1;  // in the dictionary
  WordList list;
  bool isSorted = false;  // by page: searched in growing steps and by halving
  int32_t next = 0;       // where the search of a sorted list begins
};

struct Phrase {
  OwnedArray<PhraseWord> words;  // empty: the phrase matches nothing
  bool isRun = false;            // it holds pieces of a script without blanks (run_terms.h)
  // Candidates that the pairs were asked about, and those of them that they ruled out.
  uint32_t asked = 0;
  uint32_t ruledOut = 0;
};

// How far the verification of phrases may go, over all phrases of a query.
struct PhraseBudget {
  int32_t maxSeeks = 0;   // MaxContextSeeks
  int32_t seeksDone = 0;  // candidates verified so far
  double deadline = 0;    // seconds since 1970
  double (*now)() = nullptr;
};

// Looks every word of the phrase up and finds its list. kOk also when the phrase matches nothing.
// After any other status the phrase is empty.
[[nodiscard]] TermResult PreparePhrase(Phrase& phrase, std::string_view words,
                                       const Dictionary& dictionary, std::string_view wordMap);

// How often the phrase stands between the reader's position and the end of the page, or of the next
// 16 kB of its text.
uint32_t CountPhrase(const Phrase& phrase, const Settings& settings, PageTextReader& text);

enum class CandidateResult { kRejected, kFound, kStop };

// How many of the neighbours among its words must stand side by side on a page that is found in the
// place of the phrase.
inline uint32_t NeighboursNeeded(const Phrase& phrase) {
  return static_cast<uint32_t>(phrase.words.size() / 2);
}

// Tests one record of the first word; a page on which `pairs` knows two of the words not to stand
// beside each other is not read. kFound: `found` is the record to add, with the score of all
// words, of a run that of its least piece, and the position where the phrase begins; behind a
// run the reader stands. kStop: a limit was reached and the term ends.
CandidateResult TestCandidate(Phrase& phrase, const WordMapRecord& candidate,
                              const Settings& settings, const TextPairs& pairs,
                              PageTextReader& text, PhraseBudget& budget, WordMapRecord& found);

// Tests the page of a record of the first word for all words of the phrase, wherever they stand,
// and counts through `neighbours` which of each two neighbours stand side by side. kFound with
// NeighboursNeeded of them: `found` is as TestCandidate has it, but begins with the first of these.
CandidateResult TestNeighbours(Phrase& phrase, const WordMapRecord& candidate,
                               const Settings& settings, PageTextReader& text, PhraseBudget& budget,
                               WordMapRecord& found, uint32_t& neighbours);

}  // namespace vela
