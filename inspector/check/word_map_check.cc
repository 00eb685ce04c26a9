#include "inspector/check/word_map_check.h"

#include <algorithm>
#include <string>
#include <vector>

#include "format/dictionary.h"
#include "format/page_info.h"
#include "format/word_map.h"
#include "format/word_weight.h"
#include "index/page_text.h"
#include "inspector/findings/plain_text.h"
#include "search/lookup.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

namespace {

std::string WordName(const OpenedIndex& index, uint32_t word) {
  return "word " + std::to_string(word) + ", " +
         Quoted(index.dictionary.WordAt(static_cast<int32_t>(word)));
}

// A list of the word map, and whether its pages ascend, so that it can be gone through with them.
struct CheckedList {
  WordList list;
  bool ascends = false;
};

struct ListPlace {
  uint64_t begin = 0;
  uint64_t end = 0;
  uint32_t word = 0;
};

// Finds and checks the list of each word; the places of all are left in `places`.
std::vector<CheckedList> CheckLists(const CheckInput& input, const TextStarts& texts,
                                    std::vector<ListPlace>& places) {
  const OpenedIndex& index = input.index;
  const std::string_view file = index.wordMap.bytes();
  std::vector<CheckedList> lists(WordCount(index));
  const RecordCheck records(input, texts, kWordMapFileName, true);
  input.progress.Begin(kWordMapFileName, 2 * lists.size());
  for (uint32_t word = 0; word < lists.size(); ++word) {
    input.progress.Step(word);
    const int64_t offset = index.dictionary.EntryAt(static_cast<int32_t>(word)).offset;
    if (offset == kNoWordList) continue;
    CheckedList& checked = lists[word];
    if (offset < 0 || ReadWordList(file, offset, checked.list) != WordListStatus::kOk) {
      const uint64_t at = offset < 0 ? 0 : static_cast<uint64_t>(offset);
      input.findings.Add(Fault::kBeyondEnd, kWordMapFileName, Byte(at),
                         "the list of " + WordName(index, word));
      continue;
    }
    const auto begin = static_cast<uint64_t>(offset);
    const uint64_t first = begin + kWordListCountWidth;
    places.push_back({begin, first + checked.list.bytes.size(), word});
    checked.ascends = records.Check(checked.list, first, WordName(index, word));
  }
  return lists;
}

// Every byte of the file belongs to one list.
void CheckCover(const CheckInput& input, std::vector<ListPlace>& places) {
  std::ranges::sort(places, {}, &ListPlace::begin);
  const auto unclaimed = [&](uint64_t from, uint64_t to) {
    input.findings.Add(Fault::kUnclaimed, kWordMapFileName, Byte(from),
                       CountOfText(to - from, "byte", "bytes") + " between the lists of words");
  };
  uint64_t end = 0;
  for (const ListPlace& place : places) {
    if (place.begin < end) {
      input.findings.Add(
          Fault::kMisplaced, kWordMapFileName, Byte(place.begin),
          "the list of " + WordName(input.index, place.word) + " begins inside another");
    } else if (place.begin > end) {
      unclaimed(end, place.begin);
    }
    end = std::max(end, place.end);
  }
  const uint64_t size = input.index.wordMap.bytes().size();
  if (end < size) unclaimed(end, size);
}

// Goes through the pages with the lists of their words: each finds its pages, and no word stands
// before what is said to be its first place.
class ReverseCheck {
 public:
  ReverseCheck(const CheckInput& input, const TextStarts& texts,
               const std::vector<CheckedList>& lists)
      : input_(input),
        texts_(texts),
        lists_(lists),
        next_(lists.size()),
        lastPage_(lists.size(), UINT32_MAX) {}

  void Run() {
    const OpenedIndex& index = input_.index;
    const auto width = static_cast<uint64_t>(index.settings.DictIDLen);
    PageTextReader reader = {.file = index.pageText.bytes(), .tokenSize = index.settings.DictIDLen};
    SeekPageText(reader, 0);
    PageTextToken token;
    for (uint32_t page = 0; page + 1 < texts_.size(); ++page) {
      for (uint64_t at = texts_[page]; at < texts_[page + 1]; at += width) {
        if (ReadPageTextToken(reader, token) == 0) return;
        if (IsSearchedWord(index, token.word)) Meet(token.word, page, at);
      }
      input_.progress.Step(lists_.size() + uint64_t{page} * lists_.size() / texts_.size());
    }
  }

 private:
  void Meet(uint32_t word, uint32_t page, uint64_t at) {
    if (lastPage_[word] == page) return;
    lastPage_[word] = page;
    const CheckedList& checked = lists_[word];
    const WordList& list = checked.list;
    if (!checked.ascends && list.size() > 0) return;
    int32_t& next = next_[word];
    while (next < list.size() && RecordAt(list, next).page < page) ++next;
    if (next == list.size() || RecordAt(list, next).page != page) {
      return Add(Fault::kNotListed, word, page, at);
    }
    if (RecordAt(list, next).position > at) Add(Fault::kNotFirst, word, page, at);
  }

