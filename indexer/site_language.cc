#include "indexer/site_language.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
#include <unordered_map>
#include <utility>

#include "indexer/config/embedded_files.h"
#include "indexer/extract/declared_language.h"
#include "text/ascii.h"
#include "text/stemmer.h"

namespace vela::indexer {

namespace {

// Pages that are looked at. Sites declare one language by their template, or one a folder.
constexpr size_t kSample = 400;

struct StemmedLanguage {
  std::string_view code;
  StemmingAlgorithm algorithm;
};

constexpr StemmedLanguage kLanguages[] = {
    {"da", kStemDanish},     {"de", kStemGerman},   {"en", kStemEnglish},   {"es", kStemSpanish},
    {"fi", kStemFinnish},    {"fr", kStemFrench},   {"hu", kStemHungarian}, {"it", kStemItalian},
    {"nb", kStemNorwegian},  {"nl", kStemDutch},    {"nn", kStemNorwegian}, {"no", kStemNorwegian},
    {"pt", kStemPortuguese}, {"ro", kStemRomanian}, {"ru", kStemRussian},   {"sv", kStemSwedish},
    {"tr", kStemTurkish},
};

// A page with fewer function words of a language may be in any.
constexpr size_t kLeastWords = 20;
constexpr size_t kBytesRead = size_t{64} << 10;  // of a page

// The codes of the languages whose stop words each word is among.
using FunctionWords = std::unordered_map<std::string, std::vector<std::string_view>>;

FunctionWords ReadFunctionWords() {
  constexpr std::pair<std::string_view, std::string_view> kLists[] = {
      {"dutch.txt", "nl"},      {"english.txt", "en"}, {"french.txt", "fr"},
      {"german.txt", "de"},     {"italian.txt", "it"}, {"polish.txt", "pl"},
      {"portuguese.txt", "pt"}, {"russian.txt", "ru"}, {"spanish.txt", "es"},
      {"swedish.txt", "sv"},    {"turkish.txt", "tr"}, {"czech.txt", "cs"},
      {"ukrainian.txt", "uk"},
  };
  FunctionWords words;
  for (const auto& [name, code] : kLists) {
    const EmbeddedFile* file = FindEmbeddedFile(std::string(name));
    if (file == nullptr) continue;
    std::istringstream list{std::string(file->content)};
    for (std::string word; list >> word;) words[word].push_back(code);
  }
  return words;
}

// The language that the text between the tags of a page in UTF-8 has most function words of.
std::string WrittenLanguage(std::string_view markup, const FunctionWords& functionWords) {
  std::map<std::string_view, size_t> counts;
  std::string word;
  bool inTag = false;
  for (const char c : markup.substr(0, kBytesRead)) {
    const char lower = ToLowerAscii(c);
    const bool isLetter = (lower >= 'a' && lower <= 'z') || static_cast<unsigned char>(c) >= 0x80;
    if (isLetter && !inTag) {
      word += lower;
      continue;
    }
    const auto found = functionWords.find(word);
    if (found != functionWords.end()) {
      for (const std::string_view code : found->second) ++counts[code];
    }
    word.clear();
    if (c == '<' || c == '>') inTag = c == '<';
  }
  const auto most =
      std::ranges::max_element(counts, {}, [](const auto& language) { return language.second; });
  return most == counts.end() || most->second < kLeastWords ? std::string()
                                                            : std::string(most->first);
}

}  // namespace

std::string LanguageOfPages(const Source& source, const std::vector<SourceItem>& items,
                            const volatile std::sig_atomic_t& stop) {
  const FunctionWords functionWords = ReadFunctionWords();
  std::map<std::string, size_t> pages;
  const size_t step = std::max<size_t>(1, items.size() / kSample);
  for (size_t i = 0; i < items.size() && stop == 0; i += step) {
    FileContent file;
    if (items[i].type != FileType::kHtml || source.Read(items[i], file) != Reason::kNone) {
      continue;
    }
    std::string language = DeclaredLanguage(file.bytes);
    if (language.empty()) language = WrittenLanguage(file.bytes, functionWords);
    if (!language.empty()) ++pages[std::move(language)];
  }
  const auto most =
      std::ranges::max_element(pages, {}, [](const auto& language) { return language.second; });
  return most == pages.end() ? std::string() : most->first;
}

int32_t StemmingOfLanguage(std::string_view language) {
  const auto* found = std::ranges::find(kLanguages, language, &StemmedLanguage::code);
  return found == std::end(kLanguages) ? -1 : int32_t{found->algorithm};
}

}  // namespace vela::indexer
