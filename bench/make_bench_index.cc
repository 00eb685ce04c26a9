// Writes an index directory of a given size with made-up words, always the same for the same sizes.
//
//   make_bench_index DIRECTORY PAGES WORDS
//
// Words occur as words do: the k-th most frequent on about 1/k as many pages as the first.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kReserved = 10;
constexpr int kTokenBytes = 4;
constexpr int kWordsPerPage = 300;

void PutNumber(std::string& out, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
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

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    fprintf(stderr, "usage: make_bench_index DIRECTORY PAGES WORDS\n");
    return 2;
  }
  const std::filesystem::path directory = argv[1];
  const auto pages = static_cast<uint32_t>(atol(argv[2]));
  const auto words = static_cast<uint32_t>(atol(argv[3]));
  std::filesystem::create_directories(directory);
  std::mt19937 random(1);

  std::string pageText;
  struct Record {
    uint32_t page;
    uint64_t position;
    uint8_t proximity;
  };
  std::vector<std::vector<Record>> lists(words);
  std::vector<uint32_t> lastPage(words, UINT32_MAX);
  for (uint32_t page = 0; page < pages; ++page) {
    for (int i = 0; i < kWordsPerPage; ++i) {
      // Squaring twice leans towards the small, that is frequent, word numbers.
      double x = static_cast<double>(random()) / 4294967296.0;
      x = x * x * x * x;
      const auto word = static_cast<uint32_t>(x * words);
      const uint64_t position = pageText.size();
      PutNumber(pageText, word + kReserved + 1, kTokenBytes - 1);
      pageText.push_back('\0');
      const auto bit = static_cast<uint8_t>(0x80 >> (i * 8 / kWordsPerPage));
      if (lastPage[word] == page) {
        lists[word].back().proximity |= bit;
      } else {
        lists[word].push_back({page, position, bit});
        lastPage[word] = page;
      }
    }
    PutNumber(pageText, 0, kTokenBytes);
  }

  std::string dictionary;
  std::string wordMap;
  size_t baseBytes = 0;
  size_t variantBytes = 0;
  size_t variants = 0;
  for (int i = 0; i <= kReserved; ++i) {
    dictionary += ". -1 0\n";
    baseBytes += 2;
  }
  for (uint32_t word = 0; word < words; ++word) {
    const std::string text = MakeWord(word);
    baseBytes += text.size() + 1;
    const bool hasVariant = word % 5 == 0;
    if (lists[word].empty()) {
      dictionary += text + " -1 0\n";
      continue;
    }
    dictionary += text + " " + std::to_string(wordMap.size()) + (hasVariant ? " 1\n" : " 0\n");
    if (hasVariant) {
      std::string variant = text;
      variant[0] = static_cast<char>(variant[0] - 32);
      dictionary += variant + "\n";
      variantBytes += variant.size() + 2;
      ++variants;
    }
    PutNumber(wordMap, lists[word].size(), 4);
    for (const Record& record : lists[word]) {
      PutNumber(wordMap, 1 + random() % 200, 1);
      PutNumber(wordMap, record.proximity, 1);
      PutNumber(wordMap, record.page, 3);
      PutNumber(wordMap, record.position, 5);
    }
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

  WriteFile(directory / "settings.vdat", settings);
  WriteFile(directory / "vela_dictionary.vdat", dictionary);
  WriteFile(directory / "vela_wordmap.vdat", wordMap);
  WriteFile(directory / "vela_pageinfo.vdat", pageInfo);
  WriteFile(directory / "vela_pagedata.vdat", pageData);
  WriteFile(directory / "vela_pagetext.vdat", pageText);
  WriteFile(directory / "search_template.html",
            "<html><head></head><body>\n<!--VELASEARCH-->\n</body></html>\n");
  // For the benchmarks' queries: two frequent words, a rare one, and the two most frequent ones,
  // which stand beside each other on many pages.
  printf("%s %s %s %s %s\n", MakeWord(3).c_str(), MakeWord(40).c_str(), MakeWord(words / 2).c_str(),
         MakeWord(0).c_str(), MakeWord(1).c_str());
  return 0;
}
