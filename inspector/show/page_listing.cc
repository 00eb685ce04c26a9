#include "inspector/show/page_listing.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "format/page_info.h"
#include "format/page_text.h"
#include "format/word_weight.h"
#include "index/byte_cursor.h"
#include "index/meta_data.h"
#include "index/page_text.h"
#include "inspector/findings/plain_text.h"
#include "inspector/show/page_name.h"
#include "inspector/show/word_listing.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

namespace {

constexpr size_t kWordsShown = 40;

struct WordOfPage {
  uint32_t word = 0;
  WordMapRecord record;
};

// The heaviest first.
std::vector<WordOfPage> WordsOf(const OpenedIndex& index, uint32_t page) {
  std::vector<WordOfPage> words;
  for (uint32_t word = 0; word < WordCount(index); ++word) {
    const std::optional<WordMapRecord> record = RecordOf(ListOf(index, word), page);
    if (record.has_value()) words.push_back({word, *record});
  }
  std::ranges::stable_sort(words, [](const WordOfPage& a, const WordOfPage& b) {
    return a.record.score > b.record.score;
  });
  return words;
}

std::string_view WordAt(const OpenedIndex& index, uint32_t word) {
  return index.dictionary.WordAt(static_cast<int32_t>(word));
}

std::vector<std::string_view> CategoriesOf(const OpenedIndex& index, uint32_t page) {
  std::vector<std::string_view> names;
  for (int32_t i = 0; i < index.settings.categoryNames.size(); ++i) {
    const auto category = static_cast<size_t>(i);
    if (CategoryByte(category) < index.pages.categoryBytes &&
        PageCategoryBit(index.pages, page, CategoryByte(category), CategoryBit(category))) {
      names.emplace_back(index.settings.categoryNames.At(i));
    }
  }
  return names;
}

std::string ListText(const Settings& settings, const MetaFieldDef& field, int32_t choice) {
  const char* text = MetaListValue(settings, field, choice);
  return text != nullptr ? text : "no value of the list";
}

std::string ValueText(const Settings& settings, const MetaFieldDef& field, const MetaData& data) {
  if (!data.hasValue) return {};
  if (field.type == kMetaNumeric) return std::to_string(data.number);
  if (field.type == kMetaMoney) {
    const int64_t cents = data.number < 0 ? -int64_t{data.number} : int64_t{data.number};
    const std::string hundredths = std::to_string(cents % 100);
    return (data.number < 0 ? "-" : "") + std::to_string(cents / 100) + "." +
           std::string(2 - hundredths.size(), '0') + hundredths;
  }
  if (field.type == kMetaDropDown) return ListText(settings, field, data.number);
  if (field.type != kMetaMultiple) return std::string(data.text);
  std::string values;
  for (const char choice : data.indexes) {
    values += (values.empty() ? "" : ", ") +
              ListText(settings, field, static_cast<unsigned char>(choice));
  }
  return values;
}

// Calls `visit(field, value)` for each meta field.
template <typename Visit>
void ForEachField(const OpenedIndex& index, uint32_t page, Visit visit) {
  if (!UsesMetaFields(index.settings)) return;
  ByteCursor cursor{PageMetaData(index.pages, page)};
  for (const MetaFieldDef& field : index.settings.metaFields) {
    const MetaData data = TakeMetaData(cursor, field);
    visit(field, ValueText(index.settings, field, data));
  }
}

// Where the page's text begins in the page text file; its end, or of fewer texts the end of the
// file.
uint64_t TextStart(const OpenedIndex& index, uint32_t page) {
  PageTextReader reader = {.file = index.pageText.bytes(), .tokenSize = index.settings.DictIDLen};
  SeekPageText(reader, 0);
  PageTextToken token;
  for (uint32_t ends = 0; ends < page;) {
    SkipToWord(reader, kPageEndWord);
    if (ReadPageTextToken(reader, token) == 0) break;
    ++ends;
  }
  return reader.position;
}

}  // namespace