  void Add(Fault fault, uint32_t word, uint32_t page, uint64_t at) {
    input_.findings.Add(fault, kWordMapFileName, kWholeFile,
                        WordName(input_.index, word) + ", at byte " + std::to_string(at) +
                            " of the page text, in that of page " + std::to_string(page));
  }

  const CheckInput& input_;
  const TextStarts& texts_;
  const std::vector<CheckedList>& lists_;
  std::vector<int32_t> next_;  // the record of a word that has not been passed
  std::vector<uint32_t> lastPage_;
};

// With Ranking a title has a mass exactly when words of the page stand in it.
void CheckTitleMasses(const CheckInput& input, const std::vector<CheckedList>& lists) {
  const OpenedIndex& index = input.index;
  if (index.settings.Ranking != 1) return;
  std::vector<bool> hasTitleWord(PageCount(index));
  for (const CheckedList& checked : lists) {
    for (int32_t i = 0; i < checked.list.size(); ++i) {
      const WordMapRecord record = RecordAt(checked.list, i);
      if (IsTitleWord(record.score) && record.page < hasTitleWord.size()) {
        hasTitleWord[record.page] = true;
      }
    }
  }
  for (uint32_t page = 0; page < hasTitleWord.size(); ++page) {
    if (hasTitleWord[page] == (PageTitleMass(index.pages, page) != 0)) continue;
    input.findings.Add(Fault::kBadWeight, kPageInfoFileName, kWholeFile,
                       "page " + std::to_string(page) +
                           (hasTitleWord[page] ? " has words in its title, which weighs nothing"
                                               : " has a title that weighs, and no words in it"));
  }
}

}  // namespace

bool RecordCheck::Check(const WordList& list, uint64_t at, std::string_view name) const {
  bool ascends = true;
  int64_t former = -1;
  const uint32_t pages = PageCount(input_.index);
  for (int32_t i = 0; i < list.size(); ++i) {
    const Place place = Byte(at + static_cast<uint64_t>(i) * kWordMapRecordSize);
    const WordMapRecord record = RecordAt(list, i);
    if (int64_t{record.page} <= former) {
      ascends = false;
      input_.findings.Add(Fault::kWrongOrder, file_, place,
                          std::string(name) + ": page " + std::to_string(record.page) +
                              " behind page " + std::to_string(former));
    }
    former = record.page;
    if (record.page >= pages) {
      ascends = false;
      input_.findings.Add(
          Fault::kUnknownPage, file_, place,
          std::string(name) + ": page " + std::to_string(record.page) + " of " + CountText(pages));
      continue;
    }
    CheckScore(record, place, name);
    if (CheckPlace(record, place, name)) continue;
    input_.findings.Add(Fault::kMisplaced, file_, place,
                        std::string(name) + ": byte " + std::to_string(record.position) +
                            " of the page text is no word of page " + std::to_string(record.page));
  }
  return ascends;
}

bool RecordCheck::CheckPlace(const WordMapRecord& record, Place place,
                             std::string_view name) const {
  if (hasBlocks_ && record.proximity == 0) {
    input_.findings.Add(Fault::kNoBlock, file_, place,
                        std::string(name) + ", page " + std::to_string(record.page));
  }
  if (texts_.empty()) return true;
  if (record.page + size_t{1} >= texts_.size()) return false;
  const auto width = static_cast<uint64_t>(input_.index.settings.DictIDLen);
  if (record.position < texts_[record.page] || record.position >= texts_[record.page + 1] ||
      record.position % width != 0) {
    return false;
  }
  PageTextReader reader = {.file = input_.index.pageText.bytes(),
                           .tokenSize = input_.index.settings.DictIDLen};
  SeekPageText(reader, record.position);
  PageTextToken token;
  // Another word is found by this one: a part of a compound, or a form without accents.
  return ReadPageTextToken(reader, token) != 0 && IsSearchedWord(input_.index, token.word);
}

void RecordCheck::CheckScore(const WordMapRecord& record, Place place,
                             std::string_view name) const {
  const bool weighs = input_.index.settings.Ranking == 1;
  if (weighs ? WeightOf(record.score) != 0 : record.score != 0) return;
  input_.findings.Add(Fault::kBadScore, file_, place,
                      std::string(name) + ", page " + std::to_string(record.page));
}

void CheckWordMap(const CheckInput& input, const TextStarts& texts) {
  if (!input.index.wordMap.isOpen()) {
    input.findings.Add(Fault::kMissing, kWordMapFileName, kWholeFile, {});
    input.findings.SetUnusable();
    return;
  }
  if (WordCount(input.index) == 0) return;
  std::vector<ListPlace> places;
  const std::vector<CheckedList> lists = CheckLists(input, texts, places);
  CheckCover(input, places);
  ReverseCheck(input, texts, lists).Run();
  CheckTitleMasses(input, lists);
}

}  // namespace vela::inspector
