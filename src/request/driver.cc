#include "request/driver.h"

#include "index/autocomplete.h"
#include "index/completions.h"
#include "output/autocomplete.h"
#include "output/messages.h"
#include "request/run_search.h"
#include "request/search_context.h"
#include "request/start_response.h"
#include "settings/settings_file.h"

namespace vela {

namespace {

// Reads the settings. 0 when they cannot be used: the whole response has then been written.
int LoadSettings(SearchContext& ctx) {
  Set(ctx.settings.LinkBackURL, View(ctx.paths.scriptFileName));
  // A section that cannot be had takes no text; the request goes on.
  AllocateSections(ctx.output, ctx.search.perPage);
  const SettingsStatus status = ReadSettingsFile(ctx.settings, ctx.directory);
  if (status == SettingsStatus::kOk) return 1;
  WriteSettingsFailure(ctx.response, status, ctx.directory);
  return 0;
}

// Reads the parameters. 0 when they cannot be used: the whole response has then been written.
int ReadRequest(SearchContext& ctx, const CgiSource& source) {
  const ParamsResult result =
      ReadRequestParams(ctx.request, ctx.paths.scriptUrl, source, ctx.settings);
  switch (result.status) {
    case ParamsStatus::kOk:
      return 1;
    case ParamsStatus::kNoMemory:
      WriteMessage(ctx.response, Message::kOutOfMemoryForForm);
      break;
    case ParamsStatus::kUndecodable:
      WriteFormFailure(ctx.response, CgiResultMessage(result.decoding));
      ctx.exitStatus = 1;
      break;
  }
  return 0;
}

int OpenIndex(SearchContext& ctx) {
  const OpenResult result = OpenIndexFiles(ctx.index, ctx.directory, ctx.settings);
  if (result.status == LoadStatus::kOk) return 1;
  WriteOpenFailure(ctx.response, result);
  return EndRequest(ctx);
}

int LoadDictionary(SearchContext& ctx) {
  const DictionaryResult result =
      ctx.dictionary.Load(ctx.directory, ctx.settings, ctx.index.lookup);
  if (result.status == DictionaryStatus::kOk) return 1;
  WriteDictionaryFailure(ctx.response, result, ctx.settings);
  return EndRequest(ctx);
}

// False where the words of suggestions cannot be looked up: nothing has been written then.
bool AnswerCompletions(SearchContext& ctx) {
  Completions completions;
  if (!IsUtf8(ctx.settings) || !completions.Open(ctx.directory)) return false;
  WriteCompletions(ctx.response, completions, ctx.query.typed);
  return true;
}

// The suggestions are no page: no template is filled around them.
void AnswerAutoComplete(SearchContext& ctx) {
  if (StartResponse(ctx) == 0) return;
  if (ctx.settings.CompleteAnyWord == 1 && AnswerCompletions(ctx)) return;
  SuggestionReader suggestions;
  if (suggestions.Open(ctx.directory, ctx.settings) != LoadStatus::kOk) {
    WriteMessage(ctx.response, Message::kAutoCompleteMissing);
    return;
  }
  const std::span<const std::string_view> words = {ctx.query.terms.terms.data(),
                                                   ctx.query.terms.terms.size()};
  ctx.index.lookup.Open(ctx.directory, ctx.settings);
  suggestions.NarrowTo(words, IsUtf8(ctx.settings), ctx.index.lookup);
  WriteAutoComplete(ctx.response, suggestions, words, IsUtf8(ctx.settings));
}

void AnswerSearch(SearchContext& ctx) {
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
  OpenIndexDirectory(ctx.directory, View(ctx.paths.scriptDirectory));
  const bool isRead = LoadSettings(ctx) != 0 && ReadRequest(ctx, source) != 0;
  if (isRead && ctx.request.autoComplete != 0) {
    AnswerAutoComplete(ctx);
  } else if (isRead) {
    AnswerSearch(ctx);
  }
  Flush(ctx.response);
  if (!isRead) CgiDiscardBody(source);
  ReleaseRequestData(ctx.request);
  return ctx.exitStatus;
}

}  // namespace vela
