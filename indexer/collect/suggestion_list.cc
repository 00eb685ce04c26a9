#include "indexer/collect/suggestion_list.h"

#include <algorithm>
#include <map>
#include <utility>

#include "indexer/collect/number_bytes.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/heading_text.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/plain_word.h"
#include "indexer/words/word_cut.h"
#include "text/lower.h"

namespace vela::indexer {

namespace {

constexpr uint8_t kLowestHeading = 3;
constexpr size_t kNameLimit = 40;
constexpr size_t kLeastTextBytes = 3;  // of what is no title

constexpr uint32_t kLeastPhrasePages = 3;
constexpr size_t kLeastEdgeBytes = 4;  // of a phrase's first and last word

constexpr size_t kEntryLimit = 40000;
constexpr size_t kEndingLimit = 1000;
constexpr size_t kEdgeWordLimit = 40000;
constexpr size_t kPhrasePlaces = size_t{1} << 18;  // a power of two

// On one line, without what the search program would put into a script.
std::string Offered(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return c == '"' || c == '\\'; }, ' ');
  return CollapseBlanks(text);
}

// Where the site's name begins behind the title's own words, with the sign between them; npos when
// there is none.
size_t EndingOf(std::string_view title) {
  size_t last = title.npos;
  for (const std::string_view sign :
       {" | ", " - ", " \u2013 ", " \u2014 ", " \u00B7 ", " :: ", " \u00BB ", " ("}) {
    const size_t at = title.rfind(sign);
    if (at != title.npos && at > 0 && (last == title.npos || at > last)) last = at;
  }
  return last;
}

// A title of so many bytes at most, cut behind a word.
std::string Shortened(std::string text, size_t limit) {
  if (text.size() <= limit) return text;
  size_t end = limit;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  const size_t blank = text.rfind(' ', end);
  text.resize(blank != text.npos && blank > limit / 2 ? blank : end);
  return text;
}

// What a list defines, without its parameters: "class json.Encoder(skipkeys)" is "json.Encoder".
std::string NameOf(const std::string& term) {
  std::string_view name = std::string_view(term).substr(0, term.find('('));
  while (name.ends_with(' ')) name.remove_suffix(1);
  const bool isCall = name.size() < term.size();
  if (isCall) name.remove_prefix(name.rfind(' ') == name.npos ? 0 : name.rfind(' ') + 1);
  return name.size() > kNameLimit ? std::string() : std::string(name);
}

std::unordered_set<std::string> WordSetOf(std::string_view words) {
  std::unordered_set<std::string> set;
  for (std::string_view word = NextChunk(words); !word.empty(); word = NextChunk(words)) {
    set.insert(LowerUtf8Copy(word));
  }
  return set;
}

// Phrases that differ in the order of their words differ.
uint64_t PhraseHash(uint64_t hash, uint64_t ofNextWord) {
  constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
  hash = (hash ^ ofNextWord) * kOdd;
  return hash ^ hash >> 29;
}

}  // namespace

uint32_t SuggestionList::Add(std::string_view text, uint64_t weight, Kind kind) {
  const bool isTitle = kind == Kind::kTitle;
  if (text.empty() ||
      (!isTitle && (text.size() < kLeastTextBytes || text.size() > kSuggestedBytesLimit))) {
    return kNone;
  }
  key_ = text;
  LowerUtf8(key_.data(), key_.size());
  const auto next = static_cast<uint32_t>(entries_.size());
  const uint32_t number = table_.FindOrAdd(
      TextHash(key_), next, [&](uint32_t known) { return entries_[known].key == key_; });
  if (number == next) {
    Entry& added = entries_.emplace_back();
    added.key = texts_.Keep(key_);
    added.text = key_ == text ? added.key : texts_.Keep(text);
    added.kind = kind;
  }
  Entry& entry = entries_[number];
  if (kind < entry.kind) {
    entry.text = key_ == text ? entry.key : texts_.Keep(text);
    entry.kind = kind;
  }
  Count(entry, weight);
  if (entries_.size() <= kEntryLimit) return number;
  DropRarest();
  return kNone;
}

