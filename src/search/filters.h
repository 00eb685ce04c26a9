// filters.h: whether a matched page stays in the results: its address, its custom meta fields, its
// categories and its date.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/meta_data.h"
#include "index/page_info.h"
#include "search/query.h"
#include "search/search_request.h"
#include "settings/settings.h"
#include "text/fixed_text.h"
#include "text/owned_array.h"

namespace vela {

// Seconds since 1970, both ends included.
struct DateRange {
  bool valid = false;
  int32_t from = 0;
  int32_t to = 0;
};

// The date range of the request: two positive numbers, or two dates as typed, day first or (with
// DateRangeFormat 1) month first, from the local start of the one to the end of the other.
DateRange ReadDateRange(const SearchRequest& request, const Settings& settings);

enum class CategoryTest { kIn, kOut, kInvalid };

// Whether the page is in the category; kInvalid when the pages have no bit for that number.
CategoryTest TestCategory(const PageTable& pages, const Settings& settings, uint32_t page,
                          int32_t category);

// What the request asks of one meta field.
struct MetaConstraint {
  bool active = false;
  int32_t number = 0;       // numeric, money (hundredths), drop-down (index)
  std::string_view text;    // text, trimmed
  uint8_t chosen[32] = {};  // multiple choice: a bit for each index asked for
};

// Reads the request's value for one field.
MetaConstraint ReadMetaConstraint(const MetaFieldDef& field, const MetaValue& value);

// Whether a page's value meets the constraint, by the field's method.
bool MeetsConstraint(const MetaFieldDef& field, const MetaConstraint& constraint,
                     const MetaData& data, TextMode mode);

// Everything that the filters need to know, prepared once for a search.
struct PageFilters {
  const Settings* settings = nullptr;
  const SearchRequest* request = nullptr;
  const PageTable* pages = nullptr;
  std::string_view pageData;  // the bytes of the page data file

  SiteRestriction site;
  OwnedArray<MetaConstraint> metaConstraints;  // one per field, or none where none is active
  DateRange dates;
  bool countsCategories = false;        // the category summary is asked for and applies
  OwnedArray<uint32_t> categoryCounts;  // one per category name while countsCategories
};

// What the filters are made from; all of it must outlive them.
struct FilterInput {
  const Settings& settings;
  const SearchRequest& request;
  const PageTable& pages;
  std::string_view pageData;  // the bytes of the page data file
  SiteRestriction site;
};

// False when memory is out.
[[nodiscard]] bool PrepareFilters(PageFilters& filters, const FilterInput& input);

// Whether the request asks for nothing that a page could fail.
bool PassesAll(const PageFilters& filters);

// Whether the page's address holds the text of the restriction, in any case.
bool PassesSiteRestriction(const PageFilters& filters, uint32_t page);

// How many constraints on meta fields the page passes; -1 when it fails one.
int32_t PassedMetaConstraints(const PageFilters& filters, uint32_t page);

// Whether the page is in a selected category, kIn when all are selected; counts it in each of them.
CategoryTest TestSelectedCategories(PageFilters& filters, uint32_t page);

bool PassesDateRange(const PageFilters& filters, uint32_t page);

// Whether CountInAllCategories counts anything.
bool CountsInAllCategories(const PageFilters& filters);

// With all categories selected, counts the page in each that holds it. False when the pages have no
// bit for one of the categories.
bool CountInAllCategories(PageFilters& filters, uint32_t page);

}  // namespace vela
