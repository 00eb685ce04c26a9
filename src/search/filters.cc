#include "search/filters.h"

#include <algorithm>
#include <ctime>

#include "format/page_info.h"
#include "index/page_data.h"
#include "text/ascii.h"
#include "text/edit.h"
#include "text/numbers.h"

namespace vela {

namespace {

struct TypedDate {
  int32_t first = 0;
  int32_t second = 0;
  int32_t third = 0;
  bool IsPositive() const { return first > 0 && second > 0 && third > 0; }
};

// Reads "1/2/2010"; what cannot be read stays 0.
TypedDate ReadTypedDate(std::string_view text) {
  TypedDate date;
  for (int32_t* number : {&date.first, &date.second, &date.third}) {
    const DecimalResult read = ScanDecimal32(text);
    if (read.consumed == 0) break;
    *number = read.value;
    text.remove_prefix(read.consumed);
    if (!text.starts_with('/')) break;
    text.remove_prefix(1);
  }
  return date;
}

// The local time of that day in standard time; false when it is no 32-bit count of seconds.
bool LocalSeconds(const TypedDate& date, bool monthFirst, bool endOfDay, int32_t& seconds) {
  tm time = {};
  time.tm_mday = monthFirst ? date.second : date.first;
  time.tm_mon = (monthFirst ? date.first : date.second) - 1;
  time.tm_year = date.third - 1900;
  if (endOfDay) {
    time.tm_hour = 23;
    time.tm_min = 59;
    time.tm_sec = 59;
  }
  time.tm_isdst = 0;
  const time_t result = mktime(&time);
  if (result == -1 || result < INT32_MIN || result > INT32_MAX) return false;
  seconds = static_cast<int32_t>(result);
  return true;
}

// Whether a decimal number stands there, which may begin with its point.
bool StartsWithMoney(std::string_view text) {
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) text.remove_prefix(1);
  if (text.starts_with('.')) text.remove_prefix(1);
  return !text.empty() && IsDigit(text[0]);
}

// A decimal number in hundredths, rounded at the third place; saturates.
int32_t ReadHundredths(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  int64_t hundredths = 0;
  size_t at = 0;
  const auto addDigit = [&hundredths](int digit) {
    if (hundredths <= INT32_MAX) hundredths = hundredths * 10 + digit;
  };
  for (; at < text.size() && IsDigit(text[at]); ++at) addDigit(text[at] - '0');
  const bool hasPoint = at < text.size() && text[at] == '.';
  const std::string_view fraction = hasPoint ? text.substr(at + 1) : std::string_view();
  const auto digitAt = [fraction](size_t place) {
    for (size_t i = 0; i <= place; ++i) {
      if (i >= fraction.size() || !IsDigit(fraction[i])) return 0;
    }
    return fraction[place] - '0';
  };
  addDigit(digitAt(0));
  addDigit(digitAt(1));
  if (digitAt(2) >= 5) ++hundredths;
  return SaturateToInt32(negative ? -hundredths : hundredths);
}

bool HasBit(const uint8_t* bits, int index) { return (bits[index / 8] >> (index % 8) & 1) != 0; }

bool CompareNumbers(int32_t method, int32_t pageValue, int32_t wanted) {
  switch (method) {
    case kNumberAtMost:
      return pageValue <= wanted;
    case kNumberAtLeast:
      return pageValue >= wanted;
    default:
      return pageValue == wanted;
  }
}

bool CompareTexts(int32_t method, std::string_view pageValue, std::string_view wanted,
                  TextMode mode) {
  switch (method) {
    case kTextEqual:
      return WordCompare(mode, pageValue, wanted) == 0;
    case kTextBegins:
      return FindNoCase(pageValue, wanted, mode.utf8, wanted.size()) == 0;
    default:
      return FindNoCase(pageValue, wanted, mode.utf8) != pageValue.npos;
  }
}

// Whether the page names at least one, or (with kChoicesAll) every one of the indexes asked for. An
// index beyond the list counts for nothing.
bool CompareChoices(const MetaFieldDef& field, const MetaConstraint& constraint,
                    const MetaData& data) {
  uint8_t named[32] = {};
  for (char c : data.indexes) {
    const auto index = static_cast<unsigned char>(c);
    if (index < field.numValues) named[index / 8] |= static_cast<uint8_t>(1 << (index % 8));
  }
  bool any = false;
  bool all = true;
  for (int index = 0; index < 256; ++index) {
    if (!HasBit(constraint.chosen, index)) continue;
    const bool isNamed = HasBit(named, index);
    any = any || isNamed;
    all = all && isNamed;
  }
  return field.method == kChoicesAll ? all : any;
}

void Count(PageFilters& filters, int32_t category) {
  if (!filters.countsCategories) return;
  const auto index = static_cast<size_t>(category);
  if (category >= 0 && index < filters.categoryCounts.size()) ++filters.categoryCounts[index];
}

bool SelectionActive(const PageFilters& filters) {
  return UsesCategories(*filters.settings) && !SearchesAllCategories(*filters.request);
}

}  // namespace

