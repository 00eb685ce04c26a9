#include "output/links.h"

#include <algorithm>
#include <cstdarg>

#include "output/markup.h"
#include "text/owned_array.h"

namespace vela {

namespace {

// The text of the date parameters, escaped to fit: 14 bytes and a NUL.
constexpr size_t kDateTextSize = 15;

constexpr std::string_view kLiteralParameter = "&amp;vela_literal=1";

void AppendCategories(LinkText& out, const Settings& settings, const SearchRequest& request) {
  if (!UsesCategories(settings) || SearchesAllCategories(request)) return;
  for (int32_t category : request.categories) {
    if (category < 0 || category >= settings.categoryNames.size()) continue;
    Appendf(out, "&amp;vela_cat%%5B%%5D=%d", category);
  }
}

void AppendMetaField(LinkText& out, const MetaFieldDef& field, const MetaValue& value) {
  if (!ReadMetaConstraint(field, value).active) return;
  if (field.type == kMetaMultiple) {
    for (size_t i = 0; i < value.chosenCount; ++i) {
      Appendf(out, "&amp;%s[]=%d", field.name.bytes, value.chosen[i]);
    }
    return;
  }
  LinkText encoded;
  UrlEncode(value.text, encoded.bytes, sizeof encoded.bytes);
  Appendf(out, "&amp;%s=%s", field.name.bytes, encoded.bytes);
}

}  // namespace

LinkParameters MakeLinkParameters(const Settings& settings, const SearchRequest& request,
                                  std::string_view query, const DateRange& dates) {
  LinkParameters parameters;
  UrlEncode(query, parameters.query.bytes, sizeof parameters.query.bytes);
  AppendCategories(parameters.categories, settings, request);
  const bool isNumbers = request.lastTimeFrom > 0 && request.lastTimeTo > 0;
  if (dates.valid && isNumbers && settings.AmendedAnswers == 1) {
    Appendf(parameters.dates, "&amp;vela_ltimefrom=%d&amp;vela_ltimeto=%d", request.lastTimeFrom,
            request.lastTimeTo);
  } else if (dates.valid) {
    Appendf(parameters.dates, "&amp;vela_datefrom=%s&amp;vela_dateto=%s",
            EscapedRequestText<kDateTextSize>(View(request.dateFrom)).bytes,
            EscapedRequestText<kDateTextSize>(View(request.dateTo)).bytes);
  }
  const size_t fields = std::min(settings.metaFields.size(), request.metaValues.size());
  for (size_t i = 0; i < fields; ++i) {
    AppendMetaField(parameters.metaFields, settings.metaFields[i], request.metaValues[i]);
  }
  if (request.isLiteral) Append(parameters.metaFields, kLiteralParameter);
  return parameters;
}

LinkText MakeLink(const Settings& settings, const LinkText& linkQuery) {
  LinkText link;
  Append(link, View(settings.LinkBackURL));
  Append(link, View(settings.linkBackSeparator));
  Append(link, View(linkQuery));
  return link;
}

LinkText MakeLinkf(const Settings& settings, const char* format, ...) {
  LinkText linkQuery;
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(linkQuery.bytes, sizeof linkQuery.bytes, format, arguments);
  va_end(arguments);
  return MakeLink(settings, linkQuery);
}

}  // namespace vela
