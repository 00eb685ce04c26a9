// run_phrase.h: what a run of a script without blanks weighs where it stands, for Ranking.
//
// The pieces of a run are on most pages and say little; the run is a word like others. So it weighs
// as a word that is on as many pages as the run, as often as the run is there, and what its pieces
// weigh counts in titles alone, whose mass is made of them.
#pragma once

#include <cstdint>

#include "index/word_map.h"
#include "search/phrase.h"
#include "text/owned_array.h"

namespace vela {

struct RunMatch {
  WordMapRecord record;  // as TestCandidate gives it
  uint32_t occurrences = 0;
};

// The pages on which a run was found.
struct RunMatches {
  OwnedArray<RunMatch> pages;  // room for all candidates
  size_t count = 0;
  void Add(const WordMapRecord& record, uint32_t occurrences) {
    pages[count++] = {record, occurrences};
  }
};

// WordMass of the different words of a phrase, the pieces of a run among them, on an index of so
// many pages.
uint32_t MassOfWords(const Phrase& phrase, int32_t pageCount);

// The score byte of a run of that mass on a page that has it so often.
uint8_t RunWeight(uint32_t mass, uint32_t occurrences, bool inTitle);

// The mass of a run that is on so many pages of the index.
uint32_t RunMass(size_t found, int32_t pageCount);

// Calls `add(record)` for each page, with the weight of the run as its score, until it gives false;
// false then.
template <typename Add>
bool AddRunMatches(const RunMatches& run, int32_t pageCount, const Add& add) {
  const uint32_t mass = RunMass(run.count, pageCount);
  for (size_t i = 0; i < run.count; ++i) {
    WordMapRecord record = run.pages[i].record;
    record.score = RunWeight(mass, run.pages[i].occurrences, (record.score & 1) != 0);
    if (!add(record)) return false;
  }
  return true;
}

}  // namespace vela
