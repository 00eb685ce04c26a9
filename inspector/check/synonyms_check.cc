#include "inspector/check/synonyms_check.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "format/synonyms.h"
#include "index/byte_cursor.h"
#include "inspector/check/stored_texts.h"
#include "inspector/check/word_map_check.h"
#include "inspector/findings/plain_text.h"

namespace vela::inspector {

namespace {

struct KeyLine {
  uint32_t start = 0;
  uint32_t first = 0;
};
struct AlternativeLine {
  uint32_t start = 0;
  uint32_t first = 0;
  uint32_t weight = 0;
};

size_t WordsOf(std::string_view text) {
  return static_cast<size_t>(std::ranges::count(text, ' ')) + 1;
}

bool IsOfWords(std::string_view text) {
  return !text.empty() && !text.starts_with(' ') && !text.ends_with(' ') &&
         text.find("  ") == text.npos && WordsOf(text) <= kSynonymWordsLimit;
}

class SynonymTables {
 public:
  SynonymTables(const CheckInput& input, const TextStarts& texts, std::string_view bytes)
      : input_(input), records_(input, texts, kSynonymsFileName, false), bytes_(bytes) {}

  void Run() {
    if (!HasForm()) {
      return Add(
          Fault::kUnreadable, kWholeFile,
          "its header does not fit its size of " + CountOfText(bytes_.size(), "byte", "bytes"));
    }
    if (static_cast<int64_t>(header_.keys) != input_.index.settings.Synonyms) {
      Add(Fault::kWrongCount, kWholeFile,
          CountOfText(header_.keys, "key", "keys") + ", but Synonyms is " +
              std::to_string(input_.index.settings.Synonyms));
    }
    uint32_t keyTexts = 0;
    for (uint32_t key = 0; key < header_.keys; ++key) keyTexts = CheckKey(key);
    for (uint32_t i = 0; i < header_.alternatives; ++i) CheckAlternative(i);
    if (KeyAt(0).start != 0 || KeyAt(0).first != 0 || AlternativeAt(0).start != keyTexts ||
        AlternativeAt(0).first != 0 || KeyAt(header_.keys).first != header_.alternatives ||
        AlternativeAt(header_.alternatives).start != header_.textBytes ||
        AlternativeAt(header_.alternatives).first != header_.records) {
      Add(Fault::kUnclaimed, kWholeFile, "texts, alternatives or records of no key");
    }
  }

 private:
  void Add(Fault fault, Place place, std::string detail) {
    input_.findings.Add(fault, kSynonymsFileName, place, std::move(detail));
  }

  bool HasForm() {
    if (bytes_.size() < sizeof header_) return false;
    memcpy(&header_, bytes_.data(), sizeof header_);
    alternativesAt_ = sizeof header_ + (size_t{header_.keys} + 1) * kSynonymKeySize;
    recordsAt_ = alternativesAt_ + (size_t{header_.alternatives} + 1) * kSynonymAlternativeSize;
    textsAt_ = recordsAt_ + size_t{header_.records} * kWordMapRecordSize;
    return header_.magic == kSynonymsMagic && bytes_.size() == textsAt_ + header_.textBytes;
  }

  uint32_t Number(size_t at) const {
    return static_cast<uint32_t>(ReadLittleEndian(bytes_, at, kSynonymNumberWidth));
  }
  static size_t KeyPlace(uint32_t key) { return sizeof(SynonymHeader) + key * kSynonymKeySize; }
  KeyLine KeyAt(uint32_t key) const {
    return {Number(KeyPlace(key)), Number(KeyPlace(key) + kSynonymNumberWidth)};
  }
  size_t AlternativePlace(uint32_t i) const {
    return alternativesAt_ + i * kSynonymAlternativeSize;
  }
  AlternativeLine AlternativeAt(uint32_t i) const {
    const size_t at = AlternativePlace(i);
    return {Number(at), Number(at + kSynonymNumberWidth), Number(at + 2 * kSynonymNumberWidth)};
  }
  bool HasText(uint32_t start, uint32_t end) const {
    return start <= end && end <= header_.textBytes;
  }
  std::string_view Text(uint32_t start, uint32_t end) const {
    return bytes_.substr(textsAt_ + start, end - start);
  }

  // Where the text of the key ends.
  uint32_t CheckKey(uint32_t key) {
    const Place place = Byte(KeyPlace(key));
    const KeyLine line = KeyAt(key);
    const KeyLine next = KeyAt(key + 1);
    if (!HasText(line.start, next.start) || line.first > next.first ||
        next.first > header_.alternatives) {
      Add(Fault::kBeyondEnd, place, "key " + std::to_string(key));
      return next.start;
    }
    const std::string_view text = Text(line.start, next.start);
    if (!IsOfWords(text) || !IsCleanText(text, IsUtf8(input_.index.settings))) {
      Add(Fault::kBadText, place, Quoted(text));
    }
    if (key > 0 && text <= former_) {
      Add(Fault::kWrongOrder, place, Quoted(text) + " behind " + Quoted(former_));
    }
    former_ = text;
    const uint32_t count = next.first - line.first;
    if (count == 0 || count > kSynonymAlternativesLimit) {
      Add(Fault::kWrongCount, place,
          Quoted(text) + ": " + CountOfText(count, "alternative", "alternatives"));
    }
    return next.start;
  }

  void CheckAlternative(uint32_t i) {
    const Place place = Byte(AlternativePlace(i));
    const AlternativeLine line = AlternativeAt(i);
    const AlternativeLine next = AlternativeAt(i + 1);
    if (!HasText(line.start, next.start) || line.first > next.first ||
        next.first > header_.records) {
      return Add(Fault::kBeyondEnd, place, "alternative " + std::to_string(i));
    }
    const std::string_view text = Text(line.start, next.start);
    if (!IsOfWords(text) || !IsCleanText(text, IsUtf8(input_.index.settings))) {
      return Add(Fault::kBadText, place, Quoted(text));
    }
    if (line.weight == 0 || line.weight > kWholeSynonymWeight) {
      Add(Fault::kBadWeight, place, Quoted(text) + ": " + std::to_string(line.weight) + " of 100");
    }
    const uint32_t count = next.first - line.first;
    if ((count != 0) != (WordsOf(text) > 1)) {
      Add(Fault::kWrongCount, place, Quoted(text) + ": " + CountOfText(count, "page", "pages"));
    }
    const size_t at = recordsAt_ + size_t{line.first} * kWordMapRecordSize;
    records_.Check({bytes_.substr(at, size_t{count} * kWordMapRecordSize)}, at, Quoted(text));
  }

  const CheckInput& input_;
  RecordCheck records_;
  std::string_view bytes_;
  SynonymHeader header_;
  size_t alternativesAt_ = 0;
  size_t recordsAt_ = 0;
  size_t textsAt_ = 0;
  std::string_view former_;  // the key before
};

}  // namespace

void CheckSynonyms(const CheckInput& input, const TextStarts& texts) {
  FileImage file;
  if (file.Open(input.index.directory, kSynonymsFileName, false)) {
    return SynonymTables(input, texts, file.bytes()).Run();
  }
  if (input.index.settings.Synonyms > 0) {
    input.findings.Add(Fault::kMissing, kSynonymsFileName, kWholeFile, "Synonyms is above 0");
  }
}

}  // namespace vela::inspector
