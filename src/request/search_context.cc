#include "request/search_context.h"

#include <sys/time.h>

#include "output/template.h"

namespace vela {

double CurrentTime() {
  timeval now = {};
  gettimeofday(&now, nullptr);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) / 1e6;
}

void InitSearchContext(SearchContext& ctx) { ctx.startTime = CurrentTime(); }

void ReleaseSearchContext(SearchContext& ctx) {
  CloseIndexFiles(ctx.index);
  ctx.dictionary.Release();
  ctx.stemmer.Release();
  ctx.query.terms = TermList();
  ctx.output = OutputSections();
  CloseIndexDirectory(ctx.directory);
}

int EndRequest(SearchContext& ctx) {
  if (ctx.ended) return 0;
  ctx.ended = true;
  const Query& query = ctx.query;
  FillTemplate(ctx.response,
               {.settings = ctx.settings,
                .directory = ctx.directory,
                .sections = ctx.output,
                .displayQuery = View(query.isParsed ? query.display : query.typedDisplay),
                .scriptUrl = View(ctx.paths.scriptUrl)});
  Flush(ctx.response);
  ReleaseSearchContext(ctx);
  return 0;
}

}  // namespace vela
