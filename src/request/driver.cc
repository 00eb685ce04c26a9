#include "request/driver.h"

#include "index/autocomplete.h"
#include "request/run_search.h"
#include "request/search_context.h"
#include "request/start_response.h"
#include "settings/settings_file.h"

namespace vela {

namespace {

// Reads the settings. 0 when they cannot be used: the whole response has then been written.
int LoadSettings(SearchContext& ctx) {
  Set(ctx.settings.LinkBackURL, View(ctx.paths.ScriptFileName));
  // A section that cannot be had takes no text; the request goes on.
  AllocateSections(ctx.output, ctx.search.perPage);
  const SettingsStatus status = ReadSettingsFile(ctx.settings, ctx.directory);
  if (status != SettingsStatus::kOk) {
    WriteSettingsError(ctx.response, status, ctx.directory);
    return 0;
  }
  ctx.request.Sort = ctx.settings.DefaultSort;
  return 1;
}

int OpenIndex(SearchContext& ctx) {
  if (!OpenIndexFiles(ctx.index, ctx.directory, ctx.settings, ctx.response)) {
    return EndRequest(ctx);
  }
  return 1;
}

int LoadDictionary(SearchContext& ctx) {
  switch (ctx.dictionary.Load(ctx.directory, ctx.settings, ctx.response)) {
    case DictionaryStatus::kOk:
      return 1;
    case DictionaryStatus::kEnded:
      return EndRequest(ctx);
    case DictionaryStatus::kFailed:
      break;
  }
  WriteError(ctx.response, "Failed to load dictionary file.<br />\n", ErrorEnd::kPlain);
  return EndRequest(ctx);
}

void AnswerSearch(SearchContext& ctx) {
  if (ctx.request.AutoComplete != 0) {
    // The suggestions are no page: no template is filled around them.
    if (StartResponse(ctx) != 0) {
      const auto& terms = ctx.query.terms.terms;
      static_cast<void>(WriteAutoComplete(ctx.response, ctx.directory, ctx.settings,
                                          {terms.data(), terms.size()}));
    }
    return;
  }
  if (StartResponse(ctx) != 0 && OpenIndex(ctx) != 0 && LoadDictionary(ctx) != 0) RunSearch(ctx);
}

}  // namespace

int RunRequest(SearchContext& ctx, std::span<const char* const> arguments,
               const CgiSource& source) {
  InitSearchContext(ctx);
  SplitProgramPath(ctx.paths, arguments.empty() ? "" : arguments[0]);
  const auto further = arguments.empty() ? arguments : arguments.subspan(1);
  if (!AreArgumentsOfQuery(further, CgiEnv(source, "QUERY_STRING"))) {
    ReadDirectorySwitch(ctx.paths, further);
  }
  OpenIndexDirectory(ctx.directory, View(ctx.paths.ScriptDirectory));
  bool isRead = false;
  if (LoadSettings(ctx) != 0) {
    switch (
        ReadRequestParams(ctx.request, ctx.paths.ScriptUrl, source, ctx.settings, ctx.response)) {
      case ParamsStatus::kOk:
        isRead = true;
        AnswerSearch(ctx);
        break;
      case ParamsStatus::kNoMemory:
        break;
      case ParamsStatus::kUndecodable:
        ctx.exitStatus = 1;
        break;
    }
  }
  Flush(ctx.response);
  if (!isRead) CgiDiscardBody(source);
  ReleaseRequestData(ctx.request);
  return ctx.exitStatus;
}

}  // namespace vela
