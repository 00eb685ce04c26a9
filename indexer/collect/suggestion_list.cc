#include "indexer/collect/suggestion_list.h"

#include <algorithm>
#include <map>
#include <utility>

#include "indexer/words/clean_text.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/symbols.h"
#include "indexer/words/word_cut.h"

namespace vela::indexer {

namespace {

constexpr uint64_t kTitleWeight = 4;
constexpr uint64_t kHeadingWeight = 2;
constexpr uint8_t kLowestHeading = 3;
constexpr size_t kTextLimit = 100;  // more is no help in a list below a search box
constexpr size_t kLeastTextBytes = 3;

constexpr uint32_t kLeastPhrasePages = 3;
constexpr size_t kPhraseWordLimit = 3;
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
       {" | ", " - ", " \u2013 ", " \u2014 ", " \u00B7 ", " :: ", " \u00BB "}) {
    const size_t at = title.rfind(sign);
    if (at != title.npos && at > 0 && (last == title.npos || at > last)) last = at;
  }
  return last;
}

uint64_t HashOf(std::string_view text) {
  uint64_t hash = 14695981039346656037ULL;  // FNV-1a
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
  return hash;
}

// The word of a chunk without the signs around it; `begins` and `ends` tell whether there were any.
// Empty when signs stand inside.
std::string_view PlainWord(std::string_view chunk, bool& begins, bool& ends) {
  size_t first = chunk.npos;
  size_t last = 0;
  bool broken = false;
  size_t length = 0;
  for (size_t at = 0; at < chunk.size(); at += length) {
    const bool word = ClassifyCharacter(DecodeCharacter(chunk, at, length)) == CharacterKind::kWord;
    if (!word) continue;
    if (first == chunk.npos)
      first = at;
    else if (last != at)
      broken = true;
    last = at + length;
  }
  if (first == chunk.npos || broken) {
    begins = ends = true;
    return {};
  }
  begins = first > 0;
  ends = last < chunk.size();
  return chunk.substr(first, last - first);
}

}  // namespace

void SuggestionList::Add(const std::string& text, uint64_t weight, bool isPhrase) {
  if (text.size() < kLeastTextBytes || text.size() > kTextLimit) return;
  Entry& entry = entries_[LowerUtf8Copy(text)];
  if (entry.text.empty()) {
    entry.text = text;
    entry.isPhrase = isPhrase;
  }
  entry.isPhrase = entry.isPhrase && isPhrase;
  if (entry.lastPage == page_ && isPhrase) return;
  entry.lastPage = page_;
  entry.weight += weight;
  if (entries_.size() > kEntryLimit) DropRarest();
}

void SuggestionList::DropRarest() {
  std::vector<std::pair<uint64_t, std::string>> order;
  order.reserve(entries_.size());
  for (const auto& [key, entry] : entries_) order.emplace_back(entry.weight, key);
  std::ranges::sort(order);
  for (size_t i = 0; i < order.size() / 2; ++i) entries_.erase(order[i].second);
}

void SuggestionList::AddEdgeWords(const std::string& text) {
  std::string_view rest = text;
  std::string_view first;
  std::string_view last;
  for (std::string_view chunk = NextChunk(rest); !chunk.empty(); chunk = NextChunk(rest)) {
    bool begins = false;
    bool ends = false;
    const std::string_view word = PlainWord(chunk, begins, ends);
    if (word.empty()) continue;
    if (first.empty()) first = word;
    last = word;
  }
  for (const std::string_view word : {first, last}) {
    if (word.size() < kLeastEdgeBytes || edgeWords_.size() >= kEdgeWordLimit) continue;
    edgeWords_.insert(LowerUtf8Copy(word));
  }
}

// The last `words` words as a phrase.
void SuggestionList::AddPhrase(size_t words) {
  const size_t begin = words_.size() - words;
  if (words_[begin].lower.size() < kLeastEdgeBytes ||
      words_.back().lower.size() < kLeastEdgeBytes) {
    return;
  }
  std::string key;
  for (size_t i = begin; i < words_.size(); ++i) {
    key.append(key.empty() ? "" : " ").append(words_[i].lower);
  }
  if (key.size() > kTextLimit) return;
  const uint64_t hash = HashOf(key);
  PhraseCount& count = counts_[hash & (kPhrasePlaces - 1)];
  const auto check = static_cast<uint32_t>(hash >> 32);
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
  std::string text;
  for (size_t i = begin; i < words_.size(); ++i) {
    text.append(text.empty() ? "" : " ").append(words_[i].text);
  }
  Add(text, count.pages == kLeastPhrasePages ? kLeastPhrasePages : 1, true);
}

