#include "inspector/check/spelling_check.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "format/corrections.h"
#include "format/keyword_line.h"
#include "format/spelling.h"
#include "index/byte_cursor.h"
#include "inspector/check/stored_texts.h"
#include "inspector/findings/plain_text.h"
#include "text/numbers.h"
#include "text/slips.h"
#include "text/sound_key.h"

namespace vela::inspector {

namespace {

class SpellingLines {
 public:
  explicit SpellingLines(const CheckInput& input) : input_(input) {}

  // How many there are.
  size_t Run(std::string_view bytes) {
    lines_.rest = bytes;
    std::string_view line;
    while (lines_.Next(line)) CheckLine(line);
    return lines_.number;
  }

 private:
  void Add(Fault fault, std::string detail) {
    input_.findings.Add(fault, kSpellingFileName, Line(lines_.number), std::move(detail));
  }

  void CheckLine(std::string_view line) {
    if (line.size() + 1 > KeywordLineLimit(input_.index.settings.MaxKeyWordLineLen)) {
      Add(Fault::kTooLong, CountOfText(line.size() + 1, "byte", "bytes"));
    }
    const std::string_view whole = line;
    const std::string_view key = TakeWord(line);
    if (key.empty() || line.empty() || !lines_.isWhole) Add(Fault::kWrongForm, Quoted(whole));
    if (!former_.empty() && key <= former_) {
      Add(Fault::kWrongOrder, Quoted(key) + " behind " + Quoted(former_));
    }
    former_ = key;
    size_t words = 0;
    int32_t pages = INT32_MAX;
    for (; !line.empty(); ++words) {
      const std::string_view number = TakeWord(line);
      if (!IsDecimal(number)) {
        Add(Fault::kWrongForm, Quoted(whole));
      } else if (ReadDecimal32(number) != kNoSpellingWord) {
        CheckWord(key, ReadDecimal32(number), pages);
      }
    }
    if (words > kSpellingWordLimit) {
      Add(Fault::kWrongCount, CountOfText(words, "word", "words") + " of one key");
    }
  }

  // `pages`: on how many the word before is.
  void CheckWord(std::string_view key, int32_t number, int32_t& pages) {
    const OpenedIndex& index = input_.index;
    if (WordCount(index) == 0) return;
    if (number < 0 || !IsSearchedWord(index, static_cast<uint32_t>(number))) {
      return Add(Fault::kUnknownWord, std::to_string(number));
    }
    const std::string_view word = index.dictionary.WordAt(number);
    if (View(MakeSoundKey(word)) != key) {
      Add(Fault::kOtherContent, Quoted(word) + " does not sound as " + Quoted(key));
    }
    const int32_t found = ListOf(index, static_cast<uint32_t>(number)).size();
    if (found > pages)
      Add(Fault::kWrongOrder, Quoted(word) + " is on more pages than the word before");
    pages = found;
  }

  const CheckInput& input_;
  NumberedLines lines_;
  std::string_view former_;  // the key before
};

// The tables of a corrections file that lie in it, as their header says.
class CorrectionTables {
 public:
  explicit CorrectionTables(std::string_view bytes) : bytes_(bytes) {
    if (bytes.size() >= sizeof header_) memcpy(&header_, bytes.data(), sizeof header_);
  }

  const CorrectionHeader& header() const { return header_; }
  bool IsOfForm() const {
    return bytes_.size() >= sizeof header_ && header_.magic == kCorrectionsMagic &&
           header_.words <= kCorrectionWordLimit && bytes_.size() == TextsAt() + header_.textBytes;
  }
  uint32_t LetterSetAt(uint32_t word) const {
    return Number(sizeof header_ + word * kCorrectionLetterSetWidth);
  }
  uint32_t PagesAt(uint32_t word) const {
    return Number(PagesTable() + word * kCorrectionPagesWidth);
  }
  size_t StartPlace(uint32_t word) const { return StartsTable() + word * kCorrectionStartWidth; }
  uint32_t StartAt(uint32_t word) const { return Number(StartPlace(word)); }
  std::string_view Text(uint32_t start, uint32_t end) const {
    return bytes_.substr(TextsAt() + start, end - start);
  }

