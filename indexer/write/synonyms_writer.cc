#include "indexer/write/synonyms_writer.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "format/page_text.h"
#include "format/synonyms.h"
#include "format/word_map.h"
#include "format/word_weight.h"
#include "index/word_map.h"
#include "indexer/write/compound_words.h"
#include "indexer/write/in_file.h"
#include "indexer/write/out_file.h"
#include "indexer/write/side_by_side.h"

namespace vela::indexer {

namespace {

// A page that has a compound is one about its parts, but less than one that names them.
constexpr uint32_t kPartWeight = 40;

// Two words that stand side by side on fewer pages are a slip of the pen.
constexpr size_t kApartPagesLeast = 2;

struct AlternativeText {
  std::string text;
  uint32_t weight = kWholeSynonymWeight;
  std::vector<WordMapRecord> records = {};  // of several words
};

class SynonymList {
 public:
  // The first of equal ones stays; more than kSynonymAlternativesLimit of a key are left out.
  void Add(const std::string& key, AlternativeText alternative) {
    std::vector<AlternativeText>& list = keys_[key];
    const bool isKnown = std::ranges::any_of(
        list, [&](const AlternativeText& each) { return each.text == alternative.text; });
    if (!isKnown && list.size() < kSynonymAlternativesLimit) list.push_back(std::move(alternative));
  }
  bool isEmpty() const { return keys_.empty(); }
  SynonymSizes Write(const std::filesystem::path& path) const;

 private:
  // std::string compares bytes as unsigned, as the search does.
  std::map<std::string, std::vector<AlternativeText>> keys_;
};

void WriteRecord(const WordMapRecord& record, OutFile& file) {
  file.WriteNumber(record.score, kWordMapScoreWidth);
  file.WriteNumber(record.proximity, kWordMapProximityWidth);
  file.WriteNumber(record.page, kWordMapPageWidth);
  file.WriteNumber(record.position, kWordMapPositionWidth);
}

SynonymSizes SynonymList::Write(const std::filesystem::path& path) const {
  SynonymHeader header;
  header.keys = static_cast<uint32_t>(keys_.size());
  size_t keyBytes = 0;
  size_t wordBytes = 0;
  for (const auto& [key, list] : keys_) {
    keyBytes += key.size();
    header.alternatives += static_cast<uint32_t>(list.size());
    for (const AlternativeText& each : list) {
      wordBytes += each.text.size();
      header.records += static_cast<uint32_t>(each.records.size());
    }
  }
  header.textBytes = static_cast<uint32_t>(keyBytes + wordBytes);
  OutFile file(path);
  char bytes[sizeof header];
  memcpy(bytes, &header, sizeof header);
  file.Write({bytes, sizeof bytes});
  const auto number = [&](uint64_t value) { file.WriteNumber(value, kSynonymNumberWidth); };
  size_t start = 0;
  size_t first = 0;
  for (const auto& [key, list] : keys_) {
    number(start);
    number(first);
    start += key.size();
    first += list.size();
  }
  number(start);
  number(first);
  first = 0;
  for (const auto& [key, list] : keys_) {
    for (const AlternativeText& each : list) {
      number(start);
      number(first);
      number(each.weight);
      start += each.text.size();
      first += each.records.size();
    }
  }
  number(start);
  number(first);
  number(0);
  for (const auto& [key, list] : keys_) {
    for (const AlternativeText& each : list) {
      for (const WordMapRecord& record : each.records) WriteRecord(record, file);
    }
  }
  for (const auto& [key, list] : keys_) file.Write(key);
  for (const auto& [key, list] : keys_) {
    for (const AlternativeText& each : list) file.Write(each.text);
  }
  return {keys_.size(), file.Finish()};
}

// The words of a text of the owner, as the dictionary and as pages have them.
struct RuleText {
  std::string key;
  std::string text;
  WordRow row;          // dictionary numbers; empty when a word is on no page
  size_t rowPlace = 0;  // among the rows that are looked for
};

class SynonymMaker {
 public:
  SynonymMaker(const std::filesystem::path& folder, const SynonymInput& input)
      : input_(input),
        forms_(FormsOfSite(input.vocabulary, input.utf8)),
        wordMap_(folder / kWordMapFileName),
        pageText_(folder / kPageTextFileName),
        numbers_(input.order.size()) {
    for (uint32_t place = 0; place < numbers_.size(); ++place) {
      numbers_[input.order[place]] = static_cast<uint32_t>(input.firstWord + place);
    }
  }
  SynonymList Make();