void SuggestionList::Count(Entry& entry, uint64_t weight) const {
  if (entry.lastPage == page_) return;
  entry.lastPage = page_;
  entry.weight += weight;
}

// Of all entries the half that would be offered last.
void SuggestionList::DropRarest() {
  struct Place {
    uint64_t rank = 0;   // by kind, the last one first, then by weight
    uint64_t start = 0;  // of the key: few texts are looked at
    uint32_t number = 0;
  };
  constexpr unsigned kKindShift = 56;
  std::vector<Place> order;
  order.reserve(entries_.size());
  for (uint32_t number = 0; number < entries_.size(); ++number) {
    const Entry& entry = entries_[number];
    const auto before = static_cast<uint64_t>(Kind::kPhrase) - static_cast<uint64_t>(entry.kind);
    order.push_back({.rank = before << kKindShift | entry.weight,
                     .start = StartNumber(entry.key),
                     .number = number});
  }
  const auto middle = order.begin() + static_cast<ptrdiff_t>(order.size() / 2);
  std::ranges::nth_element(order, middle, [this](const Place& a, const Place& b) {
    if (a.rank != b.rank) return a.rank < b.rank;
    if (a.start != b.start) return a.start < b.start;
    return entries_[a.number].key < entries_[b.number].key;
  });
  std::vector<uint32_t> numbers(entries_.size(), kNone);  // those that stay, by the former ones
  const std::vector<Entry> former = std::exchange(entries_, {});
  const TextStore formerTexts = std::exchange(texts_, {});
  entries_.reserve(former.size());
  table_.Clear();
  for (auto place = middle; place != order.end(); ++place) {
    const auto number = static_cast<uint32_t>(entries_.size());
    numbers[place->number] = number;
    Entry& entry = entries_.emplace_back(former[place->number]);
    const bool isKey = entry.text.data() == entry.key.data();
    entry.key = texts_.Keep(entry.key);
    entry.text = isKey ? entry.key : texts_.Keep(entry.text);
    table_.FindOrAdd(TextHash(entry.key), number, [](uint32_t) { return false; });
  }
  for (PhraseCount& count : counts_) {
    if (count.entry != kNone) count.entry = numbers[count.entry];
  }
}

void SuggestionList::AddEdgeWords(const std::string& text) {
  std::string_view rest = text;
  std::string_view first;
  std::string_view last;
  for (std::string_view chunk = NextChunk(rest); !chunk.empty(); chunk = NextChunk(rest)) {
    const std::string_view word = PlainWordOf(chunk).text;
    if (word.empty()) continue;
    if (first.empty()) first = word;
    last = word;
  }
  for (const std::string_view word : {first, last}) {
    if (word.size() < kLeastEdgeBytes || edgeWords_.size() >= kEdgeWordLimit) continue;
    edgeWords_.insert(LowerUtf8Copy(word));
  }
}

void SuggestionList::AddPhrase(const Phrase& phrase) {
  __builtin_prefetch(&counts_[phrase.hash & (kPhrasePlaces - 1)], 1);
  Phrase& waiting = waiting_[nextPhrase_];
  nextPhrase_ = (nextPhrase_ + 1) % waiting_.size();
  if (waiting.count != 0) CountPhrase(waiting);
  waiting = phrase;
}

// Before the next page: the texts of the words end with theirs.
void SuggestionList::CountWaiting() {
  for (size_t i = 0; i < waiting_.size(); ++i) {
    Phrase& waiting = waiting_[(nextPhrase_ + i) % waiting_.size()];
    if (waiting.count != 0) CountPhrase(waiting);
    waiting.count = 0;
  }
}

