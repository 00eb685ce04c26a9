#include "index/dictionary.h"

#include <algorithm>
#include <cstring>

#include "text/numbers.h"

namespace vela {

namespace {

constexpr int64_t kTableBytesPerWord = 20;

constexpr std::string_view kVariantEnds = " \r\n";

// Takes a token off the text: leading `ends` characters are passed over, and the one behind the
// token goes with it.
std::string_view TakeToken(std::string_view& text, std::string_view ends) {
  const size_t first = text.find_first_not_of(ends);
  if (first == text.npos) {
    text = {};
    return {};
  }
  text.remove_prefix(first);
  const std::string_view token = text.substr(0, text.find_first_of(ends));
  text.remove_prefix(std::min(token.size() + 1, text.size()));
  return token;
}

std::string_view TakeUpToBlank(std::string_view& text) {
  size_t at = 0;
  while (at < text.size() && text[at] == ' ') ++at;
  const size_t start = at;
  while (at < text.size() && text[at] != ' ') ++at;
  const std::string_view token = text.substr(start, at - start);
  text.remove_prefix(std::min(at + 1, text.size()));
  return token;
}

// Reads the numbers behind the word of a base-word line.
void ReadNumbers(std::string_view rest, int64_t& offset, int32_t& variantCount) {
  offset = 0;
  variantCount = 0;
  const std::string_view offsetToken = TakeUpToBlank(rest);
  if (offsetToken.empty()) return;
  offset = ReadDecimalWrap64(offsetToken);
  variantCount = ReadDecimalWrap32(TakeToken(rest, kVariantEnds));
}

// The same when only the count is wanted: the usual line, whose count is one digit or absent, is
// read without looking at the offset digit by digit.
int32_t ReadVariantCount(std::string_view rest) {
  if (rest.size() >= 3 && rest[rest.size() - 2] == ' ' && rest.back() >= '0' &&
      rest.back() <= '9' && rest[0] != ' ' &&
      memchr(rest.data(), ' ', rest.size() - 2) == nullptr) {
    return rest.back() - '0';
  }
  int64_t offset = 0;
  int32_t count = 0;
  ReadNumbers(rest, offset, count);
  return count;
}

bool IsStored(std::string_view variant) {
  return !variant.empty() && variant.size() <= kVariantLimit;
}

std::string_view VariantOf(std::string_view line) { return TakeToken(line, kVariantEnds); }

// Takes the next complete line, up to a NUL in it; false when there is none or it is too long.
bool TakeLine(std::string_view& rest, std::string_view& line, bool mayHoldNul) {
  const auto* end = static_cast<const char*>(memchr(rest.data(), '\n', rest.size()));
  if (end == nullptr) return false;
  const auto length = static_cast<size_t>(end - rest.data());
  if (length > kDictionaryLineLimit) return false;
  line = rest.substr(0, length);
  if (mayHoldNul) line = UpToNul(line);
  rest.remove_prefix(length + 1);
  return true;
}

// How many variant lines the base-word line says to follow; 0 or less for none.
int32_t VariantLinesBehind(std::string_view line, std::string_view word) {
  const char* const wordEnd = word.data() + word.size();
  const char* const lineEnd = line.data() + line.size();
  if (wordEnd == lineEnd) return 0;
  return ReadVariantCount({wordEnd + 1, static_cast<size_t>(lineEnd - wordEnd - 1)});
}

// The size of the block that the variants are taken to lie in, each with two bytes more.
int64_t VariantBlockSize(const Settings& settings) {
  return settings.OutputVariantBufferSize != 0 ? settings.OutputVariantBufferSize
                                               : settings.NumVariants * kMeanVariantBufferBytes;
}

// What a variant line takes of that block; nothing when its variant is not stored.
int64_t VariantSize(std::string_view line) {
  const std::string_view variant = VariantOf(line);
  return IsStored(variant) ? VariantBufferBytes(variant.size()) : 0;
}

// Finds the word of a base-word line: empty when the line holds only blanks. False when it holds
// none at all.
bool FindWord(std::string_view line, std::string_view& word) {
  const auto* blank = static_cast<const char*>(memchr(line.data(), ' ', line.size()));
  if (blank == nullptr) return false;
  const char* start = line.data();
  if (blank == start) {
    const char* const end = line.data() + line.size();
    while (start < end && *start == ' ') ++start;
    blank = std::find(start, end, ' ');
  }
  word = {start, static_cast<size_t>(blank - start)};
  return true;
}

}  // namespace

DictionaryResult Dictionary::Load(const IndexDirectory& directory, const Settings& settings) {
  if (!file_.Open(directory, kDictionaryFileName, true)) return {DictionaryStatus::kCannotOpen};
  return Load(file_.bytes(), settings);
}

DictionaryResult Dictionary::Load(std::string_view bytes, const Settings& settings) {
  bytes_ = bytes;
  count_ = 0;
  // The shortest base-word line has three bytes, its line feed included.
  const int64_t words = int64_t{settings.NumKeywords} + 1;
  const size_t wanted = static_cast<size_t>(
      std::min<int64_t>(std::max<int64_t>(words, 0), static_cast<int64_t>(bytes.size() / 2) + 2));
  if (settings.NumKeywords < 0 || words * kTableBytesPerWord > INT32_MAX ||
      bytes.size() > UINT32_MAX || !starts_.TryAllocate(wanted) ||
      !variantBits_.TryAllocate(wanted / 64 + 1)) {
    return {DictionaryStatus::kNoMemory};
  }
  if (settings.OutputBasewordBufferSize <= 0) return {DictionaryStatus::kNoBaseWordBlock};
  const int64_t variantBlock = VariantBlockSize(settings);
  if (variantBlock < 0 || variantBlock > INT32_MAX) return {DictionaryStatus::kNoVariantBlock};
  return ReadLines(settings);
}

DictionaryResult Dictionary::ReadLines(const Settings& settings) {
  if (bytes_.empty()) return {};
  const bool mayHoldNul = memchr(bytes_.data(), '\0', bytes_.size()) != nullptr;
  int64_t baseWordRoom = settings.OutputBasewordBufferSize;
  int64_t variantRoom = VariantBlockSize(settings);
  int32_t variantLines = 0;  // still to come for the last entry
  int32_t entries = 0;
  std::string_view rest = bytes_;
  std::string_view line;
  while (TakeLine(rest, line, mayHoldNul)) {
    if (variantLines > 0) {
      --variantLines;
      variantRoom -= VariantSize(line);
      if (variantRoom < 0) return {DictionaryStatus::kVariantBlockFull, entries};
      continue;
    }
    std::string_view word;
    if (!FindWord(line, word)) return {DictionaryStatus::kCorruptEntry, entries};
    if (word.empty()) continue;  // the next line takes the entry
    baseWordRoom -= BasewordBufferBytes(word.size());
    if (baseWordRoom < 0) return {DictionaryStatus::kBaseWordBlockFull, entries};
    const auto number = static_cast<size_t>(entries);
    starts_[number] = static_cast<uint32_t>(word.data() - bytes_.data());
    variantLines = VariantLinesBehind(line, word);
    if (variantLines > 0) variantBits_[number / 64] |= uint64_t{1} << (number % 64);
    ++entries;
    if (entries > settings.NumKeywords) return {DictionaryStatus::kTooManyEntries, entries};
  }
  bytes_ = bytes_.substr(0, bytes_.size() - rest.size());
  count_ = entries;
  return {};
}

void Dictionary::Release() {
  file_.Close();
  bytes_ = {};
  starts_.Release();
  variantBits_.Release();
  count_ = 0;
}

std::string_view Dictionary::WordAt(int32_t number) const {
  const size_t start = starts_[static_cast<size_t>(number)];
  size_t end = start;
  while (bytes_[end] != ' ' && bytes_[end] != '\n' && bytes_[end] != '\0') ++end;
  return bytes_.substr(start, end - start);
}

DictEntry Dictionary::EntryAt(int32_t number) const {
  DictEntry entry;
  entry.word = WordAt(number);
  const auto behindWord =
      static_cast<size_t>(entry.word.data() - bytes_.data()) + entry.word.size();
  const size_t lineEnd = bytes_.find('\n', behindWord);
  entry.end = lineEnd + 1;
  const std::string_view line = UpToNul(bytes_.substr(behindWord, lineEnd - behindWord));
  if (!line.empty()) ReadNumbers(line.substr(1), entry.offset, entry.variantCount);
  return entry;
}

int32_t Dictionary::FindExact(std::string_view word, int32_t from) const {
  if (word.empty() || word.find_first_of(kVariantEnds.substr(0, 1)) != word.npos) return -1;
  const char* const base = bytes_.data();
  // A word that fits into eight bytes, with the one behind it, is compared in one step.
  uint64_t wanted = 0;
  uint64_t mask = 0;
  const size_t compared = std::min<size_t>(word.size(), sizeof wanted);
  memcpy(&wanted, word.data(), compared);
  mask = compared == sizeof mask ? ~uint64_t{0} : (uint64_t{1} << (8 * compared)) - 1;
  for (int32_t number = from; number < count_; ++number) {
    const size_t start = starts_[static_cast<size_t>(number)];
    if (start + sizeof wanted <= bytes_.size()) {
      uint64_t found = 0;
      memcpy(&found, base + start, sizeof found);
      if ((found & mask) != wanted) continue;
    }
    if (WordAt(number) == word) return number;
  }
  return -1;
}

std::string_view Dictionary::DisplayText(int32_t number, int32_t variant) const {
  const DictEntry entry = EntryAt(number);
  if (variant < 1) return entry.word;
  VariantReader reader(*this, entry);
  std::string_view text;
  for (int32_t i = 0; i < variant; ++i) {
    if (!reader.Next(text)) return entry.word;
  }
  return text;
}

VariantReader::VariantReader(const Dictionary& dictionary, const DictEntry& entry)
    : rest_(dictionary.bytes_.substr(entry.end)), left_(entry.variantCount) {}

bool VariantReader::Next(std::string_view& variant) {
  while (left_ > 0) {
    --left_;
    std::string_view line;
    if (!TakeLine(rest_, line, true)) break;
    variant = VariantOf(line);
    const bool stored = IsStored(variant);
    // A word whose first variant was dropped has none.
    if (first_ && !stored) break;
    first_ = false;
    if (stored) return true;
  }
  left_ = 0;
  return false;
}

}  // namespace vela
