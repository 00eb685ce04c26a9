#include "output/result_xml.h"

#include <cinttypes>
#include <string_view>

#include "output/context_text.h"

namespace vela {

namespace {

constexpr const char* kWeekdayNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

void WriteContext(Response& response, const ResultBlocks& blocks, const Result& result) {
  if (!blocks.showsContext) return;
  PageTextReader text = ContextReader(blocks);
  WriteContextXml(response,
                  {.settings = blocks.settings,
                   .dictionary = blocks.dictionary,
                   .terms = blocks.highlight,
                   .marksWords = blocks.request.marksWords,
                   .plan = result.plan,
                   .text = text},
                  result.entry, result.texts.title);
}

void WriteDate(Response& response, const ResultBlocks& blocks, const Result& result) {
  ShownDate date;
  if (!ReadShownDate(blocks, result, date)) return;
  const tm& day = date.day;
  WriteOut(response, "<pubDate>%s, %02d %s %04d %02d:%02d:%02d UTC</pubDate>\n",
           kWeekdayNames[day.tm_wday], day.tm_mday, kMonthNames[day.tm_mon], day.tm_year + 1900,
           day.tm_hour, day.tm_min, day.tm_sec);
  if (blocks.request.masterNode == 1) {
    WriteOut(response, "<vela:datetime>%d</vela:datetime>\n", date.seconds);
  }
}

}  // namespace

void WritePageXml(Response& response, const Settings& settings, const PageTexts& texts,
                  const LinkText& target) {
  if (ShowsImage(settings, texts)) {
    WriteRaw(response, "<vela:imageURL>");
    WriteRaw(response, texts.image);
    WriteRaw(response, "</vela:imageURL>");
  }
  WriteRaw(response, "<title>");
  WriteRaw(response, texts.title);
  WriteRaw(response, "</title>\n<link>");
  WriteRaw(response, View(target));
  WriteRaw(response, "</link>\n");
}

void WriteDescriptionXml(Response& response, const PageTexts& texts) {
  WriteRaw(response, "<description>");
  WriteRaw(response, texts.description);
  WriteRaw(response, "</description>\n");
}

BlockStatus WriteResultXml(Response& response, const ResultBlocks& blocks, const Result& result) {
  const Settings& settings = blocks.settings;
  WriteRaw(response, "<item>\n");
  WritePageXml(response, settings, result.texts, result.target);
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
  if (ShowsDescription(settings, result.texts)) WriteDescriptionXml(response, result.texts);
  WriteContext(response, blocks, result);
  if (settings.DisplayTerms == 1) {
    WriteOut(response, "<vela:termsMatched>%d</vela:termsMatched>\n",
             static_cast<int32_t>(result.entry.termsMatched));
  }
  if (settings.DisplayScore == 1) {
    WriteOut(response, "<vela:score>%u</vela:score>\n", result.entry.score);
  }
  WriteDate(response, blocks, result);
  if (settings.DisplayFilesize == 1) {
    // Kept: bytes, although a "k" follows (golden output/xml_items).
    const int64_t size = PageFileSize(blocks.files.pages, result.entry.page);
    WriteOut(response, "<vela:fileSize>%" PRId64 "k</vela:fileSize>\n",
             settings.AmendedAnswers == 1 ? size : int64_t{static_cast<int32_t>(size)});
  }
  WriteRaw(response, "</item>\n");
  return BlockStatus::kOk;
}

}  // namespace vela