 private:
  size_t PagesTable() const {
    return sizeof header_ + size_t{header_.words} * kCorrectionLetterSetWidth;
  }
  size_t StartsTable() const {
    return PagesTable() + size_t{header_.words} * kCorrectionPagesWidth;
  }
  size_t TextsAt() const {
    return StartsTable() + (size_t{header_.words} + 1) * kCorrectionStartWidth;
  }
  uint32_t Number(size_t at) const {
    return static_cast<uint32_t>(ReadLittleEndian(bytes_, at, sizeof(uint32_t)));
  }

  std::string_view bytes_;
  CorrectionHeader header_;
};

// The words of `count` letters, from `first` up to `end`.
void CheckGroup(const CheckInput& input, const CorrectionTables& tables, size_t count,
                uint32_t first, uint32_t end) {
  const bool utf8 = IsUtf8(input.index.settings);
  uint32_t pages = UINT32_MAX;
  for (uint32_t word = first; word < end; ++word) {
    const auto add = [&](Fault fault, const std::string& detail) {
      input.findings.Add(fault, kCorrectionsFileName, Byte(tables.StartPlace(word)),
                         "word " + std::to_string(word) + detail);
    };
    const uint32_t start = tables.StartAt(word);
    const uint32_t textEnd = tables.StartAt(word + 1);
    if (start > textEnd || textEnd > tables.header().textBytes) {
      add(Fault::kBeyondEnd, ": its text");
      continue;
    }
    const std::string_view text = tables.Text(start, textEnd);
    WordLetters letters;
    if (!ReadLetters(text, utf8, letters) || letters.count != count) {
      add(Fault::kBadText,
          ", " + Quoted(text) + ": not of " + CountOfText(count, "letter", "letters"));
      continue;
    }
    if (LetterSetOf(letters) != tables.LetterSetAt(word)) {
      add(Fault::kOtherContent, ", " + Quoted(text) + ": its set of letters is another");
    }
    const uint32_t found = tables.PagesAt(word);
    if (found == 0 || found > PageCount(input.index)) {
      add(Fault::kUnknownPage, ", " + Quoted(text) + ": on " + CountOfText(found, "page", "pages"));
    }
    if (found > pages) add(Fault::kWrongOrder, ", " + Quoted(text));
    pages = found;
  }
}

}  // namespace

void CheckSpelling(const CheckInput& input) {
  const Settings& settings = input.index.settings;
  FileImage file;
  if (!file.Open(input.index.directory, kSpellingFileName, false)) {
    if (settings.Spelling == 1) {
      input.findings.Add(Fault::kMissing, kSpellingFileName, kWholeFile, {});
      input.findings.SetUnusable();
    }
    return;
  }
  const size_t lines = SpellingLines(input).Run(file.bytes());
  if (static_cast<int64_t>(lines) != settings.NumSpellings) {
    input.findings.Add(Fault::kWrongCount, kSpellingFileName, kWholeFile,
                       CountOfText(lines, "line", "lines") + ", but NumSpellings is " +
                           std::to_string(settings.NumSpellings));
  }
}

void CheckCorrections(const CheckInput& input) {
  FileImage file;
  if (!file.Open(input.index.directory, kCorrectionsFileName, false)) return;  // may be absent
  const CorrectionTables tables(file.bytes());
  const auto add = [&](Fault fault, std::string detail) {
    input.findings.Add(fault, kCorrectionsFileName, kWholeFile, std::move(detail));
  };
  if (!tables.IsOfForm()) {
    return add(Fault::kUnreadable, "its header does not fit its size of " +
                                       CountOfText(file.bytes().size(), "byte", "bytes"));
  }
  const auto& groups = tables.header().groups;
  if (groups.front() != 0 || groups.back() != tables.header().words ||
      !std::ranges::is_sorted(groups)) {
    return add(Fault::kWrongOrder, "the groups of words of as many letters");
  }
  for (size_t count = 0; count + 1 < groups.size(); ++count) {
    CheckGroup(input, tables, count, groups[count], groups[count + 1]);
  }
  if (tables.StartAt(0) != 0 ||
      tables.StartAt(tables.header().words) != tables.header().textBytes) {
    add(Fault::kUnclaimed, "texts of no word");
  }
  if (groups[kCorrectionLettersLeast] != 0) {
    add(Fault::kWrongForm,
        "words of less than " + std::to_string(kCorrectionLettersLeast) + " letters");
  }
}

}  // namespace vela::inspector
