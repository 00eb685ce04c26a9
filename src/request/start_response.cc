#include "request/start_response.h"

#include <algorithm>

#include "output/markup.h"
#include "output/messages.h"
#include "output/powered_by.h"
#include "output/response_start.h"
#include "output/search_form.h"
#include "output/xml_document.h"
#include "request/search_context.h"

namespace vela {

namespace {

// Takes the request over, with the settings where it says nothing.
SearchRequest SettleRequest(const RequestParams& params, const Settings& settings, bool xml) {
  SearchRequest search;
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
  search.metaOnly = IsEmpty(params.Query) && params.QueryGiven && UsesMetaFields(settings);
  search.marksWords = MarksWords(settings) || (xml && settings.XMLHighlight == 1);
  return search;
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
  if (ctx.request.QueryGiven) {
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
  ctx.response.xml = params.XmlMode == kNotGiven ? settings.UseXML == 1 : params.XmlMode != 0;
  ctx.search = SettleRequest(params, settings, ctx.response.xml);
  query.typed = params.Query;
  query.typedDisplay = EscapedRequestText<kDisplayQuerySize>(View(query.typed));
  WriteHeader(ctx.response, settings);
  if (ctx.response.xml) {
    WriteXmlOpening(ctx.response, settings, ctx.search.masterNode == 1);
  } else {
    AppendResults(ctx.output, "<!--Vela Search Engine %s-->\n", settings.Version.bytes);
    FillSearchForm(ctx.output, settings, ctx.search, query.typedDisplay.bytes,
                   View(ctx.paths.ScriptUrl));
  }
  if (IsEmpty(query.typed) && !ctx.search.metaOnly) return EndWithoutQuery(ctx);
  if (IsBeyondLimit(ctx.search, settings.MaxResultsPerQuery)) return EndBeyondLimit(ctx);
  if (!ParseQuery(query, settings)) {
    WriteMessage(ctx.response, Message::kOutOfMemoryForSearch);
    return EndRequest(ctx);
  }
  query.display = EscapedRequestText<kDisplayQuerySize>(View(query.text));
  query.isParsed = true;
  return 1;
}

}  // namespace vela
