#include "inspector/check/suggestions_check.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_set>

#include "format/autocomplete.h"
#include "format/completions.h"
#include "format/keyword_line.h"
#include "index/lookup_file.h"
#include "inspector/check/stored_texts.h"
#include "inspector/findings/plain_text.h"
#include "text/completion_fold.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

namespace {

template <typename Record>
Record RecordAt(std::string_view bytes, uint64_t at) {
  Record record;
  memcpy(&record, bytes.data() + at, sizeof record);
  return record;
}

class CompletionTables {
 public:
  CompletionTables(const CheckInput& input, std::string_view bytes, std::string_view suggestions)
      : input_(input), bytes_(bytes), suggestions_(suggestions) {}

  void Run() {
    if (!HasForm()) {
      return Add(
          Fault::kUnreadable, kWholeFile,
          "its header does not fit its size of " + CountOfText(bytes_.size(), "byte", "bytes"));
    }
    if (!IsFileOf(header_.autocomplete, suggestions_)) {
      return Add(Fault::kOtherFile, kWholeFile, kAutoCompleteFileName);
    }
    CheckLines();
    CheckBeginnings();
  }

 private:
  void Add(Fault fault, Place place, std::string detail) {
    input_.findings.Add(fault, kCompletionsFileName, place, std::move(detail));
  }

  bool HasForm() {
    if (bytes_.size() < sizeof header_) return false;
    header_ = RecordAt<CompletionsHeader>(bytes_, 0);
    uint64_t left = bytes_.size() - sizeof header_;
    if (header_.magic != kCompletionsMagic || header_.lines > left / sizeof(CompletionLine)) {
      return false;
    }
    left -= header_.lines * sizeof(CompletionLine);
    if (header_.beginnings > left / sizeof(CompletionBeginning)) return false;
    left -= header_.beginnings * sizeof(CompletionBeginning);
    texts_ = bytes_.substr(bytes_.size() - static_cast<size_t>(left));
    return left == header_.textBytes;
  }

  static uint64_t LinePlace(uint64_t line) {
    return sizeof(CompletionsHeader) + line * sizeof(CompletionLine);
  }
  uint64_t BeginningPlace(uint64_t i) const {
    return LinePlace(header_.lines) + i * sizeof(CompletionBeginning);
  }

  // The lines of the suggestions one after another, with texts that follow each other.
  void CheckLines() {
    uint64_t text = 0;
    NumberedLines lines{suggestions_};
    for (uint64_t i = 0; i < header_.lines; ++i) {
      const auto line = RecordAt<CompletionLine>(bytes_, LinePlace(i));
      const Place place = Byte(LinePlace(i));
      const uint64_t start = suggestions_.size() - lines.rest.size();
      std::string_view suggestion;
      if (!lines.Next(suggestion) || line.start != start) {
        return Add(Fault::kBadReference, place,
                   "suggestion " + std::to_string(i) + " does not begin at byte " +
                       std::to_string(line.start));
      }
      if (line.text != text || line.textLength > texts_.size() - text) {
        return Add(Fault::kBeyondEnd, place, "the text of " + Quoted(suggestion));
      }
      const std::string_view folded = texts_.substr(line.text, line.textLength);
      if (!folded.empty() && !folded.ends_with('\n')) {
        Add(Fault::kWrongForm, place, "the text of " + Quoted(suggestion));
      }
      if (!IsCleanText(folded.substr(0, folded.find('\n')), true)) {
        Add(Fault::kBadText, place, Quoted(folded));
      }
      for (size_t at = 0; at < folded.size(); ++at) {
        const TextPlace within = PlaceOf(line, at);
        if (within.at < within.text.size() && BeginsWord(within.text, within.at)) ++expected_;
      }
      text += line.textLength;
    }
    if (!lines.rest.empty()) {
      Add(Fault::kWrongCount, kWholeFile,
          "less than the lines of " + std::string(kAutoCompleteFileName));
    }
    if (text != texts_.size()) Add(Fault::kUnclaimed, kWholeFile, "texts of no suggestion");
  }