void SuggestionList::AddPhrases(std::string_view text) {
  words_.clear();
  for (std::string_view chunk = NextChunk(text); !chunk.empty(); chunk = NextChunk(text)) {
    bool begins = false;
    bool ends = false;
    const std::string_view word = PlainWord(chunk, begins, ends);
    if (begins) words_.clear();
    if (word.empty()) continue;
    if (words_.size() == kPhraseWordLimit) words_.erase(words_.begin());
    words_.push_back({std::string(word), LowerUtf8Copy(word)});
    for (size_t words = 2; words <= words_.size(); ++words) AddPhrase(words);
    if (ends) words_.clear();
  }
}

void SuggestionList::AddPage(const PageContent& page, const std::string& title) {
  if (counts_.empty()) counts_.resize(kPhrasePlaces);
  ++page_;
  const std::string offered = Offered(title);
  Add(offered, kTitleWeight, false);
  const size_t ending = EndingOf(offered);
  if (ending != offered.npos) {
    const std::string text = offered.substr(ending);
    if (endings_.size() < kEndingLimit || endings_.contains(text)) ++endings_[text];
  }
  AddEdgeWords(offered.substr(0, ending));
  std::unordered_set<std::string> seen;  // a heading counts once a page
  for (const TextRun& run : page.body) {
    if (run.headingLevel >= 1 && run.headingLevel <= kLowestHeading) {
      const std::string heading = Offered(run.text);
      if (seen.insert(heading).second) {
        Add(heading, kHeadingWeight, false);
        AddEdgeWords(heading);
      }
    } else if (run.headingLevel == 0) {
      AddPhrases(run.text);
    }
  }
}

std::string SuggestionList::CommonEnding() const {
  for (const auto& [ending, pages] : endings_) {
    if (pages >= 3 && uint64_t{pages} * 2 > page_) return ending;
  }
  return {};
}

std::vector<std::string> SuggestionList::Take() {
  const std::string ending = CommonEnding();
  // By the text in lower case, so that phrases stand just before those that go on from them.
  std::map<std::string, Entry> merged;
  for (auto& [key, entry] : entries_) {
    std::string text = entry.text;
    if (!ending.empty() && text.size() > ending.size() && text.ends_with(ending)) {
      text.resize(text.size() - ending.size());
    }
    if (entry.isPhrase) {
      const std::string first = key.substr(0, key.find(' '));
      const std::string last = key.substr(key.rfind(' ') + 1);
      if (!edgeWords_.contains(first) || !edgeWords_.contains(last)) continue;
    }
    Entry& into = merged[LowerUtf8Copy(text)];
    // The order of the table is not defined: of two spellings the smaller one stays.
    const bool better = into.text.empty() || (into.isPhrase && !entry.isPhrase) ||
                        (into.isPhrase == entry.isPhrase && text < into.text);
    if (better) into.text = text;
    into.isPhrase = (into.weight == 0 || into.isPhrase) && entry.isPhrase;
    into.weight += entry.weight;
  }
  struct Place {
    uint64_t weight;
    std::string text;
  };
  std::vector<Place> places;
  for (auto at = merged.begin(); at != merged.end(); ++at) {
    const auto next = std::next(at);
    const bool goesOn = next != merged.end() && next->first.starts_with(at->first + " ") &&
                        next->second.weight >= at->second.weight;
    if (at->second.isPhrase && goesOn) continue;
    places.push_back({at->second.weight, at->second.text});
  }
  std::ranges::sort(places, [](const Place& a, const Place& b) {
    return a.weight != b.weight ? a.weight > b.weight : a.text < b.text;
  });
  std::vector<std::string> texts;
  texts.reserve(places.size());
  for (Place& place : places) texts.push_back(std::move(place.text));
  entries_.clear();
  counts_ = {};
  return texts;
}

}  // namespace vela::indexer