std::string PageText(const OpenedIndex& index, uint32_t page) {
  const PageTexts texts = TextsOf(index, page);
  std::string text = PageName(index, page) + "\n";
  const auto add = [&](std::string_view name, std::string_view value) {
    if (value.empty()) return;
    std::string line = "  " + std::string(name);
    line.resize(std::max<size_t>(line.size() + 1, 16), ' ');
    text += line + Printable(value) + "\n";
  };
  add("title", texts.title);
  add("description", texts.description);
  add("picture", texts.image);
  add("size", BytesText(PageFileSize(index.pages, page)));
  add("date", DateText(PageDateTime(index.pages, page)));
  add("boost", std::to_string(PageBoost(index.pages, page)) + " tenths");
  add("file type", std::to_string(PageFileType(index.pages, page)));
  if (index.settings.Ranking == 1) {
    add("title mass", std::to_string(PageTitleMass(index.pages, page)));
  }
  for (const std::string_view name : CategoriesOf(index, page)) add("category", name);
  ForEachField(index, page, [&](const MetaFieldDef& field, const std::string& value) {
    add(View(field.name), value);
  });
  const std::vector<WordOfPage> words = WordsOf(index, page);
  text += "Found by " + CountOfText(words.size(), "word", "words") + "\n";
  for (size_t i = 0; i < std::min(words.size(), kWordsShown); ++i) {
    text += "  " + Printable(WordAt(index, words[i].word)) + ", " +
            RecordText(words[i].record, index.settings) + "\n";
  }
  if (words.size() > kWordsShown) {
    text += "  and " + CountText(words.size() - kWordsShown) + " more, which --json has\n";
  }
  return text;
}

void WritePage(const OpenedIndex& index, uint32_t page, JsonText& json) {
  const PageTexts texts = TextsOf(index, page);
  json.Number("page", page).Text("address", texts.url).Text("title", texts.title);
  json.Text("description", texts.description).Text("picture", texts.image);
  json.Number("size", PageFileSize(index.pages, page));
  json.Number("date", PageDateTime(index.pages, page));
  json.Number("boost", PageBoost(index.pages, page));
  json.Number("file_type", PageFileType(index.pages, page));
  if (index.settings.Ranking == 1) json.Number("title_mass", PageTitleMass(index.pages, page));
  json.BeginArray("categories");
  for (const std::string_view name : CategoriesOf(index, page)) json.Text({}, name);
  json.EndArray().BeginObject("fields");
  ForEachField(index, page, [&](const MetaFieldDef& field, const std::string& value) {
    json.Text(View(field.name), value);
  });
  json.EndObject().BeginArray("words");
  for (const WordOfPage& each : WordsOf(index, page)) {
    json.BeginObject().Text("word", WordAt(index, each.word));
    WriteRecord(each.record, index.settings, json);
    json.EndObject();
  }
  json.EndArray();
}

std::string RunningText(const OpenedIndex& index, uint32_t page) {
  const Settings& settings = index.settings;
  PageTextReader reader = {.file = index.pageText.bytes(), .tokenSize = settings.DictIDLen};
  SeekPageText(reader, TextStart(index, page));
  PageTextToken token;
  std::string text;
  bool isJoined = true;  // no blank stands before the next
  while (ReadPageTextToken(reader, token) != 0 && token.word != kPageEndWord) {
    if (token.word == kRunEndWord) {
      text += "\n";
      isJoined = true;
      continue;
    }
    const auto number = static_cast<int64_t>(token.word);
    const bool isSign = number <= settings.DictReservedLimit;
    const bool isSuffix = isSign && number <= settings.DictReservedSuffixes;
    const bool isPrefix = isSign && !isSuffix && number <= settings.DictReservedPrefixes;
    if (!isJoined && (!isSign || isPrefix)) text += " ";
    if (token.word < WordCount(index)) {
      text += index.dictionary.DisplayText(static_cast<int32_t>(token.word), token.variant);
    }
    isJoined = isSign && !isSuffix;
  }
  return text;
}

}  // namespace vela::inspector
