// Writes an index directory of a given size with made-up words, always the same for the same sizes.
//
//   make_bench_index DIRECTORY PAGES WORDS
//
// Words occur as words do (Zipf): the k-th most frequent one 1/k times as often as the first, so
// that the first stands on nearly every page and the last ones on a few or on none. The large files
// are written in place: a million pages take 3.7 GB of disk, and memory only as the system has it
// to spare.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "format/little_endian.h"
#include "format/page_text.h"
#include "format/word_map.h"
#include "indexer/write/lookup_writer.h"

namespace {

constexpr uint32_t kReserved = 10;
constexpr size_t kTokenBytes = 4;
constexpr uint32_t kWordsPerPage = 300;
constexpr uint64_t kPageTextBytes = (kWordsPerPage + 1) * kTokenBytes;  // with the end of the page

void PutNumber(std::string& out, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

void PutNumber(char* at, uint64_t value, size_t bytes) {
  for (size_t i = 0; i < bytes; ++i) at[i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

// A pronounceable word for every number, different for each.
std::string MakeWord(uint32_t number) {
  static const char kConsonants[] = "bcdfghjklmnprstvwz";
  static const char kVowels[] = "aeiou";
  std::string word;
  uint32_t rest = number * 2654435761u % 7840000u;  // spreads the endings
  for (int i = 0; i < 3; ++i) {
    word.push_back(kConsonants[rest % 18]);
    rest /= 18;
    word.push_back(kVowels[rest % 5]);
    rest /= 5;
  }
  return word + std::to_string(number);
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// A file of a known size that is filled in any order.
class MappedFile {
 public:
  MappedFile(const std::filesystem::path& path, uint64_t size) : size_(size) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
    if (file < 0 || ftruncate(file, static_cast<off_t>(size)) != 0) Fail(path);
    void* bytes = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (bytes == MAP_FAILED) Fail(path);
    bytes_ = static_cast<char*>(bytes);
    close(file);
  }
  ~MappedFile() { munmap(bytes_, size_); }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  char* At(uint64_t offset) { return bytes_ + offset; }

 private:
  [[noreturn]] static void Fail(const std::filesystem::path& path) {
    perror(path.c_str());
    exit(1);
  }

  char* bytes_ = nullptr;
  uint64_t size_ = 0;
};

// The same numbers for the same page, in whatever order pages are asked for (SplitMix64).
class PageRandom {
 public:
  explicit PageRandom(uint32_t page) : state_(page * 0x9E3779B97F4A7C15u) {}

  uint64_t Next() {
    uint64_t mixed = state_ += 0x9E3779B97F4A7C15u;
    mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBu;
    return mixed ^ mixed >> 31;
  }
  double NextShare() { return static_cast<double>(Next() >> 11) * 0x1p-53; }  // 0 <= share < 1

 private:
  uint64_t state_;
};

using PageWords = std::array<uint32_t, kWordsPerPage>;

// The words of a page in their order, the most frequent one of all being 0.
PageWords DrawWords(uint32_t page, uint32_t words) {
  PageRandom random(page);
  const double span = std::log(static_cast<double>(words) + 1);
  PageWords drawn;
  for (uint32_t& word : drawn) {
    // Between 1 and words + 1, each stretch [k, k + 1) in proportion to 1/k.
    word = static_cast<uint32_t>(std::exp(random.NextShare() * span)) - 1;
    if (word >= words) word = words - 1;
  }
  return drawn;
}

uint8_t ProximityOf(uint32_t place) {
  return vela::ProximityBit(place / vela::ProximityBlockWords(kWordsPerPage));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    fprintf(stderr, "usage: make_bench_index DIRECTORY PAGES WORDS\n");
    return 2;
  }
  const std::filesystem::path directory = argv[1];
  const auto pages = static_cast<uint32_t>(atol(argv[2]));
  const auto words = static_cast<uint32_t>(atol(argv[3]));
  if (pages == 0 || words < 400) {
    fprintf(stderr, "make_bench_index: at least one page and 400 words\n");
    return 2;
  }
  std::filesystem::create_directories(directory);

  // Once to see how long the list of every word becomes, once to fill the lists.
  constexpr uint32_t kNoPage = UINT32_MAX;
  std::vector<uint32_t> pagesOf(words, 0);
  std::vector<uint32_t> lastPage(words, kNoPage);
  for (uint32_t page = 0; page < pages; ++page) {
    for (const uint32_t word : DrawWords(page, words)) {
      if (lastPage[word] == page) continue;
      lastPage[word] = page;
      ++pagesOf[word];
    }
  }

  std::string dictionary;
  std::vector<uint64_t> listAt(words, 0);  // later on, where the next record of the list goes
  uint64_t wordMapSize = 0;
  size_t baseBytes = 0;
  size_t variantBytes = 0;
  size_t variants = 0;
  for (uint32_t i = 0; i <= kReserved; ++i) {
    dictionary += ". -1 0\n";
    baseBytes += 2;
  }
  uint32_t rarest = 0;
  for (uint32_t word = 0; word < words; ++word) {
    const std::string text = MakeWord(word);
    baseBytes += text.size() + 1;
    if (pagesOf[word] == 0) {
      dictionary += text + " -1 0\n";
      continue;
    }
    rarest = word;
    const bool hasVariant = word % 5 == 0;
    dictionary += text + " " + std::to_string(wordMapSize) + (hasVariant ? " 1\n" : " 0\n");
    if (hasVariant) {
      std::string variant = text;
      variant[0] = static_cast<char>(variant[0] - 32);
      dictionary += variant + "\n";
      variantBytes += variant.size() + 2;
      ++variants;
    }
    listAt[word] = wordMapSize;
    wordMapSize += vela::kWordListCountWidth + uint64_t{pagesOf[word]} * vela::kWordMapRecordSize;
  }

  MappedFile wordMap(directory / "vela_wordmap.vdat", wordMapSize);
  MappedFile pageText(directory / "vela_pagetext.vdat", pages * kPageTextBytes);
  for (uint32_t word = 0; word < words; ++word) {
    if (pagesOf[word] == 0) continue;
    PutNumber(wordMap.At(listAt[word]), pagesOf[word], vela::kWordListCountWidth);
    listAt[word] += vela::kWordListCountWidth;
  }
  lastPage.assign(words, kNoPage);
  for (uint32_t page = 0; page < pages; ++page) {
    const PageWords drawn = DrawWords(page, words);
    PageRandom random(~page);
    for (uint32_t place = 0; place < kWordsPerPage; ++place) {
      const uint32_t word = drawn[place];
      const uint64_t position = page * kPageTextBytes + place * kTokenBytes;
      PutNumber(pageText.At(position), word + kReserved + 1, kTokenBytes - 1);
      if (lastPage[word] == page) {
        char* proximity =
            wordMap.At(listAt[word] - vela::kWordMapRecordSize + vela::kWordMapProximityOffset);
        *proximity = static_cast<char>(*proximity | ProximityOf(place));
        continue;
      }
      lastPage[word] = page;
      char* record = wordMap.At(listAt[word]);
      PutNumber(record + vela::kWordMapScoreOffset, 1 + random.Next() % 200,
                vela::kWordMapScoreWidth);
      PutNumber(record + vela::kWordMapProximityOffset, ProximityOf(place),
                vela::kWordMapProximityWidth);
      PutNumber(record + vela::kWordMapPageOffset, page, vela::kWordMapPageWidth);
      PutNumber(record + vela::kWordMapPositionOffset, position, vela::kWordMapPositionWidth);
      listAt[word] += vela::kWordMapRecordSize;
    }
    PutNumber(pageText.At(page * kPageTextBytes + kWordsPerPage * kTokenBytes), vela::kPageEndWord,
              kTokenBytes);
  }

  std::string pageInfo;
  std::string pageData;
  for (uint32_t page = 0; page < pages; ++page) {
    PutNumber(pageInfo, 17, 2);
    PutNumber(pageInfo, pageData.size(), 5);
    PutNumber(pageInfo, 20000 + page, 4);
    PutNumber(pageInfo, 1200000000 + page * 3600, 4);
    PutNumber(pageInfo, 10, 1);
    PutNumber(pageInfo, 0, 1);
    pageData += "http://site.example/page" + std::to_string(page) + ".html|Page number " +
                std::to_string(page) + "|What stands on page " + std::to_string(page) + "||\n";
  }

  std::string settings =
      "UseUTF8 = 1\nCharset = \"utf-8\"\nToLowerSearchWords = 1\nDisplayTitle = 1\n"
      "DisplayMetaDesc = 1\nDisplayURL = 1\nDisplayScore = 1\nFormFormat = 2\nMaxMatches = 100000\n"
      "MaxContextSeeks = 1000\nMaxContextKeywords = 3\nContextSize = 26\nDictIDLen = 4\n"
      "DictReservedSuffixes = 4\nDictReservedPrefixes = 7\nDictReservedNoSpaces = 10\n"
      "UseDateTime = 1\nDictReservedLimit = 10\n";
  const auto number = [&settings](const char* key, size_t value) {
    settings += std::string(key) + " = " + std::to_string(value) + "\n";
  };
  number("NumKeywords", words + kReserved + 1);
  number("NumPages", pages);
  number("NumVariants", variants);
  number("PageInfoSize", pageInfo.size());
  number("OutputBasewordBufferSize", baseBytes);
  number("OutputVariantBufferSize", variantBytes + 1);
  for (const char* key : {"FORM_SEARCHFOR",
                          "FORM_SUBMIT_BUTTON",
                          "FORM_RESULTS_PER_PAGE",
                          "FORM_CATEGORY",
                          "FORM_CATEGORY_ALL",
                          "FORM_MATCH",
                          "FORM_ANY_SEARCH_WORDS",
                          "FORM_ALL_SEARCH_WORDS",
                          "NO_QUERY",
                          "RESULTS_FOR",
                          "RESULTS_IN_ALL_CATEGORIES",
                          "RESULTS_IN_CATEGORY",
                          "POWEREDBY",
                          "NO_RESULTS",
                          "RESULT",
                          "RESULTS",
                          "PHRASE_CONTAINS_COMMON_WORDS",
                          "SKIPPED_FOLLOWING_WORDS",
                          "SKIPPED_PHRASE",
                          "SUMMARY_NO_RESULTS_FOUND",
                          "SUMMARY_FOUND_CONTAINING_ALL_TERMS",
                          "SUMMARY_FOUND_CONTAINING_SOME_TERMS",
                          "SUMMARY_FOUND",
                          "PAGES_OF_RESULTS",
                          "POSSIBLY_GET_MORE_RESULTS",
                          "ANY_OF_TERMS",
                          "ALL_CATS",
                          "SORTBY_RELEVANCE",
                          "SORTEDBY_DATE",
                          "SORTEDBY_RELEVANCE",
                          "SORTBY_DATE",
                          "RESULT_TERMS_MATCHED",
                          "RESULT_SCORE",
                          "RESULT_URL",
                          "RESULT_PAGES",
                          "RESULT_PAGES_PREVIOUS",
                          "RESULT_PAGES_NEXT",
                          "SEARCH_TOOK",
                          "SECONDS",
                          "DIDYOUMEAN",
                          "OR",
                          "RECOMMENDED",
                          "MAX_RESULTS",
                          "MORETHAN",
                          "CAT_SUMMARY",
                          "SORTEDBY_DATE_ASC",
                          "FORM_DATE_FROM",
                          "FORM_DATE_TO",
                          "FORM_DATE_BUTTON"}) {
    settings += std::string("STR_") + key + " = \"" + key + "\"\n";
  }

  WriteFile(directory / "vela_dictionary.vdat", dictionary);
  WriteFile(directory / "vela_pageinfo.vdat", pageInfo);
  const int32_t generation =
      vela::indexer::WriteLookup(directory, {.tokenBytes = 4, .lastSign = kReserved}, UINT32_MAX)
          .generation;
  number("LookupGeneration", static_cast<size_t>(generation));
  WriteFile(directory / "settings.vdat", settings);
  WriteFile(directory / "vela_pagedata.vdat", pageData);
  WriteFile(directory / "search_template.html",
            "<html><head></head><body>\n<!--VELASEARCH-->\n</body></html>\n");
  // For the benchmarks' queries: two frequent words, the rarest one, the two most frequent ones,
  // which stand beside each other on many pages, and two that stand on every tenth page or so.
  printf("%s %s %s %s %s %s %s\n", MakeWord(3).c_str(), MakeWord(40).c_str(),
         MakeWord(rarest).c_str(), MakeWord(0).c_str(), MakeWord(1).c_str(), MakeWord(200).c_str(),
         MakeWord(300).c_str());
  return 0;
}
