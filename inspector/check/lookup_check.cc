#include "inspector/check/lookup_check.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "format/index_directory.h"
#include "index/byte_cursor.h"
#include "index/page_text.h"
#include "index/sorted_words.h"
#include "index/text_pairs.h"
#include "inspector/check/stored_texts.h"
#include "inspector/findings/plain_text.h"
#include "text/find_folded.h"

namespace vela::inspector {

namespace {

class LookupCheck {
 public:
  LookupCheck(const CheckInput& input, std::string_view bytes) : input_(input), bytes_(bytes) {}

  void Run() {
    const int32_t generation = input_.index.settings.LookupGeneration;
    if (generation <= 0) {
      return Add(Fault::kNotUsed, kWholeFile, "LookupGeneration is not above 0");
    }
    if (bytes_.size() % kLookupBlockSize != 0) {
      Add(Fault::kWrongSize, kWholeFile, "not a whole number of blocks");
    }
    CheckBlocks();
    if (bytes_.size() >= sizeof(LookupHeader)) {
      LookupHeader header;
      memcpy(&header, bytes_.data(), sizeof header);
      if (header.magic == kLookupMagic && header.version == kLookupVersion &&
          header.generation != static_cast<uint64_t>(generation)) {
        return Add(Fault::kOtherFile, Byte(0),
                   "it is of generation " + std::to_string(header.generation) +
                       ", LookupGeneration of the settings is " + std::to_string(generation));
      }
    }
    lookup_.Open(bytes_, generation);
    if (!lookup_.isOpen()) {
      return Add(Fault::kUnreadable, Byte(0), "its header is damaged, or its tables are not in it");
    }
    const OpenedIndex& index = input_.index;
    if (IsOf(lookup_.header().dictionary, index.dictionaryFile.bytes(), kDictionaryFileName) &&
        WordCount(index) != 0) {
      CheckWords();
    }
    CheckSpellings();
    if (IsOf(lookup_.header().pageInfo, index.pages.file.bytes(), kPageInfoFileName)) {
      CheckPages();
    }
    CheckSuggestions();
    if (IsOf(lookup_.header().pageText, index.pageText.bytes(), kPageTextFileName)) CheckTexts();
  }

 private:
  void Add(Fault fault, Place place, std::string detail) {
    input_.findings.Add(fault, kLookupFileName, place, std::move(detail));
  }
  void AddContent(const std::string& detail) { Add(Fault::kOtherContent, kWholeFile, detail); }
  void Compare(std::string_view name, uint64_t said, uint64_t found) {
    if (said == found) return;
    AddContent(std::string(name) + " is " + std::to_string(said) + ", not " +
               std::to_string(found));
  }

  void CheckBlocks() {
    for (size_t block = 0; block < bytes_.size() / kLookupBlockSize; ++block) {
      const std::string_view all = bytes_.substr(block * kLookupBlockSize, kLookupBlockSize);
      const uint64_t sum = ReadLittleEndian(all, kLookupBlockRoom, sizeof(uint64_t));
      if (sum == Checksum(all.substr(0, kLookupBlockRoom), block)) continue;
      Add(Fault::kBadChecksum, Byte(block * kLookupBlockSize), "block " + std::to_string(block));
    }
  }

  // Whether something is said of this file, and it is the one.
  bool IsOf(const LookupFileFacts& facts, std::string_view bytes, std::string_view name) {
    if (facts.size == 0) return false;
    if (IsFileOf(facts, bytes)) return true;
    Add(Fault::kOtherFile, Byte(0), std::string(name));
    return false;
  }

  template <typename Record>
  bool Read(const LookupTablePlace& place, size_t i, Record& record) {
    if (lookup_.Read(place, i, record)) return true;
    // A damaged block has been told of already.
    return false;
  }