void SuggestionList::CountPhrase(const Phrase& phrase) {
  PhraseCount& count = counts_[phrase.hash & (kPhrasePlaces - 1)];
  const auto check = static_cast<uint32_t>(phrase.hash >> 32);
  if (count.check != check) {
    // The phrase that is met oftener keeps the place.
    if (count.pages > 1) {
      --count.pages;
      return;
    }
    count = {.check = check};
  }
  if (count.lastPage == page_) return;
  count.lastPage = page_;
  if (++count.pages < kLeastPhrasePages) return;
  const uint64_t weight = count.pages == kLeastPhrasePages ? kLeastPhrasePages : 1;
  if (count.entry != kNone) return Count(entries_[count.entry], weight);
  phrase_.clear();
  for (const uint32_t word : std::span(phrase.words).first(phrase.count)) {
    const std::string_view text = pageTexts_.substr(words_[word].at, words_[word].bytes);
    phrase_.append(phrase_.empty() ? "" : " ").append(text);
  }
  count.entry = Add(phrase_, weight, Kind::kPhrase);
}

void SuggestionList::AddPhrases(const RunningText& running) {
  pageTexts_ = running.texts;
  words_.clear();
  words_.reserve(running.words.size());
  uint32_t at = 0;
  for (const RunningText::Word& word : running.words) {
    words_.push_back({.at = at,
                      .bytes = word.bytes,
                      .hash = word.hash,
                      .beginsTwo = PhraseHash(2, word.hash),
                      .beginsThree = PhraseHash(3, word.hash)});
    at += word.bytes;
  }
  const auto mayEdge = [](const PhraseWord& word) { return word.bytes >= kLeastEdgeBytes; };
  uint32_t first = 0;  // the words before, where there are so many
  uint32_t middle = 0;
  size_t count = 0;
  for (std::string_view sequence = running.sequence; !sequence.empty();) {
    const uint32_t place = TakeNumber(sequence);
    if (place == RunningText::kBreak) {
      count = 0;
      continue;
    }
    const uint32_t last = place - 1;
    const PhraseWord& word = words_[last];
    const bool ends = mayEdge(word);
    if (ends && count >= 1) {
      const PhraseWord& before = words_[middle];
      if (mayEdge(before) && before.bytes + 1U + word.bytes <= kPhraseBytesLimit) {
        AddPhrase(
            {.hash = PhraseHash(before.beginsTwo, word.hash), .count = 2, .words = {middle, last}});
      }
    }
    if (ends && count >= 2) {
      const PhraseWord& start = words_[first];
      const PhraseWord& between = words_[middle];
      if (mayEdge(start) &&
          start.bytes + 1U + between.bytes + 1U + word.bytes <= kPhraseBytesLimit) {
        AddPhrase({.hash = PhraseHash(PhraseHash(start.beginsThree, between.hash), word.hash),
                   .count = 3,
                   .words = {first, middle, last}});
      }
    }
    first = middle;
    middle = last;
    ++count;
  }
  CountWaiting();
  pageTexts_ = {};
}

PageSuggestions SuggestionsOf(const PageContent& page, const std::string& title) {
  PageSuggestions offered;
  offered.title = Shortened(PlainHeading(Offered(title)), kTitleBytesLimit);
  const auto add = [&](std::string text, bool isHeading) {
    if (text.empty() || text.size() > kSuggestedBytesLimit) return;
    offered.texts.push_back({.text = std::move(text), .isHeading = isHeading});
  };
  for (const TextRun& run : page.body) {
    if (run.headingLevel >= 1 && run.headingLevel <= kLowestHeading) {
      std::string heading = PlainHeading(Offered(run.text));
      // The heading of the page says its title, and perhaps more that nobody asks for.
      const bool isTitle =
          run.headingLevel == 1 && !offered.title.empty() && heading.starts_with(offered.title);
      if (!isTitle) add(std::move(heading), true);
    } else if (run.headingLevel == 0 && !run.anchor.empty()) {
      add(NameOf(PlainHeading(Offered(run.text))), false);
    }
  }
  return offered;
}

