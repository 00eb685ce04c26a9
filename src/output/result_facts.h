// result_facts.h: what the index says of one result, for its block on the page and its item of the
// XML document alike. None of the texts is escaped here: the indexer stores its texts safe for
// HTML, and the settings file is the site owner's.
#pragma once

#include <cstdint>
#include <ctime>

#include "index/dictionary.h"
#include "index/index_files.h"
#include "index/meta_data.h"
#include "index/page_data.h"
#include "index/page_text.h"
#include "output/links.h"
#include "search/filters.h"
#include "search/highlight_terms.h"
#include "search/passages.h"
#include "search/query.h"
#include "search/ranking.h"
#include "search/search_request.h"
#include "settings/settings.h"
#include "text/fixed_text.h"

namespace vela {

// What the results are written from; refers to records that outlive it.
struct ResultBlocks {
  const Settings& settings;
  const SearchRequest& request;
  const Query& query;
  const LinkParameters& links;
  const IndexFiles& files;
  const Dictionary& dictionary;
  const HighlightTerms& highlight;
  const Matches& matches;
  bool showsContext = false;  // the search was for words, and the settings want context
  const PassageWords* passageWords = nullptr;  // null: no passages are planned
};

enum class BlockStatus { kOk, kCorruptPageData, kInvalidCategory };

// One result: where it stands and what the index says of its page.
struct Result {
  ResultEntry entry;
  int32_t index = 0;  // in the whole list, from 0
  PageTexts texts;
  LinkText target;  // where the links of the result lead
  std::string_view sectionHeading =
      {};                             // of the place it leads to; safe between tags, may be empty
  const PassagePlan* plan = nullptr;  // of its passages; null: those around the first matches
  const char* attribute = "";         // of these links, as it stands in the tag
};

inline constexpr const char* kMonthNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool ShowsImage(const Settings& settings, const PageTexts& texts);
bool ShowsDescription(const Settings& settings, const PageTexts& texts);

// The date of the page in seconds since 1970, and as a calendar day in UTC. False where none is
// known, or the settings show no dates.
struct ShownDate {
  int32_t seconds = 0;
  tm day = {};
};
bool ReadShownDate(const ResultBlocks& blocks, const Result& result, ShownDate& date);

// The text of a field's value as it is shown; text values as stored, numbers and list values by the
// settings. Empty when there is nothing to show.
using MetaText = FixedText<16384>;
MetaText MetaValueText(const Settings& settings, const MetaFieldDef& field, const MetaData& data);

// The stream of words that contexts are taken from.
PageTextReader ContextReader(const ResultBlocks& blocks);

// Calls `visit(name)` for each category that holds the page; false when the pages have no bit for
// one of them.
template <typename Visit>
bool ForEachCategoryOf(const ResultBlocks& blocks, uint32_t page, Visit visit) {
  for (int32_t i = 0; i < blocks.settings.categoryNames.size(); ++i) {
    const CategoryTest test = TestCategory(blocks.files.pages, blocks.settings, page, i);
    if (test == CategoryTest::kInvalid) return false;
    if (test == CategoryTest::kIn) visit(blocks.settings.categoryNames.At(i));
  }
  return true;
}

// Calls `visit(field, text)` for each meta field of the page that has something to show.
template <typename Visit>
void ForEachMetaValue(const ResultBlocks& blocks, uint32_t page, Visit visit) {
  const Settings& settings = blocks.settings;
  if (!ShowsMetaFields(settings)) return;
  ByteCursor cursor{PageMetaData(blocks.files.pages, page)};
  for (const MetaFieldDef& field : settings.metaFields) {
    const MetaData data = TakeMetaData(cursor, field);
    if (!data.hasValue) continue;
    const MetaText text = MetaValueText(settings, field, data);
    if (!IsEmpty(text)) visit(field, text.bytes);
  }
}

}  // namespace vela