  // One of the folded texts of a line, and a place in it.
  struct TextPlace {
    std::string_view text;
    size_t at = 0;
  };
  // `at` counts from the first of the texts of the line.
  TextPlace PlaceOf(const CompletionLine& line, size_t at) const {
    const std::string_view all = texts_.substr(line.text, line.textLength);
    const size_t before = at == 0 ? all.npos : all.rfind('\n', at - 1);
    const size_t start = before == all.npos ? 0 : before + 1;
    const size_t end = std::min(all.find('\n', start), all.size());
    return {all.substr(start, end - start), at - start};
  }

  void CheckBeginnings() {
    std::string_view former;
    for (uint64_t i = 0; i < header_.beginnings; ++i) {
      const auto beginning = RecordAt<CompletionBeginning>(bytes_, BeginningPlace(i));
      const Place place = Byte(BeginningPlace(i));
      const uint32_t number = beginning.line & ~kCompletionOfLine;
      if (number >= header_.lines || beginning.at >= texts_.size()) {
        Add(Fault::kBeyondEnd, place, "beginning " + std::to_string(i));
        continue;
      }
      const auto line = RecordAt<CompletionLine>(bytes_, LinePlace(number));
      if (beginning.at < line.text || beginning.at - line.text >= line.textLength ||
          line.text > texts_.size() || line.textLength > texts_.size() - line.text) {
        Add(Fault::kMisplaced, place, "beginning " + std::to_string(i));
        continue;
      }
      const auto [text, at] = PlaceOf(line, beginning.at - line.text);
      const bool isOfLine = (beginning.line & kCompletionOfLine) != 0;
      if (at >= text.size() || !BeginsWord(text, at) || isOfLine != (at == 0)) {
        Add(Fault::kBadReference, place, "no word begins there");
        continue;
      }
      const std::string_view rest = text.substr(at);
      if (rest < former) Add(Fault::kWrongOrder, place, Quoted(rest) + " behind " + Quoted(former));
      former = rest;
    }
    if (header_.beginnings != expected_) {
      Add(Fault::kWrongCount, kWholeFile,
          CountOfText(header_.beginnings, "beginning", "beginnings") + " of " +
              CountText(expected_) + " words");
    }
  }

  const CheckInput& input_;
  std::string_view bytes_;
  std::string_view suggestions_;
  CompletionsHeader header_;
  std::string_view texts_;
  uint64_t expected_ = 0;  // beginnings of words in all texts
};

}  // namespace

void CheckSuggestions(const CheckInput& input) {
  const Settings& settings = input.index.settings;
  const auto add = [&](Fault fault, Place place, std::string detail) {
    input.findings.Add(fault, kAutoCompleteFileName, place, std::move(detail));
  };
  FileImage file;
  if (!file.Open(input.index.directory, kAutoCompleteFileName, false)) {
    if (settings.UseAutoComplete == 1) add(Fault::kMissing, kWholeFile, {});
    return;
  }
  std::unordered_set<std::string_view> all;
  NumberedLines lines{file.bytes()};
  std::string_view line;
  while (lines.Next(line)) {
    const Place place = Line(lines.number);
    if (line.size() + 1 > KeywordLineLimit(settings.MaxKeyWordLineLen)) {
      add(Fault::kTooLong, place, CountOfText(line.size() + 1, "byte", "bytes"));
    }
    if (line.empty() || !lines.isWhole) add(Fault::kWrongForm, place, Quoted(line));
    if (!IsCleanText(line, IsUtf8(settings))) add(Fault::kBadText, place, Quoted(line));
    if (HasMarkup(line)) add(Fault::kUnsafeText, place, Quoted(line));
    if (!all.insert(line).second) add(Fault::kRepeated, place, Quoted(line));
  }
}

void CheckCompletions(const CheckInput& input) {
  FileImage file;
  FileImage suggestions;
  if (!file.Open(input.index.directory, kCompletionsFileName, false)) return;  // may be absent
  static_cast<void>(suggestions.Open(input.index.directory, kAutoCompleteFileName, false));
  CompletionTables(input, file.bytes(), suggestions.bytes()).Run();
}

}  // namespace vela::inspector
