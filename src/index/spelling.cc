#include "index/spelling.h"

#include <algorithm>

#include "format/keyword_line.h"
#include "text/numbers.h"

namespace vela {

namespace {

constexpr int64_t kTableBytesPerEntry = 16;
constexpr std::string_view kFieldEnds = " \r\n";

// The next field of the line; empty when there is none.
std::string_view TakeField(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(kFieldEnds), line.size()));
  const std::string_view field = line.substr(0, line.find_first_of(kFieldEnds));
  line.remove_prefix(field.size());
  return field;
}

// Whether the line is an entry.
bool ReadEntry(std::string_view line, SpellingEntry& entry) {
  entry = SpellingEntry();
  Set(entry.key, TakeField(line));
  int32_t numbers = 0;
  for (int32_t& word : entry.words) {
    const std::string_view field = TakeField(line);
    if (field.empty()) break;
    word = ReadDecimalWrap32(field);
    ++numbers;
  }
  return numbers > 0;
}

// The index of the last entry of the guide whose key is below `key`; false when there is none or
// the guide is damaged.
bool FindGuide(const LookupFile& lookup, LookupKey key, LookupSpelling& guide, size_t& index) {
  const LookupTablePlace& place = lookup.header().spellingGuide;
  size_t low = 0;
  size_t high = static_cast<size_t>(place.count);
  while (low < high) {
    const size_t middle = low + (high - low) / 2;
    if (!lookup.Read(place, middle, guide)) return false;
    if (guide.key < key) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (low == 0) return false;
  index = low - 1;
  return lookup.Read(place, index, guide);
}

}  // namespace

LoadStatus LoadSpelling(SpellingTable& table, const IndexDirectory& directory,
                        const Settings& settings, const LookupFile& lookup) {
  table.lookup = nullptr;
  if (!table.file.Open(directory, kSpellingFileName, false)) return LoadStatus::kCannotOpen;
  const int64_t wanted = int64_t{settings.NumSpellings} + 1;
  if (settings.NumSpellings < 0 || wanted * kTableBytesPerEntry > INT32_MAX) {
    return LoadStatus::kNoMemory;
  }
  table.lineLimit = KeywordLineLimit(settings.MaxKeyWordLineLen);
  table.most = wanted;
  const LookupHeader& header = lookup.header();
  if (lookup.isOpen() && header.spellings <= static_cast<uint64_t>(wanted) &&
      table.lineLimit >= kLookupSpellingLine &&
      IsFileOf(header.spelling, table.file, table.file.bytes().size())) {
    table.lookup = &lookup;
  }
  table.isLoaded = true;
  return LoadStatus::kOk;
}

SpellingReader::SpellingReader(const SpellingTable& table)
    : lines_{table.file.bytes()}, lineLimit_(table.lineLimit), left_(table.most) {}

SpellingReader::SpellingReader(const SpellingTable& table, std::string_view key)
    : SpellingReader(table) {
  LookupSpelling guide;
  size_t index = 0;
  if (table.lookup == nullptr || !FindGuide(*table.lookup, LookupKeyOf(key), guide, index)) return;
  lines_.rest.remove_prefix(std::min<size_t>(guide.start, lines_.rest.size()));
  left_ -= static_cast<int64_t>(index * kLookupSpellingStep);
}

bool SpellingReader::Next(SpellingEntry& entry) {
  std::string_view line;
  while (left_ > 0 && ReadLine(lines_, lineLimit_, line)) {
    if (!ReadEntry(UpToNul(line), entry)) continue;
    --left_;
    return true;
  }
  return false;
}

}  // namespace vela
