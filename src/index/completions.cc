#include "index/completions.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "format/autocomplete.h"
#include "index/lookup_file.h"
#include "text/completion_fold.h"

namespace vela {

namespace {

template <typename Record>
Record RecordAt(std::string_view records, uint64_t i) {
  Record record;
  memcpy(&record, records.data() + i * sizeof record, sizeof record);
  return record;
}

// Takes so many records off the start. False when there are fewer.
template <typename Record>
bool TakeRecords(std::string_view& bytes, uint64_t count, std::string_view& records) {
  if (count > bytes.size() / sizeof(Record)) return false;
  records = bytes.substr(0, static_cast<size_t>(count) * sizeof(Record));
  bytes.remove_prefix(records.size());
  return true;
}

// The smallest line numbers that were added, ascending, each once.
class FirstLines {
 public:
  bool Takes(uint32_t line) const { return count_ < lines_.size() || line < lines_[count_ - 1]; }
  void Add(uint32_t line) {
    auto* const end = lines_.data() + count_;
    auto* const place = std::lower_bound(lines_.data(), end, line);
    if (place != end && *place == line) return;
    if (count_ < lines_.size()) ++count_;
    std::move_backward(place, lines_.data() + count_ - 1, lines_.data() + count_);
    *place = line;
  }
  bool Holds(uint32_t line) const { return std::ranges::binary_search(all(), line); }
  std::span<const uint32_t> all() const { return {lines_.data(), count_}; }

 private:
  std::array<uint32_t, Completions::kMostOfEach> lines_ = {};
  size_t count_ = 0;
};

std::string_view LongestWord(std::string_view typed) {
  std::string_view longest;
  while (!typed.empty()) {
    const std::string_view word = typed.substr(0, typed.find(' '));
    if (word.size() > longest.size()) longest = word;
    typed.remove_prefix(std::min(word.size() + 1, typed.size()));
  }
  return longest;
}

}  // namespace

bool Completions::Open(const IndexDirectory& directory) {
  return file_.Open(directory, kCompletionsFileName, false) &&
         autocompleteFile_.Open(directory, kAutoCompleteFileName, false) &&
         Use(file_.bytes(), autocompleteFile_.bytes());
}

bool Completions::Open(std::string_view bytes, std::string_view autocomplete) {
  return Use(bytes, autocomplete);
}

bool Completions::Use(std::string_view bytes, std::string_view autocomplete) {
  CompletionsHeader header;
  if (bytes.size() < sizeof header) return false;
  memcpy(&header, bytes.data(), sizeof header);
  bytes.remove_prefix(sizeof header);
  if (header.magic != kCompletionsMagic || !IsFileOf(header.autocomplete, autocomplete) ||
      !TakeRecords<CompletionLine>(bytes, header.lines, lines_) ||
      !TakeRecords<CompletionBeginning>(bytes, header.beginnings, beginnings_) ||
      bytes.size() != header.textBytes) {
    return false;
  }
  lineCount_ = header.lines;
  beginningCount_ = header.beginnings;
  texts_ = bytes;
  autocomplete_ = autocomplete;
  return true;
}

CompletionLine Completions::LineAt(uint64_t i) const { return RecordAt<CompletionLine>(lines_, i); }

CompletionBeginning Completions::BeginningAt(uint64_t i) const {
  return RecordAt<CompletionBeginning>(beginnings_, i);
}

// From a beginning to the end of its line.
std::string_view Completions::TextFrom(const CompletionBeginning& beginning) const {
  if (beginning.at >= texts_.size()) return {};
  const std::string_view rest = texts_.substr(beginning.at);
  return rest.substr(0, rest.find('\n'));
}

std::pair<uint64_t, uint64_t> Completions::RangeOf(std::string_view text) const {
  // The first beginning from `low` on of which the test does not hold any more.
  const auto pass = [this](uint64_t low, auto isPassed) {
    for (uint64_t high = beginningCount_; low < high;) {
      const uint64_t middle = low + (high - low) / 2;
      if (isPassed(TextFrom(BeginningAt(middle)))) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    return low;
  };
  const uint64_t first = pass(0, [text](std::string_view each) { return each < text; });
  return {first, pass(first, [text](std::string_view each) { return each.starts_with(text); })};
}

// The suggestion as it is shown; empty when no line begins there.
std::string_view Completions::SuggestionOf(const CompletionLine& line) const {
  if (line.start >= autocomplete_.size() ||
      (line.start > 0 && autocomplete_[line.start - 1] != '\n')) {
    return {};
  }
  const std::string_view rest = autocomplete_.substr(line.start);
  return rest.substr(0, rest.find_first_of(std::string_view("\r\n\0", 3)));
}

bool Completions::HoldsAll(const CompletionLine& line, std::string_view typed) const {
  if (line.text > texts_.size() || line.textLength > texts_.size() - line.text) return false;
  const std::string_view folded = texts_.substr(line.text, line.textLength);
  while (!typed.empty()) {
    const std::string_view word = typed.substr(0, typed.find(' '));
    if (!HoldsBeginning(folded, word)) return false;
    typed.remove_prefix(std::min(word.size() + 1, typed.size()));
  }
  return true;
}

size_t Completions::Find(std::string_view typed,
                         std::span<std::string_view, 2 * kMostOfEach> found) const {
  if (typed.empty()) return 0;
  FirstLines whole;   // begin with all that is typed
  FirstLines others;  // hold its words
  const auto [first, end] = RangeOf(typed);
  for (uint64_t i = first; i < end; ++i) {
    const CompletionBeginning beginning = BeginningAt(i);
    const uint32_t line = beginning.line & ~kCompletionOfLine;
    const bool isOfLine = (beginning.line & kCompletionOfLine) != 0;
    FirstLines& into = isOfLine ? whole : others;
    if (line < lineCount_ && into.Takes(line)) into.Add(line);
  }
  if (typed.find(' ') != typed.npos) {
    const auto [firstWith, endWith] = RangeOf(LongestWord(typed));
    for (uint64_t i = firstWith; i < endWith; ++i) {
      const uint32_t line = BeginningAt(i).line & ~kCompletionOfLine;
      if (line >= lineCount_ || !others.Takes(line)) continue;
      if (HoldsAll(LineAt(line), typed)) others.Add(line);
    }
  }
  size_t count = 0;
  for (const uint32_t line : whole.all()) {
    const std::string_view text = SuggestionOf(LineAt(line));
    if (!text.empty()) found[count++] = text;
  }
  for (const uint32_t line : others.all()) {
    if (whole.Holds(line)) continue;
    const std::string_view text = SuggestionOf(LineAt(line));
    if (!text.empty()) found[count++] = text;
  }
  return count;
}

}  // namespace vela