  void CheckWords() {
    const OpenedIndex& index = input_.index;
    const LookupHeader& header = lookup_.header();
    const std::string_view dictionary = index.dictionaryFile.bytes();
    uint64_t wordBytes = 0;
    uint64_t variantBytes = 0;
    uint64_t sorted = 0;
    input_.progress.Begin(kLookupFileName, WordCount(index));
    for (uint32_t word = 0; word < WordCount(index); ++word) {
      input_.progress.Step(word);
      const DictEntry entry = index.dictionary.EntryAt(static_cast<int32_t>(word));
      const auto start = static_cast<uint64_t>(entry.word.data() - dictionary.data());
      size_t said = 0;
      if (lookup_.ReadWordStart(word, said) && said != start) {
        AddContent("word " + std::to_string(word) + " begins at byte " + std::to_string(start) +
                   ", not " + std::to_string(said));
      }
      wordBytes += static_cast<uint64_t>(BasewordBufferBytes(entry.word.size()));
      ++sorted;
      VariantReader variants(index.dictionary, entry);
      std::string_view variant;
      while (variants.Next(variant)) {
        variantBytes += static_cast<uint64_t>(VariantBufferBytes(variant.size()));
        if (CompareFolded(variant, entry.word) != 0) ++sorted;
      }
    }
    Compare("the number of words", header.words, WordCount(index));
    Compare("the size of the words", header.baseWordBytes, wordBytes);
    Compare("the size of the spellings", header.variantBytes, variantBytes);
    Compare("the length of the table of word starts", header.wordStarts.count,
            LookupWordStartRecords(WordCount(index)));
    Compare("the number of sorted words", CheckSortedWords(), sorted);
  }

  // Whether the word has the text, as its own or that of a spelling.
  bool IsTextOf(const SortedTexts& texts) const {
    const OpenedIndex& index = input_.index;
    if (texts.word() >= WordCount(index)) return false;
    const DictEntry word = index.dictionary.EntryAt(static_cast<int32_t>(texts.word()));
    if (!texts.isVariant()) return CompareFolded(word.word, texts.text()) == 0;
    VariantReader variants(index.dictionary, word);
    std::string_view variant;
    while (variants.Next(variant)) {
      if (CompareFolded(variant, texts.text()) == 0) return true;
    }
    return false;
  }

  // Gives the number of entries. Those that are all valid, in order and as many as there are texts
  // are those texts.
  uint64_t CheckSortedWords() {
    const LookupHeader& header = lookup_.header();
    uint64_t count = 0;
    std::string former;
    uint32_t formerWord = 0;
    for (size_t block = 0; block < header.sortedWords.count; ++block) {
      SortedTexts texts(lookup_, block, block + 1);
      bool isFirst = true;
      for (; texts.Next(); isFirst = false, ++count) {
        if (!IsTextOf(texts)) {
          AddContent("sorted word " + std::to_string(count) + ", " + Quoted(texts.text()) +
                     ", is no text of word " + std::to_string(texts.word()));
        }
        const int order = CompareFolded(former, texts.text());
        if (order > 0 || (order == 0 && formerWord > texts.word())) {
          AddContent("the order of sorted word " + std::to_string(count));
        }
        former = texts.text();
        formerWord = texts.word();
        if (isFirst && block % kLookupGuideStep == 0) CheckGuide(block, texts.text());
      }
      if (texts.isDamaged()) AddContent("block " + std::to_string(block) + " of the sorted words");
    }
    Compare("the length of the guide to the words", header.wordGuide.count,
            (header.sortedWords.count + kLookupGuideStep - 1) / kLookupGuideStep);
    return count;
  }

  void CheckGuide(size_t block, std::string_view text) {
    LookupKey key = 0;
    if (Read(lookup_.header().wordGuide, block / kLookupGuideStep, key) &&
        key != FoldedLookupKeyOf(text)) {
      AddContent("key " + std::to_string(block / kLookupGuideStep) + " of the guide to the words");
    }
  }

  void CheckSpellings() {
    FileImage file;
    static_cast<void>(file.Open(input_.index.directory, kSpellingFileName, false));
    const LookupHeader& header = lookup_.header();
    if (!IsOf(header.spelling, file.bytes(), kSpellingFileName)) return;
    uint64_t count = 0;
    NumberedLines lines{file.bytes()};
    std::string_view line;
    while (lines.Next(line)) {
      const size_t entry = count / kLookupSpellingStep;
      LookupSpelling said;
      if (count % kLookupSpellingStep == 0 && Read(header.spellingGuide, entry, said)) {
        const auto start = static_cast<uint64_t>(line.data() - file.bytes().data());
        if (said.start != start || said.key != LookupKeyOf(TakeWord(line))) {
          AddContent("entry " + std::to_string(entry) + " of the guide to the spelling file");
        }
      }
      ++count;
    }
    Compare("the number of spelling keys", header.spellings, count);
    Compare("the length of the guide to the spelling file", header.spellingGuide.count,
            (count + kLookupSpellingStep - 1) / kLookupSpellingStep);
  }

