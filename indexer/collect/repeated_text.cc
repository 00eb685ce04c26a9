#include "indexer/collect/repeated_text.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "indexer/collect/shingles.h"

namespace vela::indexer {

namespace {

constexpr uint32_t kLeastPages = 10;
// Six words in a row that were met on so few pages are forgotten when there are many: what most of
// the pages have is met often from the start.
constexpr size_t kKnownLimit = size_t{1} << 20;

// A text, its words' places in it and their hashes.
struct Words {
  explicit Words(std::string_view text) {
    AddWordHashes(text, hashes);
    for (size_t at = text.find_first_not_of(' '); at < text.size();) {
      const size_t end = std::min(text.find(' ', at), text.size());
      ends.push_back(end);
      begins.push_back(at);
      at = text.find_first_not_of(' ', end);
    }
  }
  uint64_t ShingleAt(size_t word) const {
    return ShingleHash(std::span(hashes).subspan(word, kRepeatedWords));
  }

  std::vector<uint64_t> hashes;
  std::vector<size_t> begins;
  std::vector<size_t> ends;
};

// Takes the stretches out of one text.
void LeaveOut(const std::vector<uint64_t>& repeated, std::string& text,
              std::vector<std::string>* taken) {
  const Words words(text);
  std::string left;
  size_t kept = 0;  // up to here the text is in `left` or taken
  size_t word = 0;
  while (word + kRepeatedWords <= words.hashes.size()) {
    const size_t first = word;
    while (word + kRepeatedWords <= words.hashes.size() &&
           std::ranges::binary_search(repeated, words.ShingleAt(word))) {
      ++word;
    }
    if (word == first) {
      ++word;
      continue;
    }
    word += kRepeatedWords - 1;  // behind the last of the stretch
    const size_t begin = words.begins[first];
    const size_t end = words.ends[word - 1];
    left.append(text, kept, begin - kept);
    if (taken != nullptr) taken->push_back(text.substr(begin, end - begin));
    kept = end;
  }
  if (kept == 0) return;
  left.append(text, kept);
  text = std::move(left);
}

}  // namespace

void LeaveOutRepeated(const std::vector<uint64_t>& repeated, std::vector<TextRun>& body,
                      std::vector<std::string>* taken) {
  if (repeated.empty()) return;
  for (TextRun& run : body) {
    if (run.headingLevel == 0) LeaveOut(repeated, run.text, taken);
  }
  std::erase_if(body, [](const TextRun& run) {
    return run.anchor.empty() && run.text.find_first_not_of(' ') == run.text.npos;
  });
}

void RepeatedText::Add(const std::vector<TextRun>& body) {
  ++pages_;
  for (const TextRun& run : body) {
    if (run.headingLevel != 0) continue;
    const Words words(run.text);
    for (size_t i = 0; i + kRepeatedWords <= words.hashes.size(); ++i) {
      Count& count = counts_[words.ShingleAt(i)];
      if (count.lastPage == pages_) continue;
      count.lastPage = pages_;
      ++count.pages;
    }
  }
  if (counts_.size() <= kKnownLimit) return;
  std::erase_if(counts_, [this](const auto& each) { return each.second.pages * 8 < pages_; });
}

std::vector<uint64_t> RepeatedText::Repeated() const {
  std::vector<uint64_t> repeated;
  for (const auto& [hash, count] : counts_) {
    if (count.pages >= kLeastPages && count.pages * 2 > pages_) repeated.push_back(hash);
  }
  std::ranges::sort(repeated);
  return repeated;
}

}  // namespace vela::indexer
