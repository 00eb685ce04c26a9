#include "indexer/collect/link_texts.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "indexer/collect/number_table.h"
#include "indexer/config/extensions.h"
#include "indexer/site/address.h"
#include "indexer/site/print_table.h"

namespace vela::indexer {

namespace {

// Texts that are kept, of a few words each. A power of two.
constexpr size_t kKnownTexts = size_t{1} << 12;

// FNV-1a. Among a million words of addresses the chance that any two meet is one in thirty million.
uint64_t WordPrint(std::string_view word) { return AddressPrint(word); }

uint64_t HashOf(const LinkWord& word) {
  constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
  const uint64_t hash = (word.address * kOdd ^ word.word) * kOdd;
  return hash ^ hash >> 32;
}

uint64_t OrderOf(const LinkCount& count) { return uint64_t{count.word} << 32 | count.page; }

// Counts of one word and page, which may have several addresses, become one.
void AddUpPages(std::vector<LinkCount>& counts) {
  std::ranges::sort(counts, {}, OrderOf);
  size_t kept = 0;
  for (const LinkCount& count : counts) {
    if (kept != 0 && OrderOf(counts[kept - 1]) == OrderOf(count)) {
      counts[kept - 1].pages += count.pages;
    } else {
      counts[kept++] = count;
    }
  }
  counts.resize(kept);
}

}  // namespace

LinkWordCutter::LinkWordCutter(const std::string& base, const IndexCharset& charset,
                               int32_t stemming, RunCut runs)
    : base_(base), forms_(charset, stemming), runs_(runs) {}

const std::vector<uint64_t>& LinkWordCutter::WordsOfText(const std::string& text) {
  if (known_.empty()) known_.resize(kKnownTexts);
  KnownText& known = known_[TextHash(text) % kKnownTexts];
  if (known.text == text) return known.words;
  KnownText cut = {.text = text, .words = {}};
  const auto add = [&](std::string_view word) {
    if (!word.empty()) cut.words.push_back(WordPrint(word));
  };
  std::string_view rest = text;
  for (std::string_view next = NextChunk(rest); !next.empty(); next = NextChunk(rest)) {
    CutChunk(next, chunk_, runs_);
    for (const TextToken& token : chunk_.tokens) {
      if (token.sign == 0) add(forms_.Base(token.base));
    }
    for (const FoundForm& form : chunk_.forms) add(forms_.FoundBase(form.text));
  }
  known = std::move(cut);
  return known.words;
}

std::vector<LinkWord> LinkWordCutter::WordsOf(const Page& page) {
  std::vector<LinkWord> words;
  std::string respelled;
  for (const PageLink& link : page.content.links) {
    std::string_view address = link.address;
    // Nearly all are spelled as the base is.
    if (!address.starts_with(base_)) {
      if (!IsBelow(address, base_)) continue;
      respelled = InSpellingOf(base_, address);
      address = respelled;
    }
    if (address == page.facts.address || address == page.facts.canonical) continue;
    const uint64_t to = AddressPrint(address);
    for (const uint64_t word : WordsOfText(link.text)) words.push_back({to, word});
  }
  std::ranges::sort(words);
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return words;
}

bool CountsLinkTexts(const SiteConfig& config) {
  return config.linkTexts && ExtensionValue(config, "Ranking") != 0;
}

void LinkTexts::Add(std::span<const LinkWord> words) {
  // As in JoinWords, all places are asked for before the first one is needed.
  hashes_.clear();
  for (const LinkWord& word : words) {
    hashes_.push_back(HashOf(word));
    table_.Prefetch(hashes_.back());
  }
  for (const uint64_t hash : hashes_) {
    const uint32_t likely = table_.Guess(hash);
    if (likely != NumberTable::kNone) __builtin_prefetch(&counted_[likely], 1);
  }
  for (size_t i = 0; i < words.size(); ++i) {
    if (met_ >= mostCounted_) MakeRoom();
    ++met_;
    const auto next = static_cast<uint32_t>(counted_.size());
    const uint32_t number = table_.FindOrAdd(
        hashes_[i], next, [&](uint32_t known) { return counted_[known].word == words[i]; });
    if (number == next) counted_.push_back({words[i], 0});
    ++counted_[number].pages;
  }
}

// Half of the room at least, so that the work is paid for by what came in since.
void LinkTexts::MakeRoom() {
  while (counted_.size() > mostCounted_ / 2) {
    least_ *= 2;
    std::erase_if(counted_, [this](const Counted& each) { return each.pages < least_; });
  }
  table_.Clear();
  for (uint32_t i = 0; i < counted_.size(); ++i) {
    table_.FindOrAdd(HashOf(counted_[i].word), i, [](uint32_t) { return false; });
  }
  met_ = counted_.size();
}

std::vector<LinkCount> LinkTexts::Finish(const CanonicalAddresses& addresses,
                                         const Vocabulary& vocabulary) {
  table_ = NumberTable();
  PrintTable<uint32_t> numbers;  // in the vocabulary; kNone32 of what is no word of it
  for (const Counted& each : counted_) numbers.TryAdd(each.word.word, kNone32);
  for (uint32_t i = 0; i < vocabulary.words.size(); ++i) {
    uint32_t* const number = numbers.Find(WordPrint(TextOf(vocabulary.words[i], vocabulary)));
    if (number != nullptr) *number = i;
  }
  std::vector<LinkCount> counts;
  for (const Counted& each : counted_) {
    const uint32_t number = *numbers.Find(each.word.word);
    if (number == kNone32) continue;
    const std::optional<uint32_t> page = addresses.PageAt(each.word.address);
    if (page.has_value()) counts.push_back({number, *page, each.pages});
  }
  counted_ = std::vector<Counted>();  // {} would keep the memory
  AddUpPages(counts);
  return counts;
}

uint32_t LinkCountReader::BeginWord(uint32_t word) {
  word_ = word;
  size_t at = 0;
  while (at < counts_.size() && counts_[at].word < word) ++at;
  counts_ = counts_.subspan(at);
  uint32_t most = 0;
  for (const LinkCount& count : counts_) {
    if (count.word != word) break;
    most = std::max(most, count.pages);
  }
  return most;
}

uint32_t LinkCountReader::PagesTo(uint32_t page) {
  while (!counts_.empty() && counts_[0].word == word_ && counts_[0].page < page) {
    counts_ = counts_.subspan(1);
  }
  const bool isNext = !counts_.empty() && counts_[0].word == word_ && counts_[0].page == page;
  return isNext ? counts_[0].pages : 0;
}

}  // namespace vela::indexer
