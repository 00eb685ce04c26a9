#include "inspector/show/summary.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "format/index_directory.h"
#include "inspector/findings/plain_text.h"
#include "search/lookup.h"
#include "settings/setting_keys.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

namespace {

constexpr size_t kFrequentWords = 20;

// The keys of the extensions, which stand behind all others in the table.
constexpr std::string_view kFirstExtension = "CutSigns";

std::vector<std::string_view> ExtensionsOn(const Settings& settings) {
  std::vector<std::string_view> on;
  bool isExtension = false;
  for (const NumberSetting& setting : kNumberSettings) {
    isExtension = isExtension || setting.key == kFirstExtension;
    if (isExtension && settings.*setting.field != 0) on.push_back(setting.key);
  }
  if (!IsEmpty(settings.StopWords)) on.push_back("StopWords");
  return on;
}

struct WordCountOfPages {
  uint32_t word = 0;
  int32_t pages = 0;
};

// The words on most pages, and how many words are on any.
struct WordSummary {
  uint64_t words = 0;
  uint64_t spellings = 0;  // beside the words' own
  uint64_t records = 0;
  std::vector<WordCountOfPages> frequent;
};

WordSummary SummariseWords(const OpenedIndex& index) {
  WordSummary summary;
  std::vector<WordCountOfPages> all;
  for (uint32_t word = 0; word < WordCount(index); ++word) {
    if (!IsSearchedWord(index, word)) continue;
    ++summary.words;
    const DictEntry entry = index.dictionary.EntryAt(static_cast<int32_t>(word));
    summary.spellings += static_cast<uint64_t>(std::max(entry.variantCount, 0));
    const int32_t pages = ListOf(index, word).size();
    summary.records += static_cast<uint64_t>(pages);
    all.push_back({word, pages});
  }
  const size_t most = std::min(all.size(), kFrequentWords);
  std::ranges::partial_sort(all, all.begin() + static_cast<ptrdiff_t>(most), [](auto a, auto b) {
    return a.pages != b.pages ? a.pages > b.pages : a.word < b.word;
  });
  all.resize(most);
  summary.frequent = std::move(all);
  return summary;
}

uint64_t DatedPages(const OpenedIndex& index) {
  uint64_t dated = 0;
  for (uint32_t page = 0; page < PageCount(index); ++page) {
    if (PageDateTime(index.pages, page) != kNoPageDate) ++dated;
  }
  return dated;
}

std::vector<std::string_view> FileNames() {
  std::vector<std::string_view> names(std::begin(kIndexFileNames), std::end(kIndexFileNames));
  names.push_back(kTemplateFileName);
  return names;
}

}  // namespace

std::string SummaryText(const OpenedIndex& index) {
  const Settings& settings = index.settings;
  const WordSummary words = SummariseWords(index);
  std::string text = Printable(View(index.directory.path)) + "\n";
  text += "  " + CountOfText(PageCount(index), "page", "pages") + ", " +
          CountText(DatedPages(index)) + " with a date\n";
  text += "  " + CountOfText(words.words, "word", "words") + ", " +
          CountOfText(words.spellings, "further spelling", "further spellings") + ", " +
          CountOfText(words.records, "page of a word", "pages of words") + "\n";
  text += "  written by version " + Quoted(View(settings.Version)) + " in " +
          Printable(View(settings.Charset)) + "\n";
  if (HasCategorySets(settings)) {
    text += "  " +
            CountOfText(static_cast<uint64_t>(settings.categoryNames.size()), "category",
                        "categories") +
            "\n";
  }
  if (UsesMetaFields(settings)) {
    text += "  " + CountOfText(settings.metaFields.size(), "meta field", "meta fields") + "\n";
  }
  text += "Files\n";
  uint64_t bytes = 0;
  for (const std::string_view name : FileNames()) {
    const uint64_t size = FileSize(index, name);
    if (size == 0) continue;
    bytes += size;
    std::string line = "  " + std::string(name);
    line.resize(std::max<size_t>(line.size() + 1, 28), ' ');
    text += line + BytesText(size) + "\n";
  }
  text += "  together                  " + BytesText(bytes) + "\nExtensions\n ";
  const std::vector<std::string_view> extensions = ExtensionsOn(settings);
  for (const std::string_view key : extensions) text.append(" ").append(key);
  text += extensions.empty() ? " none\n" : "\n";
  text += "Words on most pages\n";
  for (const WordCountOfPages& each : words.frequent) {
    text += "  " + Printable(index.dictionary.WordAt(static_cast<int32_t>(each.word))) + ", " +
            CountText(static_cast<uint64_t>(each.pages)) + "\n";
  }
  return text;
}

void WriteSummary(const OpenedIndex& index, JsonText& json) {
  const WordSummary words = SummariseWords(index);
  json.BeginObject("summary").Number("pages", PageCount(index));
  json.Number("dated_pages", DatedPages(index)).Number("words", words.words);
  json.Number("spellings", words.spellings).Number("records", words.records);
  json.Text("version", View(index.settings.Version));
  json.Text("charset", View(index.settings.Charset)).BeginObject("files");
  for (const std::string_view name : FileNames()) {
    const uint64_t size = FileSize(index, name);
    if (size != 0) json.Number(name, size);
  }
  json.EndObject().BeginArray("extensions");
  for (const std::string_view key : ExtensionsOn(index.settings)) json.Text({}, key);
  json.EndArray().BeginArray("frequent");
  for (const WordCountOfPages& each : words.frequent) {
    json.BeginObject().Text("word", index.dictionary.WordAt(static_cast<int32_t>(each.word)));
    json.Number("pages", each.pages).EndObject();
  }
  json.EndArray().EndObject();
}

}  // namespace vela::inspector
