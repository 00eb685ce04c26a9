// lookup_fuzz.cc: the readers of the lookup file. Input: the file, beside the dictionary, the
// spelling, the autocomplete and the page text file below; its checksums, and what says that it
// belongs to them, are put right, so that what is read behind them is tried, too.
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

#include "format/index_directory.h"
#include "index/autocomplete.h"
#include "index/dictionary.h"
#include "index/lookup_file.h"
#include "index/spelling.h"
#include "index/text_pairs.h"
#include "program/fuzz/check.h"
#include "support/scratch_directory.h"

namespace vela::fuzz {
namespace {

constexpr std::string_view kWords =
    "walk 10 2\nWalk\nwalked\nconfiguration 20 0\nconfigure 30 1\nreconfigure\nrun -1 0\nx 40 0\n";
constexpr std::string_view kSpellings = "KNFK 2 1\nRN 3\nWLK 0\n";
constexpr std::string_view kSuggestions = "walk\nWalking tour\nrun\nconfigure\n";

constexpr std::string_view kPageText("\x04\0\x05\0\x02\0\x06\0\0\0\x05\0\x04\0\0\0", 16);

LookupFileFacts FactsOf(std::string_view bytes) { return {bytes.size(), FileSample(bytes)}; }

// The input as a file that is taken for this directory's.
std::string SoundFile(std::string_view input) {
  std::string bytes(input);
  bytes.resize((bytes.size() / kLookupBlockSize + 1) * kLookupBlockSize);
  LookupHeader header;
  memcpy(&header, bytes.data(), sizeof header);
  header.magic = kLookupMagic;
  header.version = kLookupVersion;
  header.generation = 1;
  header.dictionary = FactsOf(kWords);
  header.spelling = FactsOf(kSpellings);
  header.autocomplete = FactsOf(kSuggestions);
  header.pageText = FactsOf(kPageText);
  header.tokenSize = 2;
  header.lastSign = 3;
  header.wordStarts.count = LookupWordStartRecords(header.words);
  memcpy(bytes.data(), &header, sizeof header);
  for (size_t block = 0; block < bytes.size() / kLookupBlockSize; ++block) {
    char* const at = bytes.data() + block * kLookupBlockSize;
    const uint64_t sum = Checksum({at, kLookupBlockRoom}, block);
    memcpy(at + kLookupBlockRoom, &sum, sizeof sum);
  }
  return bytes;
}

void CheckDictionary(const LookupFile& lookup, const Settings& settings) {
  Dictionary dictionary;
  if (dictionary.Load(kWords, settings, lookup).status != DictionaryStatus::kOk) return;
  VELA_CHECK(dictionary.size() <= settings.NumKeywords);
  for (const std::string_view word : {"walk", "configuration", "configure", "X", "zebra"}) {
    const int32_t number = dictionary.FindExact(word, 0);
    VELA_CHECK(number >= -1 && number < dictionary.size());
    WordSet found;
    if (!dictionary.CollectByBeginning(word, found)) continue;
    for (int32_t i = 0; (i = NextInSet(found, i, dictionary.size())) < dictionary.size(); ++i) {
      VELA_CHECK(dictionary.WordAt(i).size() <= kWords.size());
    }
  }
  WordSet found;
  VELA_CHECK(dictionary.CollectByPiece("on", found));
  for (int32_t i = 0; i < dictionary.size(); ++i) {
    VELA_CHECK(dictionary.EntryAt(i).end <= kWords.size());
    VELA_CHECK(dictionary.DisplayText(i, i % 4).size() <= kWords.size());
    VELA_CHECK(dictionary.HasVariants(i) == (dictionary.EntryAt(i).variantCount > 0) ||
               dictionary.WordAt(i).empty());
  }
}

void CheckSpelling(const LookupFile& lookup, const IndexDirectory& directory,
                   const Settings& settings) {
  SpellingTable table;
  VELA_CHECK(LoadSpelling(table, directory, settings, lookup) == LoadStatus::kOk);
  for (const std::string_view key : {"A", "KNFK", "RN", "WLK", "Z"}) {
    SpellingReader reader(table, key);
    SpellingEntry entry;
    for (int32_t i = 0; reader.Next(entry); ++i) VELA_CHECK(i <= settings.NumSpellings);
  }
}

void CheckSuggestions(const LookupFile& lookup, const IndexDirectory& directory,
                      const Settings& settings) {
  constexpr std::string_view kTyped[] = {"wa", "con"};
  SuggestionReader reader;
  VELA_CHECK(reader.Open(directory, settings) == LoadStatus::kOk);
  reader.NarrowTo(kTyped, true, lookup);
  std::string_view text;
  for (size_t i = 0; reader.Next(text); ++i) VELA_CHECK(i < kSuggestions.size());
}

void CheckPairs(const LookupFile& lookup, const Settings& settings) {
  const TextPairs pairs(lookup, kPageText, settings);
  for (const uint32_t page : {0U, 1U, 2U, UINT32_MAX}) {
    for (uint64_t position = 0; position < kPageText.size(); position += 5) {
      const bool mayHold = pairs.MayHold(page, position, position, 4, page + 5);
      VELA_CHECK(mayHold == pairs.MayHold(page, position, position, 4, page + 5));
    }
  }
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  static const support::ScratchDirectory scratch;
  static const bool isWritten = [] {
    std::ofstream(scratch.path() / kSpellingFileName, std::ios::binary) << kSpellings;
    std::ofstream(scratch.path() / kAutoCompleteFileName, std::ios::binary) << kSuggestions;
    return true;
  }();
  VELA_CHECK(isWritten);
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  const auto settings = std::make_unique<Settings>();
  settings->NumKeywords = 1000;
  settings->OutputBasewordBufferSize = 10000;
  settings->OutputVariantBufferSize = 10000;
  settings->NumSpellings = 100;
  settings->MaxKeyWordLineLen = 256;
  settings->DictIDLen = 2;
  settings->DictReservedLimit = 3;
  const std::string file = SoundFile(Text(data, size));
  LookupFile lookup;
  lookup.Open(file, 1);
  CheckDictionary(lookup, *settings);
  CheckSpelling(lookup, directory, *settings);
  CheckSuggestions(lookup, directory, *settings);
  CheckPairs(lookup, *settings);
  return 0;
}
