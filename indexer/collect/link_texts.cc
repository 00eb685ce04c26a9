#include "indexer/collect/link_texts.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "indexer/config/extensions.h"
#include "indexer/site/address.h"

namespace vela::indexer {

namespace {

// FNV-1a. Among a million words of addresses the chance that any two meet is one in thirty million.
uint64_t WordPrint(std::string_view word) { return AddressPrint(word); }

struct NumberOfWord {
  uint64_t fingerprint = 0;
  uint32_t word = 0;
};

std::vector<NumberOfWord> NumbersByFingerprint(const Vocabulary& vocabulary) {
  std::vector<NumberOfWord> numbers;
  numbers.reserve(vocabulary.words.size());
  for (uint32_t i = 0; i < vocabulary.words.size(); ++i) {
    numbers.push_back({WordPrint(TextOf(vocabulary.words[i], vocabulary)), i});
  }
  std::ranges::sort(numbers, {}, &NumberOfWord::fingerprint);
  return numbers;
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

std::vector<LinkWord> LinkWordsOf(const Page& page, const std::string& base, WordForms& forms,
                                  RunCut runs) {
  std::vector<LinkWord> words;
  ChunkTokens chunk;
  for (const PageLink& link : page.content.links) {
    if (!IsBelow(link.address, base)) continue;
    const std::string address = InSpellingOf(base, link.address);
    if (address == page.facts.address || address == page.facts.canonical) continue;
    const uint64_t to = AddressPrint(address);
    const auto add = [&](std::string_view word) {
      if (!word.empty()) words.push_back({to, WordPrint(word)});
    };
    std::string_view text = link.text;
    for (std::string_view cut = NextChunk(text); !cut.empty(); cut = NextChunk(text)) {
      CutChunk(cut, chunk, runs);
      for (const TextToken& token : chunk.tokens) {
        if (token.sign == 0) add(forms.Base(token.base));
      }
      for (const FoundForm& form : chunk.forms) add(forms.FoundBase(form.text));
    }
  }
  std::ranges::sort(words);
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return words;
}

bool CountsLinkTexts(const SiteConfig& config) {
  return config.linkTexts && ExtensionValue(config, "Ranking") != 0;
}

void LinkTexts::Add(std::span<const LinkWord> words) {
  for (const LinkWord& word : words) {
    if (counted_.size() >= mostCounted_) MakeRoom();
    counted_.push_back({word, 1});
  }
}

void LinkTexts::AddUp() {
  std::ranges::sort(counted_, {}, &Counted::word);
  size_t kept = 0;
  for (const Counted& each : counted_) {
    if (kept != 0 && counted_[kept - 1].word == each.word) {
      counted_[kept - 1].pages += each.pages;
    } else {
      counted_[kept++] = each;
    }
  }
  counted_.resize(kept);
}

// Half of the room at least, so that the sorting is paid for by what came in since.
void LinkTexts::MakeRoom() {
  AddUp();
  while (counted_.size() > mostCounted_ / 2) {
    least_ *= 2;
    std::erase_if(counted_, [this](const Counted& each) { return each.pages < least_; });
  }
}

std::vector<LinkCount> LinkTexts::Finish(const CanonicalAddresses& addresses,
                                         const Vocabulary& vocabulary) {
  AddUp();
  std::ranges::sort(counted_, {}, [](const Counted& each) { return each.word.word; });
  const std::vector<NumberOfWord> numbers = NumbersByFingerprint(vocabulary);
  std::vector<LinkCount> counts;
  auto number = numbers.begin();
  for (const Counted& each : counted_) {
    while (number != numbers.end() && number->fingerprint < each.word.word) ++number;
    if (number == numbers.end()) break;
    if (number->fingerprint != each.word.word) continue;
    const std::optional<uint32_t> page = addresses.PageAt(each.word.address);
    if (page.has_value()) counts.push_back({number->word, *page, each.pages});
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