DateRange ReadDateRange(const SearchRequest& request, const Settings& settings) {
  DateRange range;
  if (!SearchesDates(settings)) return range;
  if (request.lastTimeFrom > 0 && request.lastTimeTo > 0) {
    return {true, request.lastTimeFrom, request.lastTimeTo};
  }
  const TypedDate from = ReadTypedDate(View(request.dateFrom));
  const TypedDate to = ReadTypedDate(View(request.dateTo));
  if (!from.IsPositive() || !to.IsPositive()) return range;
  const bool monthFirst = settings.DateRangeFormat == 1;
  range.valid = LocalSeconds(from, monthFirst, false, range.from) &&
                LocalSeconds(to, monthFirst, true, range.to);
  return range;
}

CategoryTest TestCategory(const PageTable& pages, const Settings& settings, uint32_t page,
                          int32_t category) {
  const size_t wanted = category < 0 ? 0 : static_cast<size_t>(category);
  if (static_cast<int64_t>(CategoryByte(wanted)) >= settings.NumCatBytes)
    return CategoryTest::kInvalid;
  if (category < 0) return CategoryTest::kOut;
  const bool isIn = PageCategoryBit(pages, page, CategoryByte(wanted), CategoryBit(wanted));
  return isIn ? CategoryTest::kIn : CategoryTest::kOut;
}

MetaConstraint ReadMetaConstraint(const MetaFieldDef& field, const MetaValue& value) {
  MetaConstraint constraint;
  const std::string_view text = TrimAll(value.text);
  switch (field.type) {
    case kMetaNumeric:
      constraint.active = ScanDecimal32(text).consumed > 0;
      constraint.number = ReadDecimal32(text);
      break;
    case kMetaMoney:
      constraint.active = StartsWithMoney(text);
      constraint.number = ReadHundredths(text);
      break;
    case kMetaDropDown:
      constraint.number = value.text.empty() ? -1 : ReadDecimal32(value.text);
      constraint.active = constraint.number != -1;
      break;
    case kMetaMultiple:
      constraint.active = value.chosenCount > 0 && value.chosen[0] != kNoMetaChoice;
      for (size_t i = 0; constraint.active && i < value.chosenCount; ++i) {
        constraint.chosen[value.chosen[i] / 8] |= static_cast<uint8_t>(1 << (value.chosen[i] % 8));
      }
      break;
    default:
      constraint.active = !text.empty();
      constraint.text = text;
      break;
  }
  return constraint;
}

bool MeetsConstraint(const MetaFieldDef& field, const MetaConstraint& constraint,
                     const MetaData& data, TextMode mode) {
  if (!data.hasValue) return false;
  switch (field.type) {
    case kMetaNumeric:
    case kMetaMoney:
      return CompareNumbers(field.method, data.number, constraint.number);
    case kMetaDropDown:
      return data.number < field.numValues && data.number == constraint.number;
    case kMetaMultiple:
      return CompareChoices(field, constraint, data);
    default:
      return CompareTexts(field.method, data.text, constraint.text, mode);
  }
}

