// summary.h: what a run did, for the person who started it.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "indexer/report/broken_link.h"
#include "indexer/report/index_changes.h"
#include "indexer/report/left_out.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Of what the owner says about the content of pages.
struct ContentSummary {
  uint64_t excluded = 0;        // elements, and stretches between remarks
  uint64_t excludingPages = 0;  // pages that have such
  uint64_t chosenPages = 0;     // of which only chosen elements are in the index
};

struct IndexSummary {
  uint64_t pages = 0;
  uint64_t sectionPages = 0;  // of these, sections of other pages
  uint64_t words = 0;         // different ones, reserved entries not counted
  uint64_t occurrences = 0;   // words and signs of the page text
  uint64_t sourceBytes = 0;   // of the pages' files
  uint64_t indexBytes = 0;    // of the files written
  std::string stemming;       // what was chosen for the site; empty: nothing had to be
  uint64_t runs = 0;          // how often the memory for words was full
  LeftOut files;
  LeftOut otherKinds;  // files of kinds that are not read, by ending
  LeftOut metaValues;  // of meta fields
  ContentSummary content;
  LeftOut remarks;  // on pages that are in the index
  LeftOut similar;  // pages that are in the index, each nearly the same as the one that is named
  std::vector<std::string> siteNames;      // taken off titles
  std::string sharedTitle;                 // in the place of which headings are shown
  std::vector<std::string> repeatedTexts;  // some of what was left out of most pages
  BrokenLinks links;
  bool usesState = false;         // what is kept from run to run was looked at
  uint64_t keptPages = 0;         // whose outcome was taken from there
  std::string part;               // "2 of 7": a part of the site was read; empty: all of it was
  uint64_t siteItems = 0;         // of a part: what the whole site has
  std::string partFolder;         // and where it lies
  bool isUnchanged = false;       // the index that is there is this one, and stays
  IndexChanges changes;           // of a dry run, and where the report tells them
  bool isDryRun = false;          // nothing was put into place
  std::vector<Finding> warnings;  // what of the configuration had no use
};

// The lines for a person at the end of a run that took `seconds` and wrote to `folder`.
std::string SummaryText(const IndexSummary& summary, const std::string& folder, double seconds);

// The links that lead nowhere, for a person: the first of them. Empty when none were sought.
std::string LinksText(const BrokenLinks& links);

// The line for a person when the index of that time, seconds since 1970, is in place again.
std::string RollbackText(std::time_t made, int32_t pages, const std::string& folder);

}  // namespace vela::indexer
