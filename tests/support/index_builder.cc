#include "support/index_builder.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace vela::support {

const LanguageText kLanguageTexts[kLanguageTextCount] = {
    {"STR_FORM_SEARCHFOR", "Find"},
    {"STR_FORM_SUBMIT_BUTTON", "Go"},
    {"STR_FORM_RESULTS_PER_PAGE", "Per page"},
    {"STR_FORM_CATEGORY", "Shelf"},
    {"STR_FORM_CATEGORY_ALL", "Any"},
    {"STR_FORM_MATCH", "Match"},
    {"STR_FORM_ANY_SEARCH_WORDS", "some"},
    {"STR_FORM_ALL_SEARCH_WORDS", "every"},
    {"STR_NO_QUERY", "Nothing asked."},
    {"STR_RESULTS_FOR", "Results for"},
    {"STR_RESULTS_IN_ALL_CATEGORIES", "on all shelves"},
    {"STR_RESULTS_IN_CATEGORY", "on shelf"},
    {"STR_POWEREDBY", "Run by"},
    {"STR_NO_RESULTS", "No pages"},
    {"STR_RESULT", "page"},
    {"STR_RESULTS", "pages"},
    {"STR_PHRASE_CONTAINS_COMMON_WORDS", "Stopped early."},
    {"STR_SKIPPED_FOLLOWING_WORDS", "Skipped:"},
    {"STR_SKIPPED_PHRASE", "Phrase cut."},
    {"STR_SUMMARY_NO_RESULTS_FOUND", "Found nothing."},
    {"STR_SUMMARY_FOUND_CONTAINING_ALL_TERMS", "with all words."},
    {"STR_SUMMARY_FOUND_CONTAINING_SOME_TERMS", "with some words."},
    {"STR_SUMMARY_FOUND", "found."},
    {"STR_PAGES_OF_RESULTS", "sheets."},
    {"STR_POSSIBLY_GET_MORE_RESULTS", "More with"},
    {"STR_ANY_OF_TERMS", "any word"},
    {"STR_ALL_CATS", "every shelf"},
    {"STR_SORTBY_RELEVANCE", "Sort by rank"},
    {"STR_SORTEDBY_DATE", "By newest"},
    {"STR_SORTEDBY_RELEVANCE", "By rank"},
    {"STR_SORTBY_DATE", "Sort by date"},
    {"STR_RESULT_TERMS_MATCHED", "Words:"},
    {"STR_RESULT_SCORE", "Score:"},
    {"STR_RESULT_URL", "At:"},
    {"STR_RESULT_PAGES", "Sheets:"},
    {"STR_RESULT_PAGES_PREVIOUS", "Back"},
    {"STR_RESULT_PAGES_NEXT", "On"},
    {"STR_SEARCH_TOOK", "Took"},
    {"STR_SECONDS", "s."},
    {"STR_DIDYOUMEAN", "Perhaps"},
    {"STR_OR", "or"},
    {"STR_RECOMMENDED", "Picked"},
    {"STR_MAX_RESULTS", "Too far."},
    {"STR_MORETHAN", "Over"},
    {"STR_CAT_SUMMARY", "By shelf:"},
    {"STR_SORTEDBY_DATE_ASC", "By oldest"},
    {"STR_FORM_DATE_FROM", "From"},
    {"STR_FORM_DATE_TO", "To"},
    {"STR_FORM_DATE_BUTTON", "Pick"},
};

namespace {

// Appends the low `count` bytes of `value`.
void PutLittleEndian(std::string& out, uint64_t value, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    out.push_back(static_cast<char>(value & 0xFF));
    value >>= 8;
  }
}

std::string PageDataLine(const PageFields& page) {
  return page.url + "|" + page.title + "|" + page.description + "|" + page.image + "|\n";
}

std::string PageInfoRecord(const PageFields& page, uint64_t dataOffset, bool big) {
  std::string rest;
  PutLittleEndian(rest, dataOffset, 5);
  PutLittleEndian(rest, page.fileSize, 4);
  PutLittleEndian(rest, page.dateTime, 4);
  PutLittleEndian(rest, page.boost, 1);
  PutLittleEndian(rest, page.fileType, 1);
  rest += page.categoryBits;
  rest += page.metaData;
  const size_t lengthBytes = big ? 4 : 2;
  std::string record;
  PutLittleEndian(record, rest.size() + lengthBytes, lengthBytes);
  return record + rest;
}

std::string WordList(const std::vector<Occurrence>& occurrences, uint64_t tokenBytes) {
  std::string list;
  PutLittleEndian(list, occurrences.size(), 4);
  for (const Occurrence& o : occurrences) {
    PutLittleEndian(list, o.score, 1);
    PutLittleEndian(list, o.flags, 1);
    PutLittleEndian(list, o.page, 3);
    PutLittleEndian(list, o.isToken ? o.position * tokenBytes : o.position, 5);
  }
  return list;
}

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace

IndexBuilder::IndexBuilder() {
  for (const LanguageText& t : kLanguageTexts) Set(t.key, "\"" + std::string(t.text) + "\"");
}

