#include "search/phrase.h"

#include <algorithm>
#include <bit>

#include "format/word_weight.h"
#include "search/highlight_terms.h"
#include "text/numbers.h"

namespace vela {

namespace {

// Past the limit of seeks by this much, distant words are rejected without reading the text.
constexpr int64_t kSeeksBeforeCheapReject = 50;

// Signs that may stand between the words of a phrase, all together, where PhraseSigns is not set.
constexpr int64_t kUsualReach = 3;
// No larger PhraseSigns counts, so that no reach is beyond 64 bits.
constexpr int64_t kMostPhraseSigns = 100;

bool IsSortedByPage(const WordList& list) {
  for (int32_t i = 1; i < list.size(); ++i) {
    if (RecordAt(list, i - 1).page > RecordAt(list, i).page) return false;
  }
  return true;
}

// The index of the first record of the page; -1 when the list has none.
int32_t FindPage(PhraseWord& word, uint32_t page) {
  const int32_t size = word.list.size();
  const auto pageAt = [&word](int32_t i) { return RecordAt(word.list, i).page; };
  if (!word.isSorted) {
    int32_t i = 0;
    while (i < size && pageAt(i) != page) ++i;
    return i < size ? i : -1;
  }
  // From the page asked for before, in steps that double: pages are asked for in their order.
  int32_t low = word.next;
  if (low > 0 && pageAt(low - 1) >= page) low = 0;
  int64_t high = low;
  for (int64_t step = 1; high < size && pageAt(static_cast<int32_t>(high)) < page; step *= 2) {
    low = static_cast<int32_t>(high) + 1;
    high += step;
  }
  high = std::min<int64_t>(high, size);
  while (low < high) {
    const auto middle = static_cast<int32_t>(low + (high - low) / 2);
    if (pageAt(middle) < page) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  word.next = low;
  return low < size && pageAt(low) == page ? low : -1;
}

// How many tokens behind the start of the phrase its word number `word` may stand.
int64_t ReachOf(int64_t word, const Settings& settings) {
  if (settings.PhraseSigns > 0) {
    return word * (std::min(int64_t{settings.PhraseSigns}, kMostPhraseSigns) + 1);
  }
  return word + kUsualReach;
}

// Whether each two words of the phrase may stand beside each other in the text of the page, in
// which reading begins at `from`.
bool MayHoldPairs(const Phrase& phrase, const WordMapRecord& candidate, uint64_t from,
                  const TextPairs& pairs) {
  for (size_t k = 1; k < phrase.words.size(); ++k) {
    if (!pairs.MayHold(candidate.page, candidate.position, from,
                       static_cast<uint32_t>(phrase.words[k - 1].number),
                       static_cast<uint32_t>(phrase.words[k].number))) {
      return false;
    }
  }
  return true;
}

// Passes over tokens that do not begin the phrase: nothing but its first word and the end of the
// page has a consequence there, and, unless the first word is counted, only where the second may
// follow.
void SkipToStart(const Phrase& phrase, const Settings& settings, PageTextReader& text) {
  const auto first = static_cast<uint32_t>(phrase.words[0].number);
  if (settings.PhraseSigns <= 0 || phrase.words.size() < 2) return SkipToWord(text, first);
  SkipToPair(text, first, static_cast<uint32_t>(phrase.words[1].number),
             settings.DictReservedLimit);
}

// Reads tokens from the reader's position on until the phrase is found, its page ends, or, unless
// PhraseSigns or Ranking is set, the first word has been met more often than its score says it
// occurs.
bool VerifyPhrase(const Phrase& phrase, uint32_t firstScore, const Settings& settings,
                  PageTextReader& text, uint64_t& start) {
  const auto count = phrase.words.size();
  const auto isWord = [&](size_t k, uint32_t number) {
    return number == static_cast<uint32_t>(phrase.words[k].number);
  };
  uint32_t occurrences = 0;
  for (;;) {
    PageTextToken token;
    for (size_t k = 0; k < count;) {
      if (k == 0) SkipToStart(phrase, settings, text);
      uint64_t position = 0;
      int32_t consumed = 0;
      do {
        position = text.position;
        consumed = ReadPageTextToken(text, token);
      } while (consumed != 0 && !EndsRun(token.word) &&
               int64_t{token.word} <= settings.DictReservedLimit);
      if (EndsRun(token.word) || int64_t{token.word} >= settings.NumKeywords) break;
      if (!isWord(k, token.word)) {
        if (k == 0 || !isWord(0, token.word)) break;
        k = 0;
      }
      if (k == 0) {
        ++occurrences;
        start = position;
      }
      if (++k == count) return true;
    }
    if (token.word == kPageEndWord) return false;
    if (settings.PhraseSigns <= 0 && settings.Ranking != 1 && firstScore < occurrences)
      return false;
  }
}

// How many of the neighbours among the words, the first 64, stand side by side between the reader's
// position and the end of the page; `start` is where the first of them does.
uint32_t CountNeighbours(const Phrase& phrase, const Settings& settings, PageTextReader& text,
                         uint64_t& start) {
  const size_t count = std::min<size_t>(phrase.words.size(), 65);
  const auto isWord = [&](size_t k, uint32_t number) {
    return number == static_cast<uint32_t>(phrase.words[k].number);
  };
  uint64_t met = 0;
  uint32_t before = kPageEndWord;  // is no word of a phrase
  uint64_t positionBefore = 0;
  for (PageTextToken token;;) {
    const uint64_t position = text.position;
    if (ReadPageTextToken(text, token) == 0 || token.word == kPageEndWord) break;
    const bool isSign = !EndsRun(token.word) && int64_t{token.word} <= settings.DictReservedLimit;
    if (isSign) continue;
    for (size_t k = 1; k < count; ++k) {
      if (!isWord(k - 1, before) || !isWord(k, token.word)) continue;
      if (met == 0) start = positionBefore;
      met |= uint64_t{1} << (k - 1);
    }
    before = token.word;
    positionBefore = position;
  }
  return static_cast<uint32_t>(std::popcount(met));
}

// The score of one word more. Weights keep whether all of the words stand in the title.
uint32_t AddedScore(uint32_t score, uint32_t added, const Phrase& phrase,
                    const Settings& settings) {
  // Pieces are common: their sum puts long pages first.
  const auto add = [&](uint32_t a, uint32_t b) { return phrase.isRun ? std::min(a, b) : a + b; };
  if (settings.Ranking != 1) return add(score, added);
  return add(WeightOf(score), WeightOf(added)) << 1 | (score & added & 1);
}

}  // namespace

TermResult PreparePhrase(Phrase& phrase, std::string_view words, const Dictionary& dictionary,
                         std::string_view wordMap) {
  phrase = Phrase();
  size_t count = 0;
  std::string_view word;
  for (std::string_view rest = words; NextPhraseWord(rest, word);) ++count;
  OwnedArray<PhraseWord> prepared;
  if (!prepared.TryAllocate(count)) return {TermStatus::kNoMemory};
  if (count == 0) return {};
  size_t k = 0;
  for (std::string_view rest = words; NextPhraseWord(rest, word); ++k) {
    prepared[k].number = dictionary.FindExact(word, 0);
    if (prepared[k].number < 0) return {};
  }
  for (PhraseWord& entry : prepared) {
    const int64_t offset = dictionary.EntryAt(entry.number).offset;
    if (offset == kNoWordList) continue;
    const TermResult found = FindWordList(wordMap, offset, entry.list);
    if (found.status != TermStatus::kOk) return found;
    entry.isSorted = IsSortedByPage(entry.list);
  }
  phrase.words = std::move(prepared);
  return {};
}

uint32_t CountPhrase(const Phrase& phrase, const Settings& settings, PageTextReader& text) {
  constexpr uint64_t kBytesCounted = 16384;
  const std::string_view whole = text.file;
  text.file = whole.substr(0, text.position + kBytesCounted);
  uint32_t count = 0;
  uint64_t start = 0;
  while (VerifyPhrase(phrase, UINT32_MAX, settings, text, start)) ++count;
  text.file = whole;
  return count;
}

namespace {

// Whether few candidates are left to be read, so that the text between them is passed over.
bool IsSparse(const Phrase& phrase) {
  constexpr uint32_t kEnough = 32;
  return phrase.asked >= kEnough && uint64_t{phrase.ruledOut} * 4 >= uint64_t{phrase.asked} * 3;
}

// VerifyPhrase, from `from` on, in the text of the page that ends at `end`; 0 for not known.
bool VerifyInPage(const Phrase& phrase, uint32_t firstScore, const Settings& settings,
                  PageTextReader& text, uint64_t from, uint64_t end, uint64_t& start) {
  PageTextReader copy = text;
  if (text.stretches != nullptr && end != 0) copy.file = text.stretches->Read(from, end);
  if (text.stretches == nullptr || end == 0 || copy.file.empty()) {
    SeekPageText(text, from);
    return VerifyPhrase(phrase, firstScore, settings, text, start);
  }
  SeekPageText(copy, 0);
  if (!VerifyPhrase(phrase, firstScore, settings, copy, start)) return false;
  start += from;
  return true;
}

}  // namespace

CandidateResult TestCandidate(Phrase& phrase, const WordMapRecord& candidate,
                              const Settings& settings, const TextPairs& pairs,
                              PageTextReader& text, PhraseBudget& budget, WordMapRecord& found) {
  const auto count = static_cast<int64_t>(phrase.words.size());
  const int64_t tokenSize = settings.DictIDLen;
  const auto position = static_cast<int64_t>(candidate.position);
  int64_t furthest = position;
  int64_t furthestWord = 0;
  uint32_t score = candidate.score;
  for (int64_t k = 1; k < count; ++k) {
    PhraseWord& word = phrase.words[static_cast<size_t>(k)];
    if (word.list.bytes.empty()) continue;
    const int32_t index = FindPage(word, candidate.page);
    if (index < 0) return CandidateResult::kRejected;
    const WordMapRecord other = RecordAt(word.list, index);
    const int f = candidate.proximity;
    const int g = other.proximity;
    if ((g & f) == 0 && (f & (2 * g)) == 0) return CandidateResult::kRejected;
    if (static_cast<int64_t>(other.position) > furthest) {
      furthest = static_cast<int64_t>(other.position);
      furthestWord = k;
    }
    score = AddedScore(score, other.score, phrase, settings);
  }
  if (budget.seeksDone > budget.maxSeeks + kSeeksBeforeCheapReject &&
      position + tokenSize * (count + kUsualReach) <= furthest) {
    return CandidateResult::kRejected;
  }
  const int64_t from = std::max(position, furthest - tokenSize * ReachOf(furthestWord, settings));
  const auto mayHoldPairs = [&] {
    return MayHoldPairs(phrase, candidate, static_cast<uint64_t>(from), pairs);
  };
  // Pieces of a script without blanks stand on many pages: those without the pairs are not seeks.
  if (phrase.isRun && !mayHoldPairs()) return CandidateResult::kRejected;
  budget.seeksDone = WrapAdd32(budget.seeksDone, 1);
  if (budget.seeksDone > budget.maxSeeks || budget.now() > budget.deadline) {
    return CandidateResult::kStop;
  }
  if (!phrase.isRun) {
    ++phrase.asked;
    if (!mayHoldPairs()) {
      ++phrase.ruledOut;
      return CandidateResult::kRejected;
    }
  }
  uint64_t start = 0;
  const auto begin = static_cast<uint64_t>(from);
  const uint64_t end = IsSparse(phrase) ? pairs.EndOfText(candidate.page, begin) : 0;
  if (!VerifyInPage(phrase, candidate.score, settings, text, begin, end, start)) {
    return CandidateResult::kRejected;
  }
  found = candidate;
  found.score = score;
  found.position = start;
  return CandidateResult::kFound;
}

CandidateResult TestNeighbours(Phrase& phrase, const WordMapRecord& candidate,
                               const Settings& settings, PageTextReader& text, PhraseBudget& budget,
                               WordMapRecord& found, uint32_t& neighbours) {
  uint64_t from = candidate.position;
  uint32_t score = candidate.score;
  for (size_t k = 1; k < phrase.words.size(); ++k) {
    const int32_t index = FindPage(phrase.words[k], candidate.page);
    if (index < 0) return CandidateResult::kRejected;
    const WordMapRecord other = RecordAt(phrase.words[k].list, index);
    from = std::min(from, other.position);
    score = AddedScore(score, other.score, phrase, settings);
  }
  budget.seeksDone = WrapAdd32(budget.seeksDone, 1);
  if (budget.seeksDone > budget.maxSeeks || budget.now() > budget.deadline) {
    return CandidateResult::kStop;
  }
  SeekPageText(text, from);
  found = candidate;
  found.score = score;
  neighbours = CountNeighbours(phrase, settings, text, found.position);
  return neighbours >= NeighboursNeeded(phrase) ? CandidateResult::kFound
                                                : CandidateResult::kRejected;
}

}  // namespace vela
