#include "indexer/collect/suggestion_list.h"

#include <algorithm>
#include <map>
#include <utility>

#include "indexer/collect/number_bytes.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/heading_text.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/plain_word.h"
#include "indexer/words/word_cut.h"

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
constexpr size_t kKnownPhrases = size_t{1} << 16;  // the same

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

SuggestionList::Entry* SuggestionList::Add(const std::string& text, uint64_t weight, Kind kind) {
  const bool isTitle = kind == Kind::kTitle;
  if (text.empty() ||
      (!isTitle && (text.size() < kLeastTextBytes || text.size() > kSuggestedBytesLimit))) {
    return nullptr;
  }
  Entry& entry = entries_[LowerUtf8Copy(text)];
  if (entry.text.empty() || kind < entry.kind) {
    entry.text = text;
    entry.kind = kind;
  }
  Count(entry, weight);
  if (entries_.size() <= kEntryLimit) return &entry;
  DropRarest();
  return nullptr;
}

void SuggestionList::Count(Entry& entry, uint64_t weight) const {
  if (entry.lastPage == page_) return;
  entry.lastPage = page_;
  entry.weight += weight;
}

// Of all entries the half that would be offered last.
void SuggestionList::DropRarest() {
  struct Place {
    uint64_t rank = 0;  // by kind, the last one first, then by weight
    decltype(entries_)::iterator at;
  };
  constexpr unsigned kKindShift = 56;
  std::vector<Place> order;
  order.reserve(entries_.size());
  for (auto at = entries_.begin(); at != entries_.end(); ++at) {
    const auto before =
        static_cast<uint64_t>(Kind::kPhrase) - static_cast<uint64_t>(at->second.kind);
    order.push_back({.rank = before << kKindShift | at->second.weight, .at = at});
  }
  const auto middle = order.begin() + static_cast<ptrdiff_t>(order.size() / 2);
  std::ranges::nth_element(order, middle, [](const Place& a, const Place& b) {
    return a.rank != b.rank ? a.rank < b.rank : a.at->first < b.at->first;
  });
  for (auto place = order.begin(); place != middle; ++place) place->at->second.isDropped = true;
  for (KnownPhrase& known : known_) {
    if (known.entry != nullptr && known.entry->isDropped) known = KnownPhrase();
  }
  for (auto place = order.begin(); place != middle; ++place) entries_.erase(place->at);
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
    count = {check, 0, 0};
  }
  if (count.lastPage == page_) return;
  count.lastPage = page_;
  if (++count.pages < kLeastPhrasePages) return;
  const uint64_t weight = count.pages == kLeastPhrasePages ? kLeastPhrasePages : 1;
  KnownPhrase& known = known_[phrase.hash & (kKnownPhrases - 1)];
  if (known.entry != nullptr && known.hash == phrase.hash) return Count(*known.entry, weight);
  std::string text;
  for (const uint32_t word : std::span(phrase.words).first(phrase.count)) {
    text.append(text.empty() ? "" : " ").append(words_[word].text);
  }
  Entry* const entry = Add(text, weight, Kind::kPhrase);
  known = {.hash = phrase.hash, .entry = entry};
}

void SuggestionList::AddPhrases(const RunningText& running) {
  words_.clear();
  std::string_view texts = running.texts;
  for (const RunningText::Word& word : running.words) {
    words_.push_back({.text = texts.substr(0, word.bytes),
                      .hash = word.hash,
                      .mayEdge = word.bytes >= kLeastEdgeBytes,
                      .beginsTwo = PhraseHash(2, word.hash),
                      .beginsThree = PhraseHash(3, word.hash)});
    texts.remove_prefix(word.bytes);
  }
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
    if (word.mayEdge && count >= 1 && words_[middle].mayEdge &&
        words_[middle].text.size() + 1 + word.text.size() <= kPhraseBytesLimit) {
      AddPhrase({.hash = PhraseHash(words_[middle].beginsTwo, word.hash),
                 .count = 2,
                 .words = {middle, last}});
    }
    if (word.mayEdge && count >= 2 && words_[first].mayEdge &&
        words_[first].text.size() + words_[middle].text.size() + 2 + word.text.size() <=
            kPhraseBytesLimit) {
      AddPhrase({.hash = PhraseHash(PhraseHash(words_[first].beginsThree, words_[middle].hash),
                                    word.hash),
                 .count = 3,
                 .words = {first, middle, last}});
    }
    first = middle;
    middle = last;
    ++count;
  }
  CountWaiting();
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
  if (known_.empty()) known_.resize(kKnownPhrases);
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
  // Of a text and its key: both strings, and what the table adds.
  constexpr size_t kBytesOfEntry = 220;
  constexpr size_t kBytesOfWord = 64;
  return entries_.size() * kBytesOfEntry + (edgeWords_.size() + endings_.size()) * kBytesOfWord +
         counts_.capacity() * sizeof(PhraseCount) + known_.capacity() * sizeof(KnownPhrase);
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
  std::map<std::string, Entry> merged;
  for (const auto& [key, entry] : entries_) {
    std::string text = entry.text;
    if (entry.kind == Kind::kTitle) text = Shortened(WithoutEnding(text), kSuggestedBytesLimit);
    if (entry.kind == Kind::kPhrase) {
      const std::string first = key.substr(0, key.find(' '));
      const std::string last = key.substr(key.rfind(' ') + 1);
      const bool isCommon = page_ > 2 * kLeastPhrasePages && entry.weight * 2 > page_;
      if (isCommon || stops.contains(first) || stops.contains(last) ||
          !edgeWords_.contains(first) || !edgeWords_.contains(last)) {
        continue;
      }
    }
    Entry& into = merged[LowerUtf8Copy(text)];
    // The order of the table is not defined: of two spellings the smaller one stays.
    const bool better = into.text.empty() || entry.kind < into.kind ||
                        (into.kind == entry.kind && text < into.text);
    if (better) into.text = text;
    into.kind = into.weight == 0 ? entry.kind : std::min(into.kind, entry.kind);
    into.weight += entry.weight;
  }
  std::vector<const Entry*> places;
  for (auto at = merged.begin(); at != merged.end(); ++at) {
    const auto next = std::next(at);
    const bool goesOn = next != merged.end() && next->first.starts_with(at->first + " ") &&
                        next->second.weight >= at->second.weight;
    if (at->second.kind == Kind::kPhrase && goesOn) continue;
    places.push_back(&at->second);
  }
  std::ranges::sort(places, [](const Entry* a, const Entry* b) {
    if (a->kind != b->kind) return a->kind < b->kind;
    if (a->weight != b->weight) return a->weight > b->weight;
    if (a->text.size() != b->text.size()) return a->text.size() < b->text.size();
    return a->text < b->text;
  });
  std::vector<std::string> texts;
  texts.reserve(places.size());
  for (const Entry* place : places) texts.push_back(place->text);
  entries_.clear();
  counts_ = std::vector<PhraseCount>();  // {} would keep the memory
  known_ = std::vector<KnownPhrase>();
  return texts;
}

}  // namespace vela::indexer