IndexBuilder& IndexBuilder::Set(std::string_view key, std::string_view value) {
  if (const auto dropped = dropped_.find(key); dropped != dropped_.end()) dropped_.erase(dropped);
  for (auto& [existing, text] : settings_) {
    if (existing == key) {
      text = value;
      return *this;
    }
  }
  settings_.emplace_back(key, value);
  return *this;
}

IndexBuilder& IndexBuilder::Drop(std::string_view key) {
  std::erase_if(settings_, [key](const auto& entry) { return entry.first == key; });
  dropped_.emplace(key);
  return *this;
}

IndexBuilder& IndexBuilder::SettingsLine(std::string_view line) {
  settingsLines_.emplace_back(line);
  return *this;
}

IndexBuilder& IndexBuilder::Page(const PageFields& page) {
  pages_.push_back(page);
  return *this;
}

IndexBuilder& IndexBuilder::Word(std::string_view word,
                                 const std::vector<Occurrence>& occurrences) {
  WordLine line;
  line.word = word;
  line.hasList = !occurrences.empty();
  line.occurrences = occurrences;
  words_.push_back(std::move(line));
  return *this;
}

IndexBuilder& IndexBuilder::WordWithOffset(std::string_view word, std::string_view offset) {
  WordLine line;
  line.word = word;
  line.offset = offset;
  words_.push_back(std::move(line));
  return *this;
}

IndexBuilder& IndexBuilder::WordWithEmptyList(std::string_view word) {
  WordLine line;
  line.word = word;
  line.hasList = true;
  words_.push_back(std::move(line));
  return *this;
}

IndexBuilder& IndexBuilder::Variant(std::string_view variant) {
  if (words_.empty()) throw std::runtime_error("a variant needs a word before it");
  words_.back().variants.emplace_back(variant);
  return *this;
}

IndexBuilder& IndexBuilder::Tokens(const std::vector<PageTextToken>& tokens) {
  tokens_.insert(tokens_.end(), tokens.begin(), tokens.end());
  return *this;
}

uint32_t IndexBuilder::WordNumber(std::string_view word) const {
  const auto found = std::find_if(words_.begin(), words_.end(),
                                  [word](const WordLine& line) { return line.word == word; });
  if (found == words_.end()) throw std::runtime_error("no such word: " + std::string(word));
  return static_cast<uint32_t>(found - words_.begin());
}

IndexBuilder& IndexBuilder::Spelling(std::string_view key, const std::vector<int64_t>& words) {
  std::string line(key);
  for (const int64_t word : words) line += " " + std::to_string(word);
  spellingLines_.push_back(std::move(line));
  return *this;
}

IndexBuilder& IndexBuilder::Recommend(size_t page, std::string_view keywords) {
  recommendedLines_.push_back({page, std::string(keywords)});
  return *this;
}

IndexBuilder& IndexBuilder::Suggest(std::string_view suggestion) {
  suggestions_.emplace_back(suggestion);
  return *this;
}

IndexBuilder& IndexBuilder::File(std::string_view name, std::string_view bytes) {
  files_[std::string(name)] = bytes;
  return *this;
}

IndexBuilder& IndexBuilder::Omit(std::string_view name) {
  changes_.push_back({Change::Kind::kOmit, std::string(name), 0, {}});
  return *this;
}

IndexBuilder& IndexBuilder::Directory(std::string_view name) {
  changes_.push_back({Change::Kind::kDirectory, std::string(name), 0, {}});
  return *this;
}

IndexBuilder& IndexBuilder::Folder(std::string_view name) {
  folders_.emplace_back(name);
  return *this;
}

IndexBuilder& IndexBuilder::Link(std::string_view name, std::string_view target) {
  changes_.push_back({Change::Kind::kLink, std::string(name), 0, std::string(target)});
  return *this;
}

IndexBuilder& IndexBuilder::Cut(std::string_view name, size_t length) {
  changes_.push_back({Change::Kind::kCut, std::string(name), length, {}});
  return *this;
}

IndexBuilder& IndexBuilder::Patch(std::string_view name, size_t offset, std::string_view bytes) {
  changes_.push_back({Change::Kind::kPatch, std::string(name), offset, std::string(bytes)});
  return *this;
}

IndexBuilder& IndexBuilder::AppendTo(std::string_view name, std::string_view bytes) {
  changes_.push_back({Change::Kind::kAppend, std::string(name), 0, std::string(bytes)});
  return *this;
}

bool IndexBuilder::IsSet(std::string_view key) const {
  return std::any_of(settings_.begin(), settings_.end(),
                     [key](const auto& entry) { return entry.first == key; });
}

int64_t IndexBuilder::Number(std::string_view key) const {
  for (const auto& [existing, text] : settings_) {
    if (existing == key) return std::stoll(text);
  }
  return 0;
}