 private:
  std::string KeyOf(const std::string& form) const {
    return std::string(TextOf(input_.vocabulary.words[forms_.at(form)], input_.vocabulary));
  }
  // The number in the dictionary.
  uint32_t NumberOf(const std::string& form) const { return numbers_[forms_.at(form)]; }
  void FindRuleWords();
  RuleText ReadRuleText(const std::string& text) const;
  // Each word finds the pages of the others.
  void AddRules();
  void AddSameWords();
  void AddApartWords();
  void AddCompounds();
  std::vector<WordMapRecord> RecordsOf(const WordRow& row, const std::vector<RowPlace>& places);
  WordList ListOf(uint32_t number);
  uint32_t LeastScore(uint32_t one, uint32_t other) const {
    if (!input_.weighs) return std::min(one, other);
    return WeightByte(std::min(WeightOf(one), WeightOf(other)),
                      IsTitleWord(one) && IsTitleWord(other));
  }

  const SynonymInput& input_;
  WordsByForm forms_;
  InFile wordMap_;
  InFile pageText_;
  std::vector<uint32_t> numbers_;  // in the dictionary, by those in the vocabulary
  std::unordered_map<std::string, std::optional<uint32_t>, FormHash, std::equal_to<>>
      ruleWords_;  // of the owner's rules, their numbers in the dictionary
  SynonymList list_;
};

// Valid until the next one is asked for.
WordList SynonymMaker::ListOf(uint32_t number) {
  WordList list;
  const uint32_t word = input_.order[number - input_.firstWord];
  const size_t bytes =
      kWordListCountWidth + size_t{input_.vocabulary.words[word].pageCount} * kWordMapRecordSize;
  const std::string_view file = wordMap_.Read(input_.offsets[word], bytes);
  return ReadWordList(file, 0, list) == WordListStatus::kOk ? list : WordList();
}

// What the word map says of the rarest of the words, at the place of the row.
std::vector<WordMapRecord> SynonymMaker::RecordsOf(const WordRow& row,
                                                   const std::vector<RowPlace>& places) {
  std::vector<WordMapRecord> records;
  records.reserve(places.size());
  for (const RowPlace& place : places) {
    records.push_back({.score = kWordMapScoreLimit,
                       .proximity = 0xFF,
                       .page = place.page,
                       .position = place.position});
  }
  for (const uint32_t number : row) {
    const WordList list = ListOf(number);
    int32_t at = 0;
    for (WordMapRecord& record : records) {
      while (at < list.size() && RecordAt(list, at).page < record.page) ++at;
      if (at == list.size() || RecordAt(list, at).page != record.page) continue;
      const WordMapRecord ofWord = RecordAt(list, at);
      record.score = LeastScore(record.score, ofWord.score);
      record.proximity &= ofWord.proximity;
    }
  }
  return records;
}

// A blank ends a word.
std::string_view TakeWord(std::string_view& rest) {
  const std::string_view word = rest.substr(0, rest.find(' '));
  rest.remove_prefix(std::min(word.size() + 1, rest.size()));
  return word;
}

void SynonymMaker::FindRuleWords() {
  for (const SynonymRule& rule : input_.rules) {
    for (std::string_view rest : rule.words) {
      while (!rest.empty())
        ruleWords_.try_emplace(std::string(input_.forms.FoundBase(TakeWord(rest))));
    }
  }
  const Vocabulary& vocabulary = input_.vocabulary;
  for (uint32_t i = 0; i < vocabulary.words.size() && !ruleWords_.empty(); ++i) {
    const auto wanted = ruleWords_.find(TextOf(vocabulary.words[i], vocabulary));
    if (wanted != ruleWords_.end()) wanted->second = numbers_[i];
  }
}

RuleText SynonymMaker::ReadRuleText(const std::string& text) const {
  RuleText rule;
  bool isWhole = true;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string key(input_.forms.FoundBase(TakeWord(rest)));
    if (key.empty()) return {};
    rule.key.append(rule.key.empty() ? "" : " ").append(key);
    const std::optional<uint32_t> number = ruleWords_.at(key);
    isWhole = isWhole && number.has_value();
    if (number.has_value()) rule.row.push_back(*number);
  }
  rule.text = text;
  if (!isWhole) rule.row.clear();
  return rule;
}

void SynonymMaker::AddRules() {
  FindRuleWords();
  std::vector<std::vector<RuleText>> rules;
  std::vector<WordRow> rows;
  for (const SynonymRule& rule : input_.rules) {
    std::vector<RuleText>& texts = rules.emplace_back();
    for (const std::string& word : rule.words) {
      RuleText& text = texts.emplace_back(ReadRuleText(word));
      text.rowPlace = rows.size();
      if (text.row.size() > 1) rows.push_back(text.row);
    }
  }
  const auto places = FindRows(pageText_, input_.text, rows);
  for (const std::vector<RuleText>& texts : rules) {
    for (const RuleText& from : texts) {
      for (const RuleText& to : texts) {
        if (from.key.empty() || from.key == to.key || to.row.empty()) continue;
        AlternativeText alternative = {.text = to.text};
        if (to.row.size() > 1) alternative.records = RecordsOf(to.row, places[to.rowPlace]);
        if (to.row.size() == 1 || !alternative.records.empty()) {
          list_.Add(from.key, std::move(alternative));
        }
      }
    }
  }
}

void SynonymMaker::AddSameWords() {
  for (const SameWord& same : SameWords(forms_)) {
    list_.Add(KeyOf(same.one), {.text = same.other});
    list_.Add(KeyOf(same.other), {.text = same.one});
  }
}

void SynonymMaker::AddApartWords() {
  const std::vector<ApartWord> words = ApartWords(forms_);
  std::vector<WordRow> rows;
  rows.reserve(words.size());
  for (const ApartWord& word : words) {
    rows.push_back({NumberOf(word.first), NumberOf(word.second)});
  }
  const auto places = FindRows(pageText_, input_.text, rows);
  for (size_t i = 0; i < words.size(); ++i) {
    if (places[i].size() < kApartPagesLeast) continue;
    const ApartWord& word = words[i];
    list_.Add(KeyOf(word.whole),
              {.text = word.first + " " + word.second, .records = RecordsOf(rows[i], places[i])});
    if (!word.isJoined) {
      list_.Add(KeyOf(word.first) + " " + KeyOf(word.second), {.text = word.whole});
    }
  }
}

void SynonymMaker::AddCompounds() {
  for (const CompoundPart& part : GermanCompounds(input_.vocabulary, forms_, input_.utf8)) {
    list_.Add(KeyOf(part.part), {.text = part.compound, .weight = kPartWeight});
  }
}

SynonymList SynonymMaker::Make() {
  if (!wordMap_.isOpen() || !pageText_.isOpen()) return {};
  AddRules();
  if (!input_.findsCompounds) return std::move(list_);
  AddSameWords();
  AddApartWords();
  if (input_.isGerman) AddCompounds();
  return std::move(list_);
}

}  // namespace

SynonymSizes WriteSynonyms(const std::filesystem::path& folder, const SynonymInput& input) {
  const SynonymList list = SynonymMaker(folder, input).Make();
  return list.isEmpty() ? SynonymSizes() : list.Write(folder / kSynonymsFileName);
}

}  // namespace vela::indexer
