#include "inspector/check/dictionary_check.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>

#include "format/dictionary.h"
#include "format/page_text.h"
#include "inspector/check/stored_texts.h"
#include "inspector/findings/plain_text.h"
#include "text/lower.h"
#include "text/numbers.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

namespace {

// As IsCleanText, but for what lower-casing makes of U+0130 (text/lower.h), in queries and in the
// words that they are compared with.
bool IsCleanWord(std::string_view word, bool utf8) {
  constexpr std::string_view kLoweredDottedI = "i\xB0";
  for (size_t at = utf8 ? word.find(kLoweredDottedI) : word.npos; at != word.npos;
       at = word.find(kLoweredDottedI)) {
    if (!IsCleanText(word.substr(0, at), utf8)) return false;
    word.remove_prefix(at + kLoweredDottedI.size());
  }
  return IsCleanText(word, utf8);
}

// What the lines add up to.
struct DictionaryCounts {
  uint64_t words = 0;
  uint64_t variants = 0;
  uint64_t wordBytes = 0;
  uint64_t variantBytes = 0;
};

class LineChecker {
 public:
  explicit LineChecker(const CheckInput& input)
      : input_(input),
        settings_(input.index.settings),
        lines_{input.index.dictionaryFile.bytes()} {}

  DictionaryCounts Run() {
    input_.progress.Begin(kDictionaryFileName, lines_.rest.size());
    const size_t size = lines_.rest.size();
    std::string_view line;
    while (Next(line)) {
      CheckWord(line);
      input_.progress.Step(size - lines_.rest.size());
    }
    return counts_;
  }

 private:
  bool Next(std::string_view& line) {
    if (!lines_.Next(line)) return false;
    if (!lines_.isWhole) Add(Fault::kWrongForm, "the last line has no line feed");
    if (line.size() > kDictionaryLineLimit) {
      Add(Fault::kTooLong, CountOfText(line.size(), "byte", "bytes"));
    }
    return true;
  }

  void Add(Fault fault, std::string detail) {
    input_.findings.Add(fault, kDictionaryFileName, Line(lines_.number), std::move(detail));
  }

  void CheckWord(std::string_view line) {
    const std::string_view whole = line;
    const std::string_view word = TakeWord(line);
    const std::string_view offset = TakeWord(line);
    const bool hasCount = !line.empty();
    if (word.empty() || !IsDecimal(offset) || (hasCount && !IsDecimal(line))) {
      Add(Fault::kWrongForm, Quoted(whole));
    }
    const bool isReserved = int64_t(counts_.words) <= settings_.DictReservedLimit;
    const int32_t variants = hasCount ? ReadDecimal32(line) : 0;
    if (isReserved) {
      if (ReadDecimal64(offset) != kNoWordList || variants != 0) {
        Add(Fault::kWrongForm, "the reserved entry " + Quoted(word) + " has pages or spellings");
      }
    } else {
      CheckText(word);
    }
    ++counts_.words;
    counts_.wordBytes += static_cast<uint64_t>(BasewordBufferBytes(word.size()));
    PassVariants(word, variants);
  }

  void CheckText(std::string_view word) {
    if (!IsCleanWord(word, IsUtf8(settings_))) Add(Fault::kBadText, Quoted(word));
    if (!words_.insert(word).second) Add(Fault::kRepeated, Quoted(word));
    if (!LowersQueries(settings_) || !IsUtf8(settings_)) return;
    std::string lower(word);
    LowerUtf8(lower.data(), lower.size());
    if (lower != word) Add(Fault::kWrongForm, Quoted(word) + " is not in lower case");
  }

