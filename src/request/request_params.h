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
  int32_t XmlMode = kNotGiven;
  FixedText<32> RemoteAddr;
  bool QueryGiven = false;  // a query parameter was present, even if empty
  QueryText Query;
  int32_t PerPage = 10;
  bool PageDefaulted = false;  // no page number was given
  int32_t Page = 1;
  int32_t AndMode = kNotGiven;
  int32_t MasterNode = 0;
  int32_t Sort = 0;
  int32_t LastTimeFrom = 0;
  int32_t LastTimeTo = 0;
  FixedText<15> DateFrom;
  FixedText<17> DateTo;
  OwnedArray<int32_t> CatList;  // the chosen categories; -1 first: all
  size_t CatCount = 0;          // how many of them are in use
  int32_t AutoComplete = 0;
  OwnedArray<MetaValue> MetaValues;  // one per meta field; texts lie in the form
  CgiForm Form;
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
