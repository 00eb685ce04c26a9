#include "output/result_block.h"

#include <algorithm>
#include <ctime>
#include <string_view>

#include "index/meta_data.h"
#include "index/page_data.h"
#include "output/context_text.h"
#include "output/highlighted.h"
#include "output/target_url.h"
#include "search/filters.h"
#include "text/fixed_text.h"

namespace vela {

namespace {

constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

// Shorter descriptions are not worth a line.
constexpr size_t kShortestDescription = 3;

// One result: where it stands and what the index says of its page.
struct Result {
  const ResultEntry& entry;
  int32_t index;  // in the whole list, from 0
  PageTexts texts;
  LinkText target;        // where the block's links lead
  const char* attribute;  // of these links
};

int Length(std::string_view text) { return static_cast<int>(text.size()); }

// Calls `visit(name)` for each category that holds the page; false when the pages have no bit for
// one of them.
template <typename Visit>
bool ForEachCategoryOf(const ResultBlocks& blocks, uint32_t page, Visit visit) {
  for (int32_t i = 0; i < blocks.settings.categoryNames.size(); ++i) {
    const CategoryTest test = TestCategory(blocks.files.pages, blocks.settings, page, i);
    if (test == CategoryTest::kInvalid) return false;
    if (test == CategoryTest::kIn) visit(blocks.settings.categoryNames.At(i));
  }
  return true;
}

// The text of a field's value as it is shown; text values as stored.
FixedText<16384> MetaValueText(const Settings& settings, const MetaFieldDef& field,
                               const MetaData& data) {
  FixedText<16384> text;
  switch (field.type) {
    case kMetaNumeric:
      Appendf(text, "%d", data.number);
      break;
    case kMetaMoney:
      Append(text, View(settings.MetaMoneyCurrency));
      if (settings.MetaMoneyShowDec != 0) {
        Appendf(text, "%01.2f", data.number / 100.0);
      } else {
        Appendf(text, "%d", data.number / 100);
      }
      break;
    case kMetaDropDown: {
      const char* value = MetaListValue(settings, field, data.number);
      if (value != nullptr) Append(text, value);
      break;
    }
    case kMetaMultiple: {
      bool isFirst = true;
      for (char c : data.indexes) {
        const char* value = MetaListValue(settings, field, static_cast<unsigned char>(c));
        if (value == nullptr) continue;
        if (!isFirst) Append(text, ", ");
        Append(text, value);
        isFirst = false;
      }
      break;
    }
    default:
      Append(text, data.text);
      break;
  }
  return text;
}

// Calls `visit(field, text)` for each meta field of the page that has something to show.
template <typename Visit>
void ForEachMetaValue(const ResultBlocks& blocks, uint32_t page, Visit visit) {
  const Settings& settings = blocks.settings;
  if (!ShowsMetaFields(settings)) return;
  ByteCursor cursor{PageMetaData(blocks.files.pages, page)};
  for (const MetaFieldDef& field : settings.metaFields) {
    const MetaData data = TakeMetaData(cursor, field);
    if (!data.hasValue) continue;
    const auto text = MetaValueText(settings, field, data);
    if (!IsEmpty(text)) visit(field, text.bytes);
  }
}

// Adds a text of the page, with the words of the query marked.
void AddText(OutputSections& sections, const ResultBlocks& blocks, std::string_view text) {
  const Highlighted shown(text, blocks.settings, blocks.highlight);
  AppendResults(sections, "%s", shown.text());
}

// Adds the passages around the matches; text as the dictionary holds it, safe for HTML.
void AddContext(Response& response, OutputSections& sections, const ResultBlocks& blocks,
                const Result& result) {
  if (!blocks.showsContext) return;
  PageTextReader text;
  text.file = blocks.files.pageText.bytes();
  text.tokenSize = blocks.settings.DictIDLen;
  WriteContext(response, sections, {blocks.settings, blocks.dictionary, blocks.highlight, text},
               result.entry, result.texts.title);
}

void AddImage(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  if (!ShowsImages(blocks.settings) || result.texts.image.empty()) return;
  AppendResults(sections, "<div class=\"result_image\">");
  AppendResults(sections, "<a href=\"%s\" %s>", result.target.bytes, result.attribute);
  AppendResults(sections, "<img src=\"%.*s\" alt=\"\" class=\"result_image\" />",
                Length(result.texts.image), result.texts.image.data());
  AppendResults(sections, "</a></div>");
}

bool AddTitle(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  const Settings& settings = blocks.settings;
  AppendResults(sections, "<div class=\"result_title\">");
  if (settings.DisplayNumber == 1) {
    AppendResults(sections, "<b>%d.</b>&nbsp;", result.index + 1);
  }
  AppendResults(sections, "<a href=\"%s\" %s>", result.target.bytes, result.attribute);
  if (settings.DisplayTitle == 1) {
    AddText(sections, blocks, result.texts.title);
  } else {
    AppendResults(sections, "%.*s", Length(result.texts.url), result.texts.url.data());
  }
  AppendResults(sections, "</a>");
  if (UsesCategories(settings)) {
    AppendResults(sections, "<span class=\"category\">");
    const bool valid = ForEachCategoryOf(blocks, result.entry.page, [&](const char* name) {
      AppendResults(sections, " [%s]", name);
    });
    if (!valid) return false;
    AppendResults(sections, "</span>");
  }
  AppendResults(sections, "</div>\n");
  return true;
}

void AddMetaValues(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  ForEachMetaValue(blocks, result.entry.page, [&](const MetaFieldDef& field, const char* text) {
    AppendResults(sections, "<div class=\"result_custommeta\">");
    AppendResults(sections, "<span class=\"result_metaname_%s\">%s: </span>", field.name.bytes,
                  field.name.bytes);
    AppendResults(sections, "<span class=\"result_metavalue_%s\">%s</span>", field.name.bytes,
                  text);
    AppendResults(sections, "</div>");
  });
}

bool ShowsDescription(const ResultBlocks& blocks, const Result& result) {
  return blocks.settings.DisplayMetaDesc == 1 &&
         result.texts.description.size() >= kShortestDescription;
}

void AddDescription(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  if (!ShowsDescription(blocks, result)) return;
  AppendResults(sections, "<div class=\"description\">");
  AddText(sections, blocks, result.texts.description);
  AppendResults(sections, "</div>\n");
}

bool UtcTime(int32_t seconds, tm& out) {
  const time_t time = seconds;
  return gmtime_r(&time, &out) != nullptr;
}

// The facts of a result, joined into one line.
using InfoLine = FixedText<kFormattedLimit>;

void StartPiece(InfoLine& line) {
  if (!IsEmpty(line)) Append(line, "&nbsp; - &nbsp;");
}

void AddInfoLine(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  const Settings& settings = blocks.settings;
  const LanguageStrings& language = settings.language;
  InfoLine line;
  if (settings.DisplayTerms == 1) {
    Appendf(line, "%s %d", Text(language, Str::kResultTermsMatched),
            static_cast<int32_t>(result.entry.termsMatched));
  }
  if (settings.DisplayScore == 1) {
    StartPiece(line);
    Appendf(line, "%s %u", Text(language, Str::kResultScore), result.entry.score);
  }
  const int32_t date = PageDateTime(blocks.files.pages, result.entry.page);
  tm day = {};
  if (settings.DisplayDate == 1 && date >= 1 && UtcTime(date, day)) {
    StartPiece(line);
    Appendf(line, "%02d %s %04d", day.tm_mday, kMonths[day.tm_mon], day.tm_year + 1900);
  }
  if (settings.DisplayFilesize == 1) {
    StartPiece(line);
    Appendf(line, "%uk", std::max(PageFileSize(blocks.files.pages, result.entry.page) >> 10, 1u));
  }
  if (settings.DisplayURL == 1) {
    StartPiece(line);
    const std::string_view url = result.texts.url;
    const bool cut =
        settings.TruncateShowURL > 0 && url.size() > static_cast<size_t>(settings.TruncateShowURL);
    const std::string_view shown =
        cut ? url.substr(0, static_cast<size_t>(settings.TruncateShowURL)) : url;
    Appendf(line, "%s %.*s%s", Text(language, Str::kResultUrl), Length(shown), shown.data(),
            cut ? "..." : "");
  }
  AppendResults(sections, "<div class=\"infoline\">%s</div>\n", line.bytes);
}

BlockStatus AddBlock(Response& response, OutputSections& sections, const ResultBlocks& blocks,
                     const Result& result) {
  AppendResults(sections, result.index % 2 == 1 ? "<div class=\"result_altblock\">\n"
                                                : "<div class=\"result_block\">\n");
  AddImage(sections, blocks, result);
  if (!AddTitle(sections, blocks, result)) return BlockStatus::kInvalidCategory;
  AddMetaValues(sections, blocks, result);
  AddDescription(sections, blocks, result);
  AddContext(response, sections, blocks, result);
  AddInfoLine(sections, blocks, result);
  AppendResults(sections, "</div>\n");
  return BlockStatus::kOk;
}

void WriteItemDate(Response& response, const ResultBlocks& blocks, const Result& result) {
  const int32_t date = PageDateTime(blocks.files.pages, result.entry.page);
  tm day = {};
  if (blocks.settings.DisplayDate != 1 || date < 1 || !UtcTime(date, day)) return;
  WriteOut(response, "<pubDate>%s, %02d %s %04d %02d:%02d:%02d UTC</pubDate>\n",
           kWeekdays[day.tm_wday], day.tm_mday, kMonths[day.tm_mon], day.tm_year + 1900,
           day.tm_hour, day.tm_min, day.tm_sec);
  if (blocks.request.masterNode == 1) {
    WriteOut(response, "<vela:datetime>%d</vela:datetime>\n", date);
  }
}

BlockStatus WriteItem(Response& response, OutputSections& sections, const ResultBlocks& blocks,
                      const Result& result) {
  const Settings& settings = blocks.settings;
  const PageTexts& texts = result.texts;
  WriteRaw(response, "<item>\n");
  if (ShowsImages(settings) && !texts.image.empty()) {
    WriteOut(response, "<vela:imageURL>%.*s</vela:imageURL>", Length(texts.image),
             texts.image.data());
  }
  WriteOut(response, "<title>%.*s</title>\n", Length(texts.title), texts.title.data());
  WriteOut(response, "<link>%s</link>\n", result.target.bytes);
  if (UsesCategories(settings)) {
    const bool valid = ForEachCategoryOf(blocks, result.entry.page, [&](const char* name) {
      WriteOut(response, "<category>%s</category>\n", name);
    });
    if (!valid) return BlockStatus::kInvalidCategory;
  }
  WriteOut(response, "<vela:filetype>%d</vela:filetype>\n",
           PageFileType(blocks.files.pages, result.entry.page));
  ForEachMetaValue(blocks, result.entry.page, [&](const MetaFieldDef& field, const char* text) {
    WriteOut(response, "<vela:%s>%s</vela:%s>\n", field.name.bytes, text, field.name.bytes);
  });
  if (ShowsDescription(blocks, result)) {
    WriteOut(response, "<description>%.*s</description>\n", Length(texts.description),
             texts.description.data());
  }
  AddContext(response, sections, blocks, result);
  if (settings.DisplayTerms == 1) {
    WriteOut(response, "<vela:termsMatched>%d</vela:termsMatched>\n",
             static_cast<int32_t>(result.entry.termsMatched));
  }
  if (settings.DisplayScore == 1) {
    WriteOut(response, "<vela:score>%u</vela:score>\n", result.entry.score);
  }
  WriteItemDate(response, blocks, result);
  if (settings.DisplayFilesize == 1) {
    // Kept: bytes, although a "k" follows.
    WriteOut(response, "<vela:fileSize>%dk</vela:fileSize>\n",
             static_cast<int32_t>(PageFileSize(blocks.files.pages, result.entry.page)));
  }
  WriteRaw(response, "</item>\n");
  return BlockStatus::kOk;
}

}  // namespace

BlockStatus WriteResultBlocks(Response& response, OutputSections& sections,
                              const ResultBlocks& blocks, const ResultList& results) {
  const int64_t perPage = EffectivePerPage(blocks.request);
  const int64_t first = blocks.request.page > 1 ? perPage * (blocks.request.page - 1) : 0;
  const int64_t end = std::min<int64_t>(results.size(), first + perPage);
  const LinkAttribute configuredAttribute = ConfiguredLinkAttribute(blocks.settings);
  for (int64_t i = first; i < end; ++i) {
    Result result = {results.entries[static_cast<size_t>(i)],
                     static_cast<int32_t>(i),
                     {},
                     {},
                     configuredAttribute.bytes};
    const PageTable& pages = blocks.files.pages;
    const uint32_t page = result.entry.page;
    if (!ReadPageData(blocks.files.pageData.bytes(), PageDataOffset(pages, page), result.texts)) {
      return BlockStatus::kCorruptPageData;
    }
    result.target = ResultTarget(blocks.settings, result.texts.url, View(blocks.links.query),
                                 View(blocks.query.text));
    if (blocks.settings.PluginOpenNewWindow == 1 &&
        PageFileType(pages, page) >= blocks.settings.FileTypePluginStart) {
      result.attribute = "target=\"_blank\"";
    }
    const BlockStatus status = response.xml ? WriteItem(response, sections, blocks, result)
                                            : AddBlock(response, sections, blocks, result);
    if (status != BlockStatus::kOk) return status;
  }
  return BlockStatus::kOk;
}

}  // namespace vela
