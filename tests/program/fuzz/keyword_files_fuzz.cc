// keyword_files_fuzz.cc: the readers of the spelling and the recommended file. Input: a line with
// MaxKeyWordLineLen and the number of entries that the settings announce, then the file.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "format/recommended.h"
#include "format/spelling.h"
#include "index/recommended.h"
#include "index/spelling.h"
#include "program/fuzz/check.h"
#include "settings/index_directory.h"
#include "support/scratch_directory.h"

namespace vela::fuzz {
namespace {

constexpr int32_t kMostEntries = 100000;
constexpr int32_t kLongLine = 1000;  // room for any line that is written here

void WriteFile(const support::ScratchDirectory& scratch, const char* name, std::string_view bytes) {
  std::ofstream(scratch.path() / name, std::ios::binary | std::ios::trunc) << bytes;
}

const LookupFile kNoLookup{};

// The entries in the order of the file, as they are written.
std::string EntriesOf(const SpellingTable& table, const Settings& settings) {
  SpellingReader entries(table);
  SpellingEntry entry;
  std::string written;
  int32_t count = 0;
  while (entries.Next(entry)) {
    const std::string_view key = View(entry.key);
    VELA_CHECK(!key.empty() && key.size() <= kSoundKeyLength);
    VELA_CHECK(key.find_first_of(" \r\n") == key.npos);
    written += key;
    for (const int32_t word : entry.words) written += " " + std::to_string(word);
    written += "\n";
    ++count;
  }
  VELA_CHECK(count <= settings.NumSpellings + 1);
  return written;
}

// What was read, written again, reads back the same.
void CheckSpelling(const support::ScratchDirectory& scratch, const IndexDirectory& directory,
                   Settings& settings, std::string_view file) {
  WriteFile(scratch, kSpellingFileName, file);
  SpellingTable table;
  VELA_CHECK(LoadSpelling(table, directory, settings, kNoLookup) == LoadStatus::kOk);
  VELA_CHECK(table.isLoaded);
  const std::string written = EntriesOf(table, settings);
  settings.MaxKeyWordLineLen = kLongLine;
  WriteFile(scratch, kSpellingFileName, written);
  SpellingTable again;
  VELA_CHECK(LoadSpelling(again, directory, settings, kNoLookup) == LoadStatus::kOk);
  VELA_CHECK(EntriesOf(again, settings) == written);
}

void CheckRecommended(const support::ScratchDirectory& scratch, const IndexDirectory& directory,
                      Settings& settings, std::string_view file) {
  WriteFile(scratch, kRecommendedFileName, file);
  RecommendedTies ties;
  VELA_CHECK(LoadRecommended(ties, directory, settings) == LoadStatus::kOk);
  VELA_CHECK(ties.keywords.size() <= settings.NumRecommended);
  std::string written;
  for (int32_t i = 0; i < ties.keywords.size(); ++i) {
    const std::string_view keyword = ties.keywords.At(i);
    VELA_CHECK(!keyword.empty() && keyword.size() <= 500);
    VELA_CHECK(keyword.find('\n') == keyword.npos);
    written += std::string(keyword) + " " +
               std::to_string(ties.dataOffsets[static_cast<size_t>(i)]) + "\n";
  }
  settings.MaxKeyWordLineLen = kLongLine;
  WriteFile(scratch, kRecommendedFileName, written);
  RecommendedTies again;
  VELA_CHECK(LoadRecommended(again, directory, settings) == LoadStatus::kOk);
  VELA_CHECK(again.keywords.size() == ties.keywords.size());
  for (int32_t i = 0; i < ties.keywords.size(); ++i) {
    const auto at = static_cast<size_t>(i);
    VELA_CHECK(std::string_view(ties.keywords.At(i)) == again.keywords.At(i));
    VELA_CHECK(ties.dataOffsets[at] == again.dataOffsets[at]);
  }
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  static const support::ScratchDirectory scratch;
  std::string_view file = Text(data, size);
  int32_t lineLength = 0;
  int32_t entries = 0;
  const std::string numbers(TakeLine(file));
  if (sscanf(numbers.c_str(), "%d %d", &lineLength, &entries) != 2) return 0;
  const auto settings = std::make_unique<Settings>();
  settings->NumSpellings = settings->NumRecommended = std::clamp(entries, 0, kMostEntries);
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  settings->MaxKeyWordLineLen = std::min(lineLength, kLongLine);
  CheckSpelling(scratch, directory, *settings, file);
  settings->MaxKeyWordLineLen = std::min(lineLength, kLongLine);
  CheckRecommended(scratch, directory, *settings, file);
  return 0;
}