bool PrepareFilters(PageFilters& filters, const FilterInput& input) {
  const Settings& settings = input.settings;
  const SearchRequest& request = input.request;
  filters.settings = &settings;
  filters.request = &request;
  filters.pages = &input.pages;
  filters.pageData = input.pageData;
  filters.site = input.site;
  filters.dates = ReadDateRange(request, settings);
  const bool summaryApplies = SearchesAllCategories(request) || request.categories.size() >= 2;
  filters.countsCategories =
      HasCategorySets(settings) && settings.DisplayCatSummary == 1 && summaryApplies;
  if (filters.countsCategories) {
    const auto names = static_cast<size_t>(settings.categoryNames.size());
    if (!filters.categoryCounts.TryAllocate(names)) return false;
  }
  const size_t fields = std::min(settings.metaFields.size(), request.metaValues.size());
  if (!filters.metaConstraints.TryAllocate(fields)) return false;
  for (size_t i = 0; i < fields; ++i) {
    filters.metaConstraints[i] = ReadMetaConstraint(settings.metaFields[i], request.metaValues[i]);
  }
  const auto isActive = [](const MetaConstraint& constraint) { return constraint.active; };
  if (std::none_of(filters.metaConstraints.begin(), filters.metaConstraints.end(), isActive)) {
    filters.metaConstraints.Release();
  }
  return true;
}

bool PassesAll(const PageFilters& filters) {
  return !filters.site.active && filters.metaConstraints.empty() && !SelectionActive(filters) &&
         !filters.dates.valid;
}

bool PassesSiteRestriction(const PageFilters& filters, uint32_t page) {
  std::string_view url;
  const bool read = ReadPageUrl(filters.pageData, PageDataOffset(*filters.pages, page), url);
  if (!read) url = {};  // a page without an address holds only the empty restriction
  const size_t at = FindNoCase(url, filters.site.text, IsUtf8(*filters.settings));
  return at != url.npos;
}

int32_t PassedMetaConstraints(const PageFilters& filters, uint32_t page) {
  if (filters.metaConstraints.empty()) return 0;
  ByteCursor cursor{PageMetaData(*filters.pages, page)};
  int32_t passed = 0;
  for (size_t i = 0; i < filters.metaConstraints.size(); ++i) {
    const MetaFieldDef& field = filters.settings->metaFields[i];
    const MetaConstraint& constraint = filters.metaConstraints[i];
    const MetaData data = TakeMetaData(cursor, field);
    if (!constraint.active) continue;
    if (!MeetsConstraint(field, constraint, data, WordMode(*filters.settings))) return -1;
    ++passed;
  }
  return passed;
}

CategoryTest TestSelectedCategories(PageFilters& filters, uint32_t page) {
  if (!SelectionActive(filters)) return CategoryTest::kIn;
  CategoryTest result = CategoryTest::kOut;
  for (int32_t category : filters.request->categories) {
    const CategoryTest test = TestCategory(*filters.pages, *filters.settings, page, category);
    if (test == CategoryTest::kInvalid) return test;
    if (test == CategoryTest::kOut) continue;
    result = CategoryTest::kIn;
    Count(filters, category);
  }
  return result;
}

bool PassesDateRange(const PageFilters& filters, uint32_t page) {
  if (!filters.dates.valid) return true;
  const int32_t date = PageDateTime(*filters.pages, page);
  return filters.dates.from <= date && date <= filters.dates.to;
}

bool CountsInAllCategories(const PageFilters& filters) {
  return filters.countsCategories && SearchesAllCategories(*filters.request);
}

bool CountInAllCategories(PageFilters& filters, uint32_t page) {
  if (!CountsInAllCategories(filters)) return true;
  for (int32_t category = 0; category < filters.settings->categoryNames.size(); ++category) {
    const CategoryTest test = TestCategory(*filters.pages, *filters.settings, page, category);
    if (test == CategoryTest::kInvalid) return false;
    if (test == CategoryTest::kIn) Count(filters, category);
  }
  return true;
}

}  // namespace vela
