// page_content.h: what holds of every page that a reader of markup took in.
#pragma once

#include <string>

#include "indexer/extract/page.h"
#include "indexer/extract/page_date.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/clean_text.h"

namespace vela::fuzz {

inline void CheckPage(const indexer::PageContent& page) {
  CheckOneLine(page.title);
  CheckOneLine(page.description);
  for (const auto& [name, content] : page.metas) {
    VELA_CHECK(!name.empty() && !content.empty());
    CheckOneLine(content);
  }
  for (const indexer::TextRun& run : page.body) {
    CheckClean(run.text);
    VELA_CHECK(run.text.find_first_not_of(' ') != run.text.npos);
    VELA_CHECK(run.headingLevel <= 6);
  }
  const int64_t date = indexer::ReadDate(page.time);
  VELA_CHECK(date >= 0 && date <= INT32_MAX);
}

// All of a page as one text, to compare two runs.
inline std::string Listing(const indexer::PageContent& page) {
  std::string all = page.title + '\n' + page.description + '\n' + page.canonical + '\n' +
                    page.base + '\n' + page.time + '\n';
  for (const auto& [name, content] : page.metas) all += name + '=' + content + '\n';
  for (const indexer::TextRun& run : page.body) {
    all += std::to_string(run.headingLevel) + run.text + '\n';
  }
  return all;
}

}  // namespace vela::fuzz
