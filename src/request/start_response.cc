#include "request/start_response.h"

#include <algorithm>

#include "output/markup.h"
#include "output/messages.h"
#include "output/powered_by.h"
#include "output/response_start.h"
#include "output/search_form.h"
#include "output/xml_document.h"
#include "request/search_context.h"
#include "search/typed_text.h"

namespace vela {

namespace {

// The request, with the settings where it says nothing.
SearchRequest SettleRequest(const RequestParams& params, const Settings& settings, bool xml) {
  const int32_t defaultAndMode = settings.DefaultToAnd == 1 ? 1 : 0;
  return {
      .perPage = std::min(params.perPage, settings.MaxResultsPerQuery),
      .page = params.page,
      .andMode = params.andMode == kNotGiven ? defaultAndMode : params.andMode,
      .sort = params.sort,
      .masterNode = params.masterNode,
      .categories = {params.catList.data(), params.catCount},
      .lastTimeFrom = params.lastTimeFrom,
      .lastTimeTo = params.lastTimeTo,
      .dateFrom = params.dateFrom,
      .dateTo = params.dateTo,
      .metaValues = {params.metaValues.data(), params.metaValues.size()},
      .metaOnly = IsEmpty(params.query) && params.queryGiven && UsesMetaFields(settings),
      .isLiteral = params.literal == 1 && ShowsCorrected(settings),
      .marksWords = MarksWords(settings) || (xml && settings.XMLHighlight == 1),
  };
}

DisplayQuery DisplayOf(const QueryText& text, const Settings& settings) {
  DisplayQuery display = EscapedRequestText<kDisplayQuerySize>(View(text));
  if (settings.AmendedAnswers == 1 && IsUtf8(settings)) DropCutCharacter(display);
  return display;
}

// Whether the page asked for begins behind the last result that is ever shown.
bool IsBeyondLimit(const SearchRequest& search, int32_t maxResults) {
  return (int64_t{search.page} - 1) * EffectivePerPage(search) >= maxResults;
}

int EndBeyondLimit(SearchContext& ctx) {
  const char* message = Text(ctx.settings.language, Str::kMaxResults);
  if (ctx.response.xml) {
    WriteError(ctx.response, message, ErrorEnd::kPlain);
  } else {
    AppendResults(ctx.output, "%s<br />", message);
  }
  return EndRequest(ctx);
}

// Ends a request that asks for nothing: without a query, it is only a call of the search page.
int EndWithoutQuery(SearchContext& ctx) {
  if (ctx.request.queryGiven) {
    AppendSection(ctx.output, Section::kSummary, "<div class=\"summary\">%s</div>\n",
                  Text(ctx.settings.language, Str::kNoQuery));
  }
  AppendPoweredBy(ctx.output, ctx.settings);
  return EndRequest(ctx);
}

}  // namespace

int StartResponse(SearchContext& ctx) {
  const Settings& settings = ctx.settings;
  const RequestParams& params = ctx.request;
  Query& query = ctx.query;
  ctx.response.xml = params.xmlMode == kNotGiven ? settings.UseXML == 1 : params.xmlMode != 0;
  ctx.search = SettleRequest(params, settings, ctx.response.xml);
  query.typed = params.query;
  if (settings.AmendedAnswers == 1) ReplaceUnshowable(query.typed, IsUtf8(settings));
  query.typedDisplay = DisplayOf(query.typed, settings);
  WriteHeader(ctx.response, settings);
  if (ctx.response.xml) {
    WriteXmlOpening(ctx.response, settings, ctx.search.masterNode == 1);
  } else {
    AppendResults(ctx.output, "<!--Vela Search Engine %s-->\n", settings.Version.bytes);
    FillSearchForm(ctx.output, settings, ctx.search, query.typedDisplay.bytes,
                   View(ctx.paths.scriptUrl));
  }
  if (IsEmpty(query.typed) && !ctx.search.metaOnly) return EndWithoutQuery(ctx);
  if (IsBeyondLimit(ctx.search, settings.MaxResultsPerQuery)) return EndBeyondLimit(ctx);
  if (!ParseQuery(query, settings)) {
    WriteMessage(ctx.response, Message::kOutOfMemoryForSearch);
    return EndRequest(ctx);
  }
  query.display = DisplayOf(query.text, settings);
  query.isParsed = true;
  return 1;
}

}  // namespace vela
