// request_params.h: everything a request can say, each parameter with its fallback.
#pragma once

#include <cstdint>

#include "request/cgi_form.h"
#include "search/query.h"
#include "search/search_request.h"
#include "settings/settings.h"
#include "text/fixed_text.h"
#include "text/owned_array.h"

namespace vela {

inline constexpr int32_t kNotGiven = -1001;

struct RequestParams {
  int32_t xmlMode = kNotGiven;
  FixedText<32> remoteAddr;
  bool queryGiven = false;  // a query parameter was present, even if empty
  QueryText query;
  int32_t perPage = 10;
  bool pageDefaulted = false;  // no page number was given
  int32_t page = 1;
  int32_t andMode = kNotGiven;
  int32_t masterNode = 0;
  int32_t sort = 0;
  int32_t lastTimeFrom = 0;
  int32_t lastTimeTo = 0;
  FixedText<15> dateFrom;
  FixedText<17> dateTo;
  OwnedArray<int32_t> catList;  // the chosen categories; -1 first: all
  size_t catCount = 0;          // how many of them are in use
  int32_t autoComplete = 0;
  int32_t literal = 0;               // 1: what was typed is not corrected
  OwnedArray<MetaValue> metaValues;  // one per meta field; texts lie in the form
  CgiForm form;
};

enum class ParamsStatus {
  kOk,
  kNoMemory,
  kUndecodable,
};

struct ParamsResult {
  ParamsStatus status = ParamsStatus::kOk;
  CgiResult decoding = CgiResult::kOk;  // why, when kUndecodable
};

// Decodes the request and reads its parameters. `scriptUrl` becomes the program's address as the
// server names it.
[[nodiscard]] ParamsResult ReadRequestParams(RequestParams& params, FixedText<2048>& scriptUrl,
                                             const CgiSource& source, const Settings& settings);

// Frees what the request owns.
void ReleaseRequestData(RequestParams& params);

}  // namespace vela
