#include "indexer/write/lookup_writer.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "format/index_directory.h"
#include "format/lookup.h"
#include "format/page_info.h"
#include "indexer/write/out_file.h"
#include "indexer/write/sorted_block.h"
#include "settings/index_directory.h"
#include "text/ascii.h"
#include "text/numbers.h"
#include "text/sound_key.h"

namespace vela::indexer {

namespace {

// A line of a text file without its line feed; false when none is left that is whole.
bool TakeLine(std::string_view& rest, std::string_view& line) {
  const size_t end = rest.find('\n');
  if (end == rest.npos) return false;
  line = rest.substr(0, end);
  rest.remove_prefix(end + 1);
  return true;
}

// A field up to the next blank, which goes with it.
std::string_view TakeField(std::string_view& line) {
  const std::string_view field = line.substr(0, line.find(' '));
  line.remove_prefix(std::min(field.size() + 1, line.size()));
  return field;
}

bool IsWordText(std::string_view text) {
  return !text.empty() &&
         std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) > ' '; });
}

bool IsNumber(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  return !text.empty() && std::ranges::all_of(text, IsDigit);
}

bool EqualFolded(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, ToLowerAscii, ToLowerAscii);
}

LookupFileFacts FactsOf(std::string_view bytes) { return {bytes.size(), FileSample(bytes)}; }

// A base word, or one of its variants.
struct SortedText {
  LookupKey key = 0;   // of the text with ASCII letters in lower case
  uint32_t word = 0;   // number of the base word
  uint32_t start = 0;  // where the text begins in the dictionary
};

struct WordTables {
  std::vector<uint32_t> starts;  // of the lines of base words
  std::vector<SortedText> sorted;
  uint64_t baseWordBytes = 0;
  uint64_t variantBytes = 0;
};

// Goes through the dictionary. False when a line is not in the form that its writer gives it.
bool ReadWords(std::string_view bytes, WordTables& tables) {
  if (bytes.size() > UINT32_MAX) return false;
  const auto lines = static_cast<size_t>(std::ranges::count(bytes, '\n'));
  tables.starts.reserve(lines);
  tables.sorted.reserve(lines);
  std::string_view rest = bytes;
  std::string_view line;
  const auto add = [&](std::string_view text, size_t word) {
    tables.sorted.push_back({FoldedLookupKeyOf(text), static_cast<uint32_t>(word),
                             static_cast<uint32_t>(text.data() - bytes.data())});
  };
  while (TakeLine(rest, line)) {
    if (line.size() > kDictionaryLineLimit) return false;
    const std::string_view text = TakeField(line);
    const std::string_view offset = TakeField(line);
    if (!IsWordText(text) || text.size() > kLookupTextLimit || !IsNumber(offset) ||
        !IsNumber(line)) {
      return false;
    }
    const size_t word = tables.starts.size();
    const auto start = static_cast<uint32_t>(text.data() - bytes.data());
    tables.starts.push_back(start);
    if (start - tables.starts[word - word % kLookupStartsAtOnce] > UINT16_MAX) return false;
    tables.baseWordBytes += static_cast<uint64_t>(BasewordBufferBytes(text.size()));
    add(text, word);
    for (int32_t variants = ReadDecimal32(line); variants > 0; --variants) {
      if (!TakeLine(rest, line) || !IsWordText(line) || line.size() > kLookupTextLimit)
        return false;
      tables.variantBytes += static_cast<uint64_t>(VariantBufferBytes(line.size()));
      if (!EqualFolded(line, text)) add(line, word);
    }
  }
  return rest.empty() && !tables.starts.empty();
}

std::string_view TextOf(const SortedText& word, std::string_view dictionary) {
  const std::string_view rest = dictionary.substr(word.start);
  return rest.substr(0, rest.find_first_of(" \n"));
}

void SortWords(std::string_view dictionary, std::vector<SortedText>& sorted) {
  const auto isBelow = [&](const SortedText& a, const SortedText& b) {
    if (a.key != b.key) return a.key < b.key;
    const std::string_view left = TextOf(a, dictionary);
    const std::string_view right = TextOf(b, dictionary);
    const auto [l, r] = std::ranges::mismatch(left, right, {}, ToLowerAscii, ToLowerAscii);
    if (l == left.end() || r == right.end()) {
      if (left.size() != right.size()) return left.size() < right.size();
    } else {
      return static_cast<unsigned char>(ToLowerAscii(*l)) <
             static_cast<unsigned char>(ToLowerAscii(*r));
    }
    return a.word != b.word ? a.word < b.word : a.start < b.start;
  };
  std::ranges::sort(sorted, isBelow);
}

