#include "output/result_html.h"

#include <algorithm>
#include <string_view>

#include "output/context_text.h"
#include "output/highlighted.h"

namespace vela {

namespace {

// A text of the page, with the words of the query marked.
void AppendMarked(OutputSections& sections, const ResultBlocks& blocks, std::string_view text) {
  AppendResultsRaw(sections, Highlighted(text, blocks.settings, blocks.highlight).text());
}

void AppendLink(OutputSections& sections, const Result& result) {
  AppendResults(sections, "<a href=\"%s\" %s>", result.target.bytes, result.attribute);
}

void AppendImage(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  const std::string_view image = result.texts.image;
  if (!ShowsImage(blocks.settings, result.texts)) return;
  AppendResultsRaw(sections, "<div class=\"result_image\">");
  AppendLink(sections, result);
  AppendResults(sections, "<img src=\"%.*s\" alt=\"\" class=\"result_image\" />",
                static_cast<int>(image.size()), image.data());
  AppendResultsRaw(sections, "</a></div>");
}

bool AppendTitle(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  const Settings& settings = blocks.settings;
  AppendResultsRaw(sections, "<div class=\"result_title\">");
  if (settings.DisplayNumber == 1) {
    AppendResults(sections, "<b>%d.</b>&nbsp;", result.index + 1);
  }
  AppendLink(sections, result);
  if (settings.DisplayTitle == 1) {
    AppendMarked(sections, blocks, result.texts.title);
  } else {
    AppendResultsRaw(sections, result.texts.url);
  }
  if (!result.sectionHeading.empty()) {
    AppendResultsRaw(sections, " <span class=\"result_section\">&#8250; ");
    AppendMarked(sections, blocks, result.sectionHeading);
    AppendResultsRaw(sections, "</span>");
  }
  AppendResultsRaw(sections, "</a>");
  if (UsesCategories(settings)) {
    AppendResultsRaw(sections, "<span class=\"category\">");
    const bool valid = ForEachCategoryOf(blocks, result.entry.page, [&](const char* name) {
      AppendResults(sections, " [%s]", name);
    });
    if (!valid) return false;
    AppendResultsRaw(sections, "</span>");
  }
  AppendResultsRaw(sections, "</div>\n");
  return true;
}

void AppendMetaValues(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  ForEachMetaValue(blocks, result.entry.page, [&](const MetaFieldDef& field, const char* text) {
    const char* name = field.name.bytes;
    AppendResultsRaw(sections, "<div class=\"result_custommeta\">");
    AppendResults(sections, "<span class=\"result_metaname_%s\">%s: </span>", name, name);
    AppendResults(sections, "<span class=\"result_metavalue_%s\">%s</span>", name, text);
    AppendResultsRaw(sections, "</div>");
  });
}

void AppendDescription(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  if (!ShowsDescription(blocks.settings, result.texts)) return;
  AppendResultsRaw(sections, "<div class=\"description\">");
  AppendMarked(sections, blocks, result.texts.description);
  AppendResultsRaw(sections, "</div>\n");
}

void AppendContext(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
  if (!blocks.showsContext) return;
  PageTextReader text = ContextReader(blocks);
  AppendContextHtml(sections,
                    {.settings = blocks.settings,
                     .dictionary = blocks.dictionary,
                     .terms = blocks.highlight,
                     .marksWords = blocks.request.marksWords,
                     .plan = result.plan,
                     .text = text},
                    result.entry, result.texts.title);
}

// The facts of a result, joined into one line.
using InfoLine = FixedText<kFormattedLimit>;

void StartPiece(InfoLine& line) {
  if (!IsEmpty(line)) Append(line, "&nbsp; - &nbsp;");
}

void AppendAddress(InfoLine& line, const Settings& settings, std::string_view url) {
  const bool isCut =
      settings.TruncateShowURL > 0 && url.size() > static_cast<size_t>(settings.TruncateShowURL);
  if (isCut) url = url.substr(0, static_cast<size_t>(settings.TruncateShowURL));
  Appendf(line, "%s %.*s%s", Text(settings.language, Str::kResultUrl), static_cast<int>(url.size()),
          url.data(), isCut ? "..." : "");
}

void AppendInfoLine(OutputSections& sections, const ResultBlocks& blocks, const Result& result) {
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
  ShownDate date;
  if (ReadShownDate(blocks, result, date)) {
    StartPiece(line);
    Appendf(line, "%02d %s %04d", date.day.tm_mday, kMonthNames[date.day.tm_mon],
            date.day.tm_year + 1900);
  }
  if (settings.DisplayFilesize == 1) {
    StartPiece(line);
    Appendf(line, "%uk", std::max(PageFileSize(blocks.files.pages, result.entry.page) >> 10, 1u));
  }
  if (settings.DisplayURL == 1) {
    StartPiece(line);
    AppendAddress(line, settings, result.texts.url);
  }
  AppendResults(sections, "<div class=\"infoline\">%s</div>\n", line.bytes);
}

}  // namespace

BlockStatus AppendResultHtml(OutputSections& sections, const ResultBlocks& blocks,
                             const Result& result) {
  AppendResultsRaw(sections, result.index % 2 == 1 ? "<div class=\"result_altblock\">\n"
                                                   : "<div class=\"result_block\">\n");
  AppendImage(sections, blocks, result);
  if (!AppendTitle(sections, blocks, result)) return BlockStatus::kInvalidCategory;
  AppendMetaValues(sections, blocks, result);
  AppendDescription(sections, blocks, result);
  AppendContext(sections, blocks, result);
  AppendInfoLine(sections, blocks, result);
  AppendResultsRaw(sections, "</div>\n");
  return BlockStatus::kOk;
}

}  // namespace vela
