#include "output/recommended_html.h"

#include <cstdarg>
#include <string_view>

#include "output/highlighted.h"
#include "output/result_facts.h"
#include "output/target_url.h"

namespace vela {

namespace {

void Report(const RecommendedSection& out, int32_t appended) {
  if (appended < 0) WriteRaw(out.response, "recommended buffer could not be realloc'ed<br>");
}

[[gnu::format(printf, 2, 3)]] void Append(const RecommendedSection& out, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  GrowText& text = out.sections.texts[static_cast<size_t>(Section::kRecommended)];
  Report(out, text.AppendFormatted(format, arguments));
  va_end(arguments);
}

void AppendRaw(const RecommendedSection& out, std::string_view text) {
  Report(out, AppendSectionRaw(out.sections, Section::kRecommended, text));
}

// A text of the page, with the words of the query marked.
void AppendMarked(const RecommendedSection& out, std::string_view text) {
  AppendRaw(out, Highlighted(text, out.settings, out.highlight).text());
}

void AppendImage(const RecommendedSection& out, const PageTexts& texts, const LinkText& target,
                 const LinkAttribute& attribute) {
  if (!ShowsImage(out.settings, texts)) return;
  AppendRaw(out, "<div class=\"recommend_image\">");
  Append(out, "<a href=\"%s\" %s>", target.bytes, attribute.bytes);
  Append(out, "<img src=\"%.*s\" alt=\"\" class=\"recommend_image\">",
         static_cast<int>(texts.image.size()), texts.image.data());
  AppendRaw(out, "</a></div>");
}

}  // namespace

void AppendRecommendedOpening(const RecommendedSection& out) {
  AppendRaw(out, "<div class=\"recommended\">\n");
  Append(out, "<div class=\"recommended_heading\">%s</div>\n",
         Text(out.settings.language, Str::kRecommended));
}

void AppendRecommendedLink(const RecommendedSection& out, const PageTexts& texts,
                           const LinkText& target) {
  const LinkAttribute attribute = ConfiguredLinkAttribute(out.settings);
  AppendRaw(out, "<div class=\"recommend_block\">\n");
  AppendImage(out, texts, target, attribute);
  AppendRaw(out, "<div class=\"recommend_title\">");
  Append(out, "<a href=\"%s\" %s>", target.bytes, attribute.bytes);
  if (texts.title.empty()) {
    AppendRaw(out, texts.url);
  } else {
    AppendMarked(out, texts.title);
  }
  AppendRaw(out, "</a></div>\n");
  AppendRaw(out, "<div class=\"recommend_description\">");
  AppendMarked(out, texts.description);
  AppendRaw(out, "</div>\n");
  Append(out, "<div class=\"recommend_infoline\">%.*s</div>\n", static_cast<int>(texts.url.size()),
         texts.url.data());
  AppendRaw(out, "</div>");
}

void AppendRecommendedClosing(const RecommendedSection& out) { AppendRaw(out, "</div>\n"); }

}  // namespace vela
