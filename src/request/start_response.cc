#include "request/start_response.h"

#include <algorithm>

#include "output/markup.h"
#include "output/powered_by.h"
#include "output/response_start.h"
#include "output/search_form.h"
#include "output/xml_document.h"
#include "request/search_context.h"

namespace vela {

namespace {

// Takes the request over, with the settings where it says nothing.
void SettleRequest(SearchRequest& search, Response& response, const RequestParams& params,
                   const Settings& settings) {
  response.xml = params.XmlMode == kNotGiven ? settings.UseXML == 1 : params.XmlMode != 0;
  search.perPage = std::min(params.PerPage, settings.MaxResultsPerQuery);
  search.page = params.Page;
  search.andMode = params.AndMode;
  if (params.AndMode == kNotGiven) search.andMode = settings.DefaultToAnd == 1 ? 1 : 0;
  search.sort = params.Sort;
  search.masterNode = params.MasterNode;
  search.categories = {params.CatList.data(), params.CatCount};
  search.lastTimeFrom = params.LastTimeFrom;
  search.lastTimeTo = params.LastTimeTo;
  search.dateFrom = params.DateFrom;
  search.dateTo = params.DateTo;
  search.metaValues = {params.MetaValues.data(), params.MetaValues.size()};
}

void EscapeForDisplay(Query& query, const QueryText& text) {
  query.display = EscapedRequestText<kDisplayQuerySize>(View(text));
}

// Whether the page asked for begins behind the last result that is ever shown.
bool IsBeyondLimit(const SearchRequest& search, int32_t maxResults) {
  return (int64_t{search.page} - 1) * EffectivePerPage(search) >= maxResults;
}

}  // namespace

int StartResponse(SearchContext& ctx) {
  Settings& settings = ctx.settings;
  SettleRequest(ctx.search, ctx.response, ctx.request, settings);
  WriteHeader(ctx.response, settings);
  if (ctx.response.xml) {
    WriteXmlOpening(ctx.response, settings, ctx.search.masterNode == 1);
    if (settings.XMLHighlight == 1) settings.Highlighting = 1;
  } else {
    AppendResults(ctx.output, "<!--Vela Search Engine %s-->\n", settings.Version.bytes);
  }
  ctx.query.typed = ctx.request.Query;
  EscapeForDisplay(ctx.query, ctx.query.typed);
  if (!ctx.response.xml) {
    FillSearchForm(ctx.output, settings, ctx.search, ctx.query.display.bytes,
                   View(ctx.paths.ScriptUrl));
  }
  if (IsEmpty(ctx.query.typed)) {
    ctx.search.metaOnly = UsesMetaFields(settings) && ctx.request.QueryGiven;
    if (!ctx.search.metaOnly) {
      if (ctx.request.QueryGiven) {
        AppendSection(ctx.output, Section::kSummary, "<div class=\"summary\">%s</div>\n",
                      Text(settings.language, Str::kNoQuery));
      }
      AppendPoweredBy(ctx.output, settings);
      return EndRequest(ctx);
    }
  }
  if (IsBeyondLimit(ctx.search, settings.MaxResultsPerQuery)) {
    const char* message = Text(settings.language, Str::kMaxResults);
    if (ctx.response.xml) {
      WriteError(ctx.response, message, ErrorEnd::kPlain);
    } else {
      AppendResults(ctx.output, "%s<br />", message);
    }
    return EndRequest(ctx);
  }
  if (!ParseQuery(ctx.query, settings)) {
    WriteError(ctx.response, "Out of memory", ErrorEnd::kLineFeed);
    return EndRequest(ctx);
  }
  EscapeForDisplay(ctx.query, ctx.query.text);
  return 1;
}

}  // namespace vela