void SuggestionList::AddPage(const PageSuggestions& page) {
  if (counts_.empty()) counts_.resize(kPhrasePlaces);
  ++page_;
  Add(page.title, 1, Kind::kTitle);
  const size_t ending = EndingOf(page.title);
  if (ending != page.title.npos) {
    const std::string text = page.title.substr(ending);
    if (endings_.size() < kEndingLimit || endings_.contains(text)) ++endings_[text];
  }
  AddEdgeWords(page.title.substr(0, ending));
  for (const PageSuggestions::Text& text : page.texts) {
    Add(text.text, 1, text.isHeading ? Kind::kHeading : Kind::kName);
    if (text.isHeading) AddEdgeWords(text.text);
  }
  AddPhrases(page.running);
}

size_t SuggestionList::memory() const {
  constexpr size_t kBytesOfWord = 64;
  return entries_.capacity() * sizeof(Entry) + table_.memory() + texts_.memory() +
         (edgeWords_.size() + endings_.size()) * kBytesOfWord +
         counts_.capacity() * sizeof(PhraseCount);
}

// A title without what so many others end in that it is the site's name, or that of a part of it.
std::string SuggestionList::WithoutEnding(const std::string& title) const {
  constexpr uint32_t kLeastPages = 3;
  constexpr uint32_t kLeastPercent = 5;
  const size_t at = EndingOf(title);
  if (at == title.npos) return title;
  const auto found = endings_.find(title.substr(at));
  const bool isShared = found != endings_.end() && found->second >= kLeastPages &&
                        uint64_t{found->second} * 100 >= uint64_t{page_} * kLeastPercent;
  return isShared ? title.substr(0, at) : title;
}

std::vector<std::string> SuggestionList::Take(std::string_view stopWords) {
  const std::unordered_set<std::string> stops = WordSetOf(stopWords);
  // By the text in lower case, so that phrases stand just before those that go on from them.
  struct Merged {
    std::string text;
    uint64_t weight = 0;
    Kind kind = Kind::kPhrase;
  };
  std::map<std::string, Merged> merged;
  for (const Entry& entry : entries_) {
    std::string text(entry.text);
    if (entry.kind == Kind::kTitle) text = Shortened(WithoutEnding(text), kSuggestedBytesLimit);
    if (entry.kind == Kind::kPhrase) {
      const std::string first(entry.key.substr(0, entry.key.find(' ')));
      const std::string last(entry.key.substr(entry.key.rfind(' ') + 1));
      const bool isCommon = page_ > 2 * kLeastPhrasePages && entry.weight * 2 > page_;
      if (isCommon || stops.contains(first) || stops.contains(last) ||
          !edgeWords_.contains(first) || !edgeWords_.contains(last)) {
        continue;
      }
    }
    Merged& into = merged[LowerUtf8Copy(text)];
    // In whatever order they come: of two spellings the smaller one stays.
    const bool better = into.text.empty() || entry.kind < into.kind ||
                        (into.kind == entry.kind && text < into.text);
    if (better) into.text = text;
    into.kind = into.weight == 0 ? entry.kind : std::min(into.kind, entry.kind);
    into.weight += entry.weight;
  }
  std::vector<const Merged*> places;
  for (auto at = merged.begin(); at != merged.end(); ++at) {
    const auto next = std::next(at);
    const bool goesOn = next != merged.end() && next->first.starts_with(at->first + " ") &&
                        next->second.weight >= at->second.weight;
    if (at->second.kind == Kind::kPhrase && goesOn) continue;
    places.push_back(&at->second);
  }
  std::ranges::sort(places, [](const Merged* a, const Merged* b) {
    if (a->kind != b->kind) return a->kind < b->kind;
    if (a->weight != b->weight) return a->weight > b->weight;
    if (a->text.size() != b->text.size()) return a->text.size() < b->text.size();
    return a->text < b->text;
  });
  std::vector<std::string> texts;
  texts.reserve(places.size());
  for (const Merged* place : places) texts.push_back(place->text);
  entries_ = std::vector<Entry>();  // {} would keep the memory
  table_ = NumberTable();
  texts_.Clear();
  counts_ = std::vector<PhraseCount>();
  return texts;
}

}  // namespace vela::indexer
