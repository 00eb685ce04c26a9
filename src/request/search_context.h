// search_context.h: the whole state of the one request that a process answers.
#pragma once

#include "index/dictionary.h"
#include "index/index_files.h"
#include "output/response.h"
#include "output/sections.h"
#include "request/request_params.h"
#include "request/script_paths.h"
#include "search/query.h"
#include "search/search_request.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/stemmer.h"

namespace vela {

// The sum of one record per room. There is one, handed down by reference and never copied; only
// the stages of a request take it whole.
struct SearchContext {
  double startTime = 0;  // seconds since 1970
  ScriptPaths paths;
  IndexDirectory directory;
  Settings settings;  // not changed once they are read
  RequestParams request;
  SearchRequest search;  // the request as settled with the settings
  Query query;
  IndexFiles index;
  Dictionary dictionary;
  Stemmer stemmer;
  OutputSections output;
  Response response;
  bool ended = false;  // the response is complete
  int exitStatus = 0;
};

// Seconds since 1970, with microseconds as the fraction.
double CurrentTime();

// Sets the record up for a request: all at rest, the start time taken.
void InitSearchContext(SearchContext& ctx);

// Completes the response around what was written (the page's template, or the closing tags in XML
// mode), hands it to the web server and releases the context. Always 0, so that a stage may say
// `return EndRequest(ctx);`. A second call does nothing.
int EndRequest(SearchContext& ctx);

// Frees everything the stages have taken. A second call does nothing.
void ReleaseSearchContext(SearchContext& ctx);

}  // namespace vela