struct SpellingGuide {
  std::vector<LookupSpelling> entries;
  uint64_t count = 0;  // of the entries of the file
};

// False when the file is not in the form that its writer gives it.
bool ReadSpellings(std::string_view bytes, SpellingGuide& guide) {
  if (bytes.size() > UINT32_MAX) return false;
  std::string_view rest = bytes;
  std::string_view line;
  LookupKey former = 0;
  while (TakeLine(rest, line)) {
    if (line.size() >= kLookupSpellingLine) return false;
    const auto start = static_cast<uint32_t>(line.data() - bytes.data());
    const std::string_view text = TakeField(line);
    const LookupKey key = LookupKeyOf(text);
    if (!IsWordText(text) || text.size() > kSoundKeyLength || key < former || line.empty()) {
      return false;
    }
    while (!line.empty()) {
      if (!IsNumber(TakeField(line))) return false;
    }
    former = key;
    if (guide.count % kLookupSpellingStep == 0) guide.entries.push_back({key, start, 0});
    ++guide.count;
  }
  return rest.empty() && guide.count > 0;
}

struct PageInfoShape {
  uint64_t pages = 0;
  uint64_t length = 0;  // of every record; 0: they differ
  uint64_t withoutBoost = 0;
};

// What is known of the records, read as those of the small layout, the only one that is written.
PageInfoShape ReadPageInfo(std::string_view bytes) {
  PageInfoShape shape;
  constexpr size_t kWidth = kSmallPageInfo.lengthWidth;
  for (size_t at = 0; at < bytes.size();) {
    uint16_t length = 0;
    static_assert(sizeof length == kWidth);
    if (bytes.size() - at < kWidth) return {};
    memcpy(&length, bytes.data() + at, kWidth);
    if (length < kSmallPageInfo.fixedSize || length > bytes.size() - at) return {};
    if (at == 0) shape.length = length;
    if (length != shape.length) return {};
    if (LeavesScores(static_cast<uint8_t>(bytes[at + kSmallPageInfo.boost]))) ++shape.withoutBoost;
    at += length;
    ++shape.pages;
  }
  return shape;
}

// In bytes, with the line feed.
uint64_t LongestLine(std::string_view bytes) {
  size_t longest = 0;
  while (!bytes.empty()) {
    const size_t length = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
    longest = std::max(longest, length);
    bytes.remove_prefix(length);
  }
  return longest;
}

// Eight words each.
std::vector<LookupWordStarts> InRecords(std::span<const uint32_t> starts) {
  std::vector<LookupWordStarts> records;
  records.reserve(LookupWordStartRecords(starts.size()));
  for (size_t i = 0; i < starts.size(); ++i) {
    const uint32_t first = starts[i - i % kLookupStartsAtOnce];
    if (i % kLookupStartsAtOnce == 0) {
      records.push_back({.firstLow = static_cast<uint16_t>(first),
                         .firstHigh = static_cast<uint16_t>(first >> 16)});
    } else {
      records.back().behind[i % kLookupStartsAtOnce - 1] = static_cast<uint16_t>(starts[i] - first);
    }
  }
  return records;
}

// Writes blocks with their checksums.
class BlockWriter {
 public:
  explicit BlockWriter(OutFile& file) : file_(file) {}

  uint64_t count() const { return written_; }

  // Writes a whole table.
  template <typename Record>
  LookupTablePlace Write(const std::vector<Record>& records) {
    const LookupTablePlace place = {written_, records.size()};
    for (const Record& record : records) Add(record);
    End();
    return place;
  }
  void WriteBlock(const void* content, size_t size) {
    file_.Write(BlockOf(content, size, written_++));
  }
  // Writes another first block.
  void ReplaceFirst(const void* content, size_t size) {
    file_.Replace(0, BlockOf(content, size, 0));
  }

  // A record of a table that is written record by record.
  template <typename Record>
  void Add(const Record& record) {
    memcpy(started_ + startedSize_, &record, sizeof record);
    startedSize_ += sizeof record;
    if (startedSize_ + sizeof record > kLookupBlockRoom) End();
  }
  // Ends such a table.
  void End() {
    if (startedSize_ > 0) WriteBlock(started_, startedSize_);
    startedSize_ = 0;
  }

 private:
  static std::string BlockOf(const void* content, size_t size, uint64_t number) {
    std::string block(kLookupBlockSize, '\0');
    memcpy(block.data(), content, size);
    const uint64_t sum = Checksum({block.data(), kLookupBlockRoom}, number);
    memcpy(block.data() + kLookupBlockRoom, &sum, sizeof sum);
    return block;
  }

  OutFile& file_;
  uint64_t written_ = 0;  // blocks
  char started_[kLookupBlockRoom] = {};
  size_t startedSize_ = 0;
};