std::string IndexBuilder::SettingsFile(const std::map<std::string, std::string>& derived) const {
  std::string text;
  for (const auto& [key, value] : settings_) text += key + " = " + value + "\n";
  for (const auto& [key, value] : derived) {
    if (!IsSet(key) && !dropped_.contains(key)) text += key + " = " + value + "\n";
  }
  for (const std::string& line : settingsLines_) text += line + "\n";
  return text;
}

std::map<std::string, std::string> IndexBuilder::Files() const {
  std::string pageData;
  std::string pageInfo;
  std::vector<size_t> dataOffsets;
  const bool big = Number("UseBigPageInfoData") != 0;
  for (const PageFields& page : pages_) {
    dataOffsets.push_back(pageData.size());
    pageInfo += PageInfoRecord(page, pageData.size(), big);
    pageData += PageDataLine(page);
  }

  std::string dictionary;
  std::string wordMap;
  size_t baseWordBytes = 0;
  size_t variantBytes = 0;
  size_t variantCount = 0;
  const auto tokenBytes = static_cast<size_t>(Number("DictIDLen"));
  for (const WordLine& word : words_) {
    std::string offset = word.offset;
    if (offset.empty()) offset = word.hasList ? std::to_string(wordMap.size()) : "-1";
    if (word.hasList) wordMap += WordList(word.occurrences, tokenBytes);
    dictionary += word.word + " " + offset + " " + std::to_string(word.variants.size()) + "\n";
    baseWordBytes += word.word.size() + 1;
    for (const std::string& variant : word.variants) {
      dictionary += variant + "\n";
      variantBytes += variant.size() + 2;
      ++variantCount;
    }
  }

  std::string pageText;
  for (const PageTextToken& token : tokens_) {
    PutLittleEndian(pageText, token.word, tokenBytes - 1);
    PutLittleEndian(pageText, token.variant, 1);
  }

  std::string spelling;
  for (const std::string& line : spellingLines_) spelling += line + "\n";
  std::string recommended;
  for (const RecommendedLine& line : recommendedLines_) {
    recommended += line.keywords + " " + std::to_string(dataOffsets.at(line.page)) + "\n";
  }
  std::string suggestions;
  for (const std::string& line : suggestions_) suggestions += line + "\n";

  std::map<std::string, std::string> derived = {
      {"NumPages", std::to_string(pages_.size())},
      {"PageInfoSize", std::to_string(pageInfo.size())},
      {"NumKeywords", std::to_string(words_.size())},
      {"NumVariants", std::to_string(variantCount)},
      {"OutputBasewordBufferSize", std::to_string(baseWordBytes)},
      {"OutputVariantBufferSize", std::to_string(variantBytes)},
  };
  if (!spelling.empty()) derived["NumSpellings"] = std::to_string(spellingLines_.size());
  if (!recommended.empty()) derived["NumRecommended"] = std::to_string(recommendedLines_.size());

  std::map<std::string, std::string> files;
  files["settings.vdat"] = SettingsFile(derived);
  files["vela_pagedata.vdat"] = pageData;
  files["vela_pageinfo.vdat"] = pageInfo;
  files["vela_dictionary.vdat"] = dictionary;
  files["vela_wordmap.vdat"] = wordMap;
  files["vela_pagetext.vdat"] = pageText;
  if (!spelling.empty()) files["vela_spelling.vdat"] = spelling;
  if (!recommended.empty()) files["vela_recommended.vdat"] = recommended;
  if (!suggestions.empty()) files["vela_autocomplete.vdat"] = suggestions;
  for (const auto& [name, bytes] : files_) files[name] = bytes;

  for (const Change& change : changes_) {
    const auto file = files.find(change.name);
    if (file == files.end()) throw std::runtime_error("no such index file: " + change.name);
    std::string& bytes = file->second;
    switch (change.kind) {
      case Change::Kind::kOmit:
      case Change::Kind::kDirectory:
      case Change::Kind::kLink:
        files.erase(file);
        break;
      case Change::Kind::kCut:
        if (change.at > bytes.size()) throw std::runtime_error("cut beyond " + change.name);
        bytes.resize(change.at);
        break;
      case Change::Kind::kPatch:
        if (change.at + change.bytes.size() > bytes.size()) {
          throw std::runtime_error("patch beyond " + change.name);
        }
        bytes.replace(change.at, change.bytes.size(), change.bytes);
        break;
      case Change::Kind::kAppend:
        bytes += change.bytes;
        break;
    }
  }
  return files;
}

void IndexBuilder::WriteTo(const std::filesystem::path& directory) const {
  std::filesystem::create_directories(directory);
  for (const std::string& name : folders_) std::filesystem::create_directories(directory / name);
  for (const auto& [name, bytes] : Files()) {
    std::filesystem::create_directories((directory / name).parent_path());
    WriteFile(directory / name, bytes);
  }
  for (const Change& change : changes_) {
    if (change.kind == Change::Kind::kDirectory) {
      std::filesystem::create_directories(directory / change.name);
    } else if (change.kind == Change::Kind::kLink) {
      std::filesystem::create_symlink(change.bytes, directory / change.name);
    }
  }
}

}  // namespace vela::support
