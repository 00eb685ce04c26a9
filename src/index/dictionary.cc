#include "index/dictionary.h"

#include <algorithm>
#include <cstring>

#include "text/find_folded.h"
#include "text/fixed_text.h"
#include "text/low_bytes.h"
#include "text/numbers.h"

namespace vela {

namespace {

constexpr int64_t kTableBytesPerWord = 20;

constexpr std::string_view kVariantEnds = " \r\n";

// Whether the memory of a process can hold the tables for so many words.
bool IsCountHeld(int32_t numKeywords) {
  return numKeywords >= 0 && (int64_t{numKeywords} + 1) * kTableBytesPerWord <= INT32_MAX;
}

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

bool IsStored(std::string_view variant) {
  return !variant.empty() && variant.size() <= kVariantLimit;
}

std::string_view VariantOf(std::string_view line) { return TakeToken(line, kVariantEnds); }

// Takes the next complete line, up to a NUL in it; false when there is none or it is too long.
bool TakeLine(std::string_view& rest, std::string_view& line) {
  const auto* end = static_cast<const char*>(memchr(rest.data(), '\n', rest.size()));
  if (end == nullptr) return false;
  const auto length = static_cast<size_t>(end - rest.data());
  if (length > kDictionaryLineLimit) return false;
  line = UpToNul(rest.substr(0, length));
  rest.remove_prefix(length + 1);
  return true;
}

// How many variant lines the base-word line says to follow; 0 or less for none.
int32_t VariantLinesBehind(std::string_view line, std::string_view word) {
  const char* const wordEnd = word.data() + word.size();
  const char* const lineEnd = line.data() + line.size();
  if (wordEnd == lineEnd) return 0;
  int64_t offset = 0;
  int32_t count = 0;
  ReadNumbers({wordEnd + 1, static_cast<size_t>(lineEnd - wordEnd - 1)}, offset, count);
  return count;
}

// The size of the block that the variants are taken to lie in, each with two bytes more.
int64_t VariantBlockSize(const Settings& settings) {
  return settings.OutputVariantBufferSize != 0 ? settings.OutputVariantBufferSize
                                               : settings.NumVariants * kMeanVariantBufferBytes;
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

// One line of the file.
struct DictionaryLine {
  std::string_view text;     // the base word, or the variant
  bool hasWord = false;      // of a base word's line, whose word is empty where it has blanks alone
  int32_t variantLines = 0;  // how many follow a base word; 0 or less for none
};

// Goes through the lines in one pass over the bytes up to a blank. Lines in the usual form, as an
// indexer writes them, are taken apart by these places alone.
class LineSplitter {
 public:
  explicit LineSplitter(std::string_view bytes) : bytes_(bytes), low_(bytes) {}

  // Each takes the next complete line; false when there is none or it is too long.
  bool NextBaseWord(DictionaryLine& line) {
    const size_t wordEnd = low_.Next();
    if (wordEnd == bytes_.size()) return false;
    if (bytes_[wordEnd] != ' ' || wordEnd == start_) return TakeUnusual(line, &ReadBaseWord);
    const size_t offsetEnd = low_.Next();
    if (offsetEnd == bytes_.size()) return false;
    size_t end = offsetEnd;
    line.variantLines = 0;
    if (bytes_[offsetEnd] == ' ') {
      end = low_.Next();
      const bool isOneDigit = end == offsetEnd + 2 && end < bytes_.size() &&
                              '0' <= bytes_[end - 1] && bytes_[end - 1] <= '9';
      if (offsetEnd == wordEnd + 1 || !isOneDigit) return TakeUnusual(line, &ReadBaseWord);
      line.variantLines = bytes_[end - 1] - '0';
    }
    if (bytes_[end] != '\n') return TakeUnusual(line, &ReadBaseWord);
    line.text = bytes_.substr(start_, wordEnd - start_);
    line.hasWord = true;
    return GoBehind(end);
  }

  bool NextVariant(DictionaryLine& line) {
    const size_t end = low_.Next();
    if (end == bytes_.size()) return false;
    if (bytes_[end] != '\n') return TakeUnusual(line, &ReadVariant);
    line.text = bytes_.substr(start_, end - start_);
    return GoBehind(end);
  }

  // Where the next line begins.
  size_t start() const { return start_; }

 private:
  static void ReadBaseWord(std::string_view text, DictionaryLine& line) {
    line.hasWord = FindWord(text, line.text);
    if (line.hasWord) line.variantLines = VariantLinesBehind(text, line.text);
  }
  static void ReadVariant(std::string_view text, DictionaryLine& line) {
    line.text = VariantOf(text);
  }

  // Works on copies, so that the usual lines do without the memory of this object.
  bool TakeUnusual(DictionaryLine& line, void (*read)(std::string_view, DictionaryLine&)) {
    std::string_view rest = bytes_.substr(start_);
    std::string_view text;
    if (!TakeLine(rest, text)) return false;
    DictionaryLine taken;
    read(text, taken);
    line = taken;
    start_ = bytes_.size() - rest.size();
    low_.SkipTo(start_);
    return true;
  }

  bool GoBehind(size_t lineFeed) {
    if (lineFeed - start_ > kDictionaryLineLimit) return false;
    start_ = lineFeed + 1;
    return true;
  }

  std::string_view bytes_;
  LowBytes low_;
  size_t start_ = 0;
};

}  // namespace

DictionaryResult Dictionary::Load(const IndexDirectory& directory, const Settings& settings,
                                  const LookupFile& lookup) {
  if (!file_.Open(directory, kDictionaryFileName, !lookup.isOpen())) {
    return {DictionaryStatus::kCannotOpen};
  }
  return Load(file_.bytes(), settings, lookup);
}

DictionaryResult Dictionary::Load(std::string_view bytes, const Settings& settings,
                                  const LookupFile& lookup) {
  bytes_ = bytes;
  count_ = 0;
  settings_ = &settings;
  if (UseLookup(settings, lookup)) return {};
  const DictionaryResult result = table_.Read(bytes, settings);
  if (result.status == DictionaryStatus::kOk) {
    bytes_ = bytes.substr(0, table_.end);
    count_ = table_.count;
  }
  return result;
}

// Whether the lookup file stands for a pass over this dictionary, which it then has passed: every
// check that depends on the settings is made here.
bool Dictionary::UseLookup(const Settings& settings, const LookupFile& lookup) {
  lookup_ = nullptr;
  if (!lookup.isOpen()) return false;
  const LookupHeader& header = lookup.header();
  const auto fits = [](uint64_t used, int64_t room) {
    return room > 0 && room <= INT32_MAX && used <= static_cast<uint64_t>(room);
  };
  if (!IsCountHeld(settings.NumKeywords) || !fits(header.words, settings.NumKeywords) ||
      !fits(header.baseWordBytes, settings.OutputBasewordBufferSize) ||
      VariantBlockSize(settings) < 0 || VariantBlockSize(settings) > INT32_MAX ||
      header.variantBytes > static_cast<uint64_t>(VariantBlockSize(settings)) ||
      header.wordStarts.count != LookupWordStartRecords(header.words) ||
      bytes_.size() > UINT32_MAX ||
      !(file_.isOpen() ? IsFileOf(header.dictionary, file_, bytes_.size())
                       : IsFileOf(header.dictionary, bytes_))) {
    return false;
  }
  lookup_ = &lookup;
  count_ = static_cast<int32_t>(header.words);
  return true;
}

// From now on the table is used.
void Dictionary::LeaveLookup() const {
  lookup_ = nullptr;
  // The files belong together but for the damage, so that the pass ends well; where it does not,
  // the words that it has not reached are empty.
  const DictionaryResult result = table_.Read(bytes_, *settings_);
  table_.count = result.status == DictionaryStatus::kOk ? std::min(table_.count, count_) : 0;
}

DictionaryResult Dictionary::WordTable::Read(std::string_view bytes, const Settings& settings) {
  count = 0;
  end = 0;
  // The shortest base-word line has three bytes, its line feed included.
  const auto wanted = static_cast<size_t>(std::clamp<int64_t>(
      int64_t{settings.NumKeywords} + 1, 0, static_cast<int64_t>(bytes.size() / 2) + 2));
  if (!IsCountHeld(settings.NumKeywords) || bytes.size() > UINT32_MAX ||
      !starts.TryAllocate(wanted) || !variantBits.TryAllocate(wanted / 64 + 1)) {
    return {DictionaryStatus::kNoMemory};
  }
  if (settings.OutputBasewordBufferSize <= 0) return {DictionaryStatus::kNoBaseWordBlock};
  const int64_t variantBlock = VariantBlockSize(settings);
  if (variantBlock < 0 || variantBlock > INT32_MAX) return {DictionaryStatus::kNoVariantBlock};
  return ReadLines(bytes, settings);
}

DictionaryResult Dictionary::WordTable::ReadLines(std::string_view bytes,
                                                  const Settings& settings) {
  int64_t baseWordRoom = settings.OutputBasewordBufferSize;
  int64_t variantRoom = VariantBlockSize(settings);
  int32_t variantLines = 0;  // still to come for the last entry
  LineSplitter lines(bytes);
  DictionaryLine line;
  while (variantLines > 0 ? lines.NextVariant(line) : lines.NextBaseWord(line)) {
    if (variantLines > 0) {
      --variantLines;
      if (IsStored(line.text)) variantRoom -= VariantBufferBytes(line.text.size());
      if (variantRoom < 0) return {DictionaryStatus::kVariantBlockFull, count};
      continue;
    }
    if (!line.hasWord) return {DictionaryStatus::kCorruptEntry, count};
    if (line.text.empty()) continue;  // the next line takes the entry
    baseWordRoom -= BasewordBufferBytes(line.text.size());
    if (baseWordRoom < 0) return {DictionaryStatus::kBaseWordBlockFull, count};
    const auto number = static_cast<size_t>(count);
    starts[number] = static_cast<uint32_t>(line.text.data() - bytes.data());
    variantLines = line.variantLines;
    if (variantLines > 0) variantBits[number / 64] |= uint64_t{1} << (number % 64);
    ++count;
    if (count > settings.NumKeywords) return {DictionaryStatus::kTooManyEntries, count};
  }
  end = lines.start();
  return {};
}

void Dictionary::Release() {
  file_.Close();
  bytes_ = {};
  table_ = WordTable();
  lookup_ = nullptr;
  count_ = 0;
}

size_t Dictionary::StartOf(int32_t number) const {
  const auto place = static_cast<size_t>(number);
  if (lookup_ != nullptr) {
    size_t start = 0;
    if (lookup_->ReadWordStart(place, start) && start < bytes_.size()) return start;
    LeaveLookup();
  }
  return number < table_.count ? table_.starts[place] : bytes_.size();
}

std::string_view Dictionary::WordFrom(size_t start) const {
  size_t end = start;
  while (end < bytes_.size() && bytes_[end] != ' ' && bytes_[end] != '\n' && bytes_[end] != '\0') {
    ++end;
  }
  return bytes_.substr(start, end - start);
}

std::string_view Dictionary::WordAt(int32_t number) const { return WordFrom(StartOf(number)); }

DictEntry Dictionary::EntryAt(int32_t number) const {
  DictEntry entry;
  entry.word = WordAt(number);
  const auto behindWord =
      static_cast<size_t>(entry.word.data() - bytes_.data()) + entry.word.size();
  const size_t lineEnd = std::min(bytes_.find('\n', behindWord), bytes_.size());
  entry.end = std::min(lineEnd + 1, bytes_.size());
  const std::string_view line = UpToNul(bytes_.substr(behindWord, lineEnd - behindWord));
  if (!line.empty()) ReadNumbers(line.substr(1), entry.offset, entry.variantCount);
  return entry;
}

bool Dictionary::HasVariants(int32_t number) const {
  if (lookup_ != nullptr) return EntryAt(number).variantCount > 0;
  const auto place = static_cast<size_t>(number);
  return number < table_.count && (table_.variantBits[place / 64] >> (place % 64) & 1) != 0;
}

bool Dictionary::CollectByBeginning(std::string_view beginning, WordSet& found) const {
  if (lookup_ == nullptr || beginning.empty()) return false;
  if (vela::CollectByBeginning(Sorted(), beginning, found)) return true;
  LeaveLookup();
  return false;
}

size_t Dictionary::ListByBeginning(std::string_view beginning, std::span<uint32_t> numbers) const {
  // No text of the lookup file is longer, so that none is listed without it.
  if (beginning.empty() || beginning.size() > kLookupTextLimit) return 0;
  if (lookup_ != nullptr) {
    size_t count = 0;
    if (vela::ListByBeginning(Sorted(), beginning, numbers, count)) return count;
    LeaveLookup();
  }
  return ListInTable(beginning, numbers);
}

// By the bytes of the file: each of its texts is a line or begins one.
size_t Dictionary::ListInTable(std::string_view beginning, std::span<uint32_t> numbers) const {
  FixedText<kLookupTextLimit + 2> piece;
  Append(piece, "\n");
  Append(piece, beginning);
  // While they are sorted, the places of the texts stand for the words.
  size_t count = 0;
  int32_t number = 0;
  const auto add = [&](size_t at) {
    const std::string_view text = WordFrom(at);
    number = WordAtPosition(at, number);
    if (const size_t start = StartOf(number);
        start != at && CompareFolded(text, WordFrom(start)) == 0) {
      return;
    }
    size_t place = count;
    while (place > 0 && CompareFolded(text, WordFrom(numbers[place - 1])) < 0) --place;
    if (place == numbers.size()) return;
    count = std::min(count + 1, numbers.size());
    const std::span<uint32_t> behind = numbers.first(count).subspan(place);
    std::shift_right(behind.begin(), behind.end(), 1);
    behind[0] = static_cast<uint32_t>(at);
  };
  if (count_ != 0 && StartOf(0) == 0 &&
      CompareFolded(bytes_.substr(0, beginning.size()), beginning) == 0) {
    add(0);
  }
  for (size_t at = 0; (at = FindFolded(bytes_, View(piece), at)) != bytes_.npos;) {
    if (++at >= StartOf(0)) add(at);
  }
  for (uint32_t& each : numbers.first(count)) {
    each = static_cast<uint32_t>(WordAtPosition(each, 0));
  }
  return count;
}

// The last word from `from` on that begins at or before the position; `from` itself does.
int32_t Dictionary::WordAtPosition(size_t position, int32_t from) const {
  int32_t low = from;
  int64_t high = int64_t{from} + 1;
  for (int64_t step = 1; high < count_ && StartOf(static_cast<int32_t>(high)) <= position;
       step *= 2) {
    low = static_cast<int32_t>(high);
    high += step;
  }
  high = std::min<int64_t>(high, count_);
  while (high - low > 1) {
    const auto middle = static_cast<int32_t>(low + (high - low) / 2);
    if (StartOf(middle) <= position) {
      low = middle;
    } else {
      high = middle;
    }
  }
  return low;
}

bool Dictionary::CollectByPiece(std::string_view piece, WordSet& found) const {
  if (!found.bits.TryAllocate(static_cast<size_t>(count_) / 64 + 1)) return false;
  if (count_ == 0) return true;
  int32_t number = 0;
  for (size_t at = StartOf(0); (at = FindFolded(bytes_, piece, at)) != bytes_.npos;) {
    number = WordAtPosition(at, number);
    found.bits[static_cast<size_t>(number) / 64] |= uint64_t{1} << (number % 64);
    if (++number == count_) break;
    at = std::max(at + 1, StartOf(number));
  }
  return true;
}

int32_t Dictionary::FindExact(std::string_view word, int32_t from) const {
  if (word.empty() || word.find_first_of(kVariantEnds.substr(0, 1)) != word.npos) return -1;
  if (lookup_ != nullptr) {
    int32_t number = -1;
    if (FindEqualWord(Sorted(), word, from, number)) return number;
    LeaveLookup();
  }
  return FindInTable(word, from);
}

int32_t Dictionary::FindInTable(std::string_view word, int32_t from) const {
  const char* const base = bytes_.data();
  // A word that fits into eight bytes, with the one behind it, is compared in one step.
  uint64_t wanted = 0;
  uint64_t mask = 0;
  const size_t compared = std::min<size_t>(word.size(), sizeof wanted);
  memcpy(&wanted, word.data(), compared);
  mask = compared == sizeof mask ? ~uint64_t{0} : (uint64_t{1} << (8 * compared)) - 1;
  for (int32_t number = from; number < table_.count; ++number) {
    const size_t start = table_.starts[static_cast<size_t>(number)];
    if (start + sizeof wanted <= bytes_.size()) {
      uint64_t found = 0;
      memcpy(&found, base + start, sizeof found);
      if ((found & mask) != wanted) continue;
    }
    if (WordFrom(start) == word) return number;
  }
  return -1;
}

std::string_view Dictionary::DisplayText(int32_t number, int32_t variant) const {
  if (variant < 1) return WordAt(number);
  const DictEntry entry = EntryAt(number);
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
    if (!TakeLine(rest_, line)) break;
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
