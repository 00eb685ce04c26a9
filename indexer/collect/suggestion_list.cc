#include "indexer/collect/suggestion_list.h"

#include <algorithm>
#include <map>
#include <utility>

#include "indexer/words/clean_text.h"
#include "indexer/words/heading_text.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/symbols.h"
#include "indexer/words/word_cut.h"

namespace vela::indexer {

namespace {

constexpr uint8_t kLowestHeading = 3;
constexpr size_t kTextLimit = 100;   // more is no help in a list below a search box
constexpr size_t kTitleLimit = 300;  // of which what all titles end in is taken off
constexpr size_t kNameLimit = 40;
constexpr size_t kLeastTextBytes = 3;  // of what is no title

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

void SuggestionList::Add(const std::string& text, uint64_t weight, Kind kind) {
  const bool isTitle = kind == Kind::kTitle;
  if (text.empty() || (!isTitle && (text.size() < kLeastTextBytes || text.size() > kTextLimit))) {
    return;
  }
  Entry& entry = entries_[LowerUtf8Copy(text)];
  if (entry.text.empty() || kind < entry.kind) {
    entry.text = text;
    entry.kind = kind;
  }
  if (entry.lastPage == page_) return;
  entry.lastPage = page_;
  entry.weight += weight;
  if (entries_.size() > kEntryLimit) DropRarest();
}

void SuggestionList::DropRarest() {
  struct Place {
    Kind kind;
    uint64_t weight;
    std::string key;
  };
  std::vector<Place> order;
  order.reserve(entries_.size());
  for (const auto& [key, entry] : entries_) order.push_back({entry.kind, entry.weight, key});
  std::ranges::sort(order, [](const Place& a, const Place& b) {
    if (a.kind != b.kind) return a.kind > b.kind;
    return a.weight != b.weight ? a.weight < b.weight : a.key < b.key;
  });
  for (size_t i = 0; i < order.size() / 2; ++i) entries_.erase(order[i].key);
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
  Add(text, count.pages == kLeastPhrasePages ? kLeastPhrasePages : 1, Kind::kPhrase);
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
  const std::string offered = Shortened(PlainHeading(Offered(title)), kTitleLimit);
  Add(offered, 1, Kind::kTitle);
  const size_t ending = EndingOf(offered);
  if (ending != offered.npos) {
    const std::string text = offered.substr(ending);
    if (endings_.size() < kEndingLimit || endings_.contains(text)) ++endings_[text];
  }
  AddEdgeWords(offered.substr(0, ending));
  for (const TextRun& run : page.body) {
    if (run.headingLevel >= 1 && run.headingLevel <= kLowestHeading) {
      const std::string heading = PlainHeading(Offered(run.text));
      // The heading of the page says its title, and perhaps more that nobody asks for.
      const bool isTitle =
          run.headingLevel == 1 && !offered.empty() && heading.starts_with(offered);
      if (isTitle) continue;
      Add(heading, 1, Kind::kHeading);
      AddEdgeWords(heading);
    } else if (run.headingLevel == 0) {
      if (!run.anchor.empty()) Add(NameOf(PlainHeading(Offered(run.text))), 1, Kind::kName);
      AddPhrases(run.text);
    }
  }
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
    if (entry.kind == Kind::kTitle) text = Shortened(WithoutEnding(text), kTextLimit);
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
  counts_ = {};
  return texts;
}

}  // namespace vela::indexer