  void CheckPages() {
    const PageTable& pages = input_.index.pages;
    const LookupHeader& header = lookup_.header();
    if (input_.index.pagesStatus != LoadStatus::kOk || pages.big || header.pageInfoLength == 0) {
      return;
    }
    Compare("the number of pages", header.pages, PageCount(input_.index));
    size_t at = 0;
    for (uint32_t page = 0; page < PageCount(input_.index); ++page) {
      const uint64_t length = ReadLittleEndian(pages.image, at, kSmallPageInfo.lengthWidth);
      if (length != header.pageInfoLength) {
        return AddContent("the record of page " + std::to_string(page) + " has " +
                          CountOfText(length, "byte", "bytes") + ", not " +
                          std::to_string(header.pageInfoLength));
      }
      at += static_cast<size_t>(length);
    }
  }

  void CheckSuggestions() {
    FileImage file;
    static_cast<void>(file.Open(input_.index.directory, kAutoCompleteFileName, false));
    if (!IsOf(lookup_.header().autocomplete, file.bytes(), kAutoCompleteFileName)) return;
    size_t longest = 0;
    NumberedLines lines{file.bytes()};
    std::string_view line;
    while (lines.Next(line)) longest = std::max(longest, line.size() + (lines.isWhole ? 1 : 0));
    Compare("the length of the longest suggestion", lookup_.header().longestSuggestion, longest);
  }

  void CheckTexts() {
    const Settings& settings = input_.index.settings;
    const LookupHeader& header = lookup_.header();
    Compare("the size of a token", header.tokenSize, static_cast<uint64_t>(settings.DictIDLen));
    Compare("the last sign", header.lastSign, static_cast<uint64_t>(settings.DictReservedLimit));
    if (header.tokenSize != static_cast<uint64_t>(settings.DictIDLen) ||
        settings.DictIDLen <= static_cast<int32_t>(kTokenVariantWidth) ||
        settings.DictIDLen > static_cast<int32_t>(kTokenWidthLimit)) {
      return;
    }
    PageTextReader reader = {.file = input_.index.pageText.bytes(),
                             .tokenSize = settings.DictIDLen};
    SeekPageText(reader, 0);
    const TextPairs told(lookup_, reader.file, settings);
    PageTextToken token;
    bool isEnded = true;
    uint32_t former = kPageEndWord;
    pairs_.clear();
    input_.progress.Begin(kLookupFileName, reader.file.size());
    while (ReadPageTextToken(reader, token) != 0) {
      if (EndsRun(token.word)) {
        former = kPageEndWord;
        if (token.word == kPageEndWord) EndText(reader.position, told);
        isEnded = isEnded || token.word == kPageEndWord;
      } else if (int64_t{token.word} > settings.DictReservedLimit) {
        if (former != kPageEndWord) pairs_.emplace_back(former, token.word);
        former = token.word;
        isEnded = false;
      }
    }
    if (!isEnded) EndText(reader.position, told);
    Compare("the number of texts", header.texts.count, text_ + 1);
    LookupText last;
    if (Read(header.texts, text_, last) &&
        (StartOf(last) != textStart_ || FirstPairsOf(last) != header.pairs.count)) {
      AddContent("the end of the table of texts");
    }
  }

  // A text ends before byte `next`; its pairs are in `pairs_`.
  void EndText(uint64_t next, const TextPairs& told) {
    LookupText said;
    if (Read(lookup_.header().texts, text_, said) &&
        (StartOf(said) != textStart_ || FirstPairsOf(said) < firstPairs_)) {
      AddContent("the text of page " + std::to_string(text_));
    }
    firstPairs_ = FirstPairsOf(said);
    const bool isKnown = std::ranges::all_of(pairs_, [&](const auto& pair) {
      return told.MayHold(text_, textStart_, textStart_, pair.first, pair.second);
    });
    if (!isKnown) AddContent("the word pairs of page " + std::to_string(text_));
    pairs_.clear();
    textStart_ = next;
    ++text_;
    input_.progress.Step(next);
  }

  const CheckInput& input_;
  std::string_view bytes_;
  LookupFile lookup_;
  uint32_t text_ = 0;                                 // number of the one at hand
  uint64_t textStart_ = 0;                            // in the page text
  uint32_t firstPairs_ = 0;                           // of the text before
  std::vector<std::pair<uint32_t, uint32_t>> pairs_;  // of words beside each other in it
};

}  // namespace

void CheckLookup(const CheckInput& input) {
  FileImage file;
  if (file.Open(input.index.directory, kLookupFileName, false)) {
    return LookupCheck(input, file.bytes()).Run();
  }
  if (input.index.settings.LookupGeneration > 0) {
    input.findings.Add(Fault::kMissing, kLookupFileName, kWholeFile, "LookupGeneration is above 0");
  }
}

}  // namespace vela::inspector
