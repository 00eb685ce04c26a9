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

}  // namespace

LoadStatus LoadSpelling(SpellingTable& table, const IndexDirectory& directory,
                        const Settings& settings) {
  FileImage file;
  if (!file.Open(directory, kSpellingFileName, true)) return LoadStatus::kCannotOpen;
  const int64_t wanted = int64_t{settings.NumSpellings} + 1;
  if (settings.NumSpellings < 0 || wanted * kTableBytesPerEntry > INT32_MAX) {
    return LoadStatus::kNoMemory;
  }
  // The shortest entry has four bytes, its line feed included, and the last may lack that.
  const auto most = static_cast<int64_t>(file.bytes().size() / 3) + 1;
  if (!table.entries.TryAllocate(static_cast<size_t>(std::min(wanted, most)))) {
    return LoadStatus::kNoMemory;
  }
  LineReader reader{file.bytes()};
  std::string_view line;
  const auto room = static_cast<int32_t>(table.entries.size());
  while (table.count < room &&
         ReadLine(reader, KeywordLineLimit(settings.MaxKeyWordLineLen), line)) {
    if (ReadEntry(UpToNul(line), table.entries[static_cast<size_t>(table.count)])) ++table.count;
  }
  table.isLoaded = true;
  return LoadStatus::kOk;
}

}  // namespace vela