  void PassVariants(std::string_view word, int32_t count) {
    if (count < 0 || count > static_cast<int32_t>(kTokenVariantLimit)) {
      Add(Fault::kWrongCount, Quoted(word) + " has " + std::to_string(count) + " spellings");
    }
    std::string_view line;
    for (int32_t i = 0; i < count; ++i) {
      if (!Next(line)) {
        return Add(Fault::kWrongCount, "the file ends in the spellings of " + Quoted(word));
      }
      if (line.empty() || line.size() > kVariantLimit) {
        Add(Fault::kWrongForm,
            "a spelling of " + Quoted(word) + " of " + CountOfText(line.size(), "byte", "bytes"));
      }
      if (line.find(' ') != line.npos || !IsCleanWord(line, IsUtf8(settings_))) {
        Add(Fault::kBadText, Quoted(line) + ", a spelling of " + Quoted(word));
      }
      ++counts_.variants;
      counts_.variantBytes += static_cast<uint64_t>(VariantBufferBytes(line.size()));
    }
  }

  const CheckInput& input_;
  const Settings& settings_;
  NumberedLines lines_;
  DictionaryCounts counts_;
  std::unordered_set<std::string_view> words_;
};

std::string StatusText(const DictionaryResult& result) {
  switch (result.status) {
    case DictionaryStatus::kOk:
      break;
    case DictionaryStatus::kCannotOpen:
      return "it cannot be opened";
    case DictionaryStatus::kNoMemory:
      return "there is no memory for NumKeywords";
    case DictionaryStatus::kNoBaseWordBlock:
      return "OutputBasewordBufferSize is below 1";
    case DictionaryStatus::kNoVariantBlock:
      return "OutputVariantBufferSize is below 0";
    case DictionaryStatus::kCorruptEntry:
      return "word " + std::to_string(result.entries) + " has no offset";
    case DictionaryStatus::kBaseWordBlockFull:
      return "OutputBasewordBufferSize is full at word " + std::to_string(result.entries);
    case DictionaryStatus::kVariantBlockFull:
      return "OutputVariantBufferSize is full at word " + std::to_string(result.entries);
    case DictionaryStatus::kTooManyEntries:
      return "there are more words than NumKeywords";
  }
  return {};
}

void CompareCount(std::string_view key, uint64_t found, int32_t said, Findings& findings) {
  if (static_cast<int64_t>(found) == said) return;
  findings.Add(Fault::kWrongCount, kDictionaryFileName, kWholeFile,
               CountText(found) + ", but " + std::string(key) + " is " + std::to_string(said));
}

}  // namespace

std::vector<uint32_t> CheckDictionary(const CheckInput& input) {
  const OpenedIndex& index = input.index;
  const Settings& settings = index.settings;
  if (index.dictionaryResult.status != DictionaryStatus::kOk) {
    input.findings.Add(Fault::kUnreadable, kDictionaryFileName, kWholeFile,
                       StatusText(index.dictionaryResult));
    input.findings.SetUnusable();
  }
  const DictionaryCounts counts = LineChecker(input).Run();
  CompareCount("NumKeywords", counts.words, settings.NumKeywords, input.findings);
  CompareCount("NumVariants", counts.variants, settings.NumVariants, input.findings);
  if (static_cast<int64_t>(counts.wordBytes) > settings.OutputBasewordBufferSize) {
    input.findings.Add(Fault::kWrongSize, kDictionaryFileName, kWholeFile,
                       "its words take " + CountText(counts.wordBytes) +
                           " bytes of OutputBasewordBufferSize, which is " +
                           std::to_string(settings.OutputBasewordBufferSize));
  }
  const int64_t variantRoom = settings.OutputVariantBufferSize;
  if (variantRoom != 0 && static_cast<int64_t>(counts.variantBytes) > variantRoom) {
    input.findings.Add(Fault::kWrongSize, kDictionaryFileName, kWholeFile,
                       "its spellings take " + CountText(counts.variantBytes) +
                           " bytes of OutputVariantBufferSize, which is " +
                           std::to_string(variantRoom));
  }
  std::vector<uint32_t> spellings(WordCount(index));
  for (uint32_t word = 0; word < spellings.size(); ++word) {
    if (!index.dictionary.HasVariants(static_cast<int32_t>(word))) continue;
    VariantReader reader(index.dictionary, index.dictionary.EntryAt(static_cast<int32_t>(word)));
    std::string_view variant;
    while (reader.Next(variant)) ++spellings[word];
  }
  return spellings;
}

}  // namespace vela::inspector
