// search_request.h: what a search is asked for, settled from the request and the settings.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "format/meta_fields.h"
#include "text/fixed_text.h"

namespace vela {

// The request's value for one custom meta field.
struct MetaValue {
  std::string_view text;    // fields without several choices; decoded, as typed
  uint8_t chosenCount = 0;  // multiple choice: how many values the request names
  // Their list numbers; kNoMetaChoice stands for none.
  uint8_t chosen[kMetaChoiceLimit] = {};
};

inline constexpr int32_t kAllCategories = -1;

// The order of the results; every other number above 2 keys by date as newest first does.
enum SortOrder : int32_t {
  kSortByRelevance = 0,  // and every number below
  kSortNewestFirst = 1,
  kSortOldestFirst = 2,
};

// The spans belong to the request, which outlives the search.
struct SearchRequest {
  int32_t perPage = 10;  // as asked for and capped; may be below 1, see EffectivePerPage
  int32_t page = 1;      // counts from 1; below 1 shows the first page
  int32_t andMode = 0;   // 1: pages must match every term
  int32_t sort = kSortByRelevance;
  int32_t masterNode = 0;               // 1 asks for the settings in XML
  std::span<const int32_t> categories;  // empty without categories; first -1: all of them
  int32_t lastTimeFrom = 0;             // both above 0: the date range in seconds
  int32_t lastTimeTo = 0;
  FixedText<15> dateFrom;  // as typed
  FixedText<17> dateTo;
  std::span<const MetaValue> metaValues;  // one per meta field, or none
  bool metaOnly = false;                  // no query, only constraints on meta fields
  bool isLiteral = false;                 // what was typed is not corrected
  bool marksWords = false;                // the words of the query are marked where they are shown
};

// Results per page wherever one divides or multiplies by it.
constexpr int32_t EffectivePerPage(const SearchRequest& request) {
  return request.perPage < 1 ? 10 : request.perPage;
}

// Whether every category is searched.
inline bool SearchesAllCategories(const SearchRequest& request) {
  return request.categories.empty() || request.categories[0] == kAllCategories;
}

}  // namespace vela