// Writes the blocks of the sorted words and gathers the guide to them.
LookupTablePlace WriteSorted(BlockWriter& blocks, const WordTables& words,
                             std::string_view dictionary, std::vector<LookupKey>& guide) {
  LookupTablePlace place = {blocks.count(), 0};
  SortedBlock block;
  const auto end = [&] {
    blocks.WriteBlock(block.content().data(), block.content().size());
    block.Clear();
    ++place.count;
  };
  std::string text;
  for (const SortedText& sorted : words.sorted) {
    text = TextOf(sorted, dictionary);
    std::ranges::transform(text, text.begin(), ToLowerAscii);
    const bool isVariant = sorted.start != words.starts[sorted.word];
    if (!block.Add(text, sorted.word, isVariant)) {
      end();
      static_cast<void>(block.Add(text, sorted.word, isVariant));
    }
    if (guide.size() * kLookupGuideStep <= place.count) guide.push_back(sorted.key);
  }
  end();
  return place;
}

// A number for this content, 1 to INT32_MAX.
uint64_t GenerationOf(const LookupHeader& header) {
  char bytes[sizeof header];
  memcpy(bytes, &header, sizeof header);
  return Checksum({bytes, sizeof bytes}, 0) % INT32_MAX + 1;
}

}  // namespace

LookupSizes WriteLookup(const std::filesystem::path& folder, const TextShape& text,
                        uint32_t pairedWords) {
  PairTable pairs(folder, text, pairedWords);
  return WriteLookup(folder, text, pairedWords, pairs);
}

LookupSizes WriteLookup(const std::filesystem::path& folder, const TextShape& text,
                        uint32_t pairedWords, PairTable& pairs) {
  IndexDirectory directory;
  OpenIndexDirectory(directory, folder.string());
  FileImage dictionary;
  WordTables words;
  if (!dictionary.Open(directory, kDictionaryFileName, false) ||
      !ReadWords(dictionary.bytes(), words)) {
    return {};
  }
  SortWords(dictionary.bytes(), words.sorted);
  LookupHeader header;
  header.dictionary = FactsOf(dictionary.bytes());
  header.words = words.starts.size();
  header.baseWordBytes = words.baseWordBytes;
  header.variantBytes = words.variantBytes;

  FileImage spelling;
  SpellingGuide guide;
  if (spelling.Open(directory, kSpellingFileName, false) &&
      ReadSpellings(spelling.bytes(), guide)) {
    header.spelling = FactsOf(spelling.bytes());
    header.spellings = guide.count;
  } else {
    guide = {};
  }
  FileImage pageInfo;
  if (pageInfo.Open(directory, kPageInfoFileName, false)) {
    const PageInfoShape shape = ReadPageInfo(pageInfo.bytes());
    header.pageInfo = FactsOf(pageInfo.bytes());
    header.pages = shape.pages;
    header.pageInfoLength = shape.length;
    header.pagesWithoutBoost = shape.withoutBoost;
  }

  FileImage autocomplete;
  if (autocomplete.Open(directory, kAutoCompleteFileName, false)) {
    header.autocomplete = FactsOf(autocomplete.bytes());
    header.longestSuggestion = LongestLine(autocomplete.bytes());
  }

  OutFile file(folder / kLookupFileName);
  BlockWriter blocks(file);
  blocks.WriteBlock(&header, sizeof header);  // as it is by now
  header.wordStarts = blocks.Write(InRecords(words.starts));
  std::vector<LookupKey> wordGuide;
  header.sortedWords = WriteSorted(blocks, words, dictionary.bytes(), wordGuide);
  header.wordGuide = blocks.Write(wordGuide);
  header.spellingGuide = blocks.Write(guide.entries);
  words = {};
  if (FileImage whole; whole.Open(directory, kPageTextFileName, false)) {
    header.pageText = FactsOf(whole.bytes());
    header.tokenSize = text.tokenBytes;
    header.lastSign = static_cast<uint64_t>(text.lastSign);
    header.pairedWords = pairedWords;
    if (!whole.bytes().empty() && CanBeRead(text)) {
      header.pairs.firstBlock = blocks.count();
      pairs.ForEach([&](const WordPairs& record) { blocks.Add(record); });
      blocks.End();
      const std::vector<LookupText>& texts = pairs.texts();
      if (!texts.empty()) header.pairs.count = FirstPairsOf(texts.back());
      header.texts = blocks.Write(texts);
    }
  }
  header.generation = GenerationOf(header);
  blocks.ReplaceFirst(&header, sizeof header);
  return {static_cast<int32_t>(header.generation), file.Finish()};
}

}  // namespace vela::indexer
