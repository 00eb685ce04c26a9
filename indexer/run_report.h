// run_report.h: the whole report of a run as one JSON document (--report), written while the run
// goes on, so that it takes no memory however large the site is. docs/report.md has its members.
#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

#include "indexer/collect/page_collection.h"
#include "indexer/config/options.h"
#include "indexer/report/index_error.h"
#include "indexer/report/progress.h"
#include "indexer/report/summary.h"
#include "indexer/source/source.h"
#include "indexer/write/out_file.h"
#include "indexer/write/page_table_writer.h"

namespace vela::indexer {

class RunReport {
 public:
  // Does nothing from here on when the options ask for no report, or for the other form. Every
  // other function throws IndexError when the file cannot be written.
  RunReport(const Options& options, const Progress& progress);

  // Whether there is somebody to tell.
  bool isWanted() const { return !path_.empty(); }
  // Begins the file, with what the source lists and nobody reads. Before the pages.
  void AddListing(const SiteListing& listing);
  // A page that joined the index last; it is nearly the same as the one at `similar`, unless that
  // is empty.
  void AddPage(const SourceItem& item, const PageEntry& entry, uint64_t number,
               std::string_view similar);
  // A page that was read, or could not be, and is left out: for the one at `other`, where it is a
  // copy; else that is empty.
  void AddLeftOut(const SourceItem& item, Reason reason, std::string_view other);
  // The rest, of a run that has all it needs.
  void Finish(const IndexSummary& summary);
  // The rest, of a run that ends so. What was begun is whole JSON then. The report of another run
  // that is at work stays as it is.
  void Fail(ExitStatus status, std::string_view message);

 private:
  void Begin();
  void Write(const std::string& text);
  void AddObject(std::string object);
  void BeginList(std::string_view name);
  void EndList();
  void Close(std::string_view result, ExitStatus status, std::string_view message);

  std::string path_;
  const Progress& progress_;
  std::time_t started_ = 0;
  bool isDryRun_ = false;
  bool hasTitles_ = false;  // in UTF-8
  bool isFirst_ = true;     // of the list that is being written
  std::unique_ptr<OutFile> file_;
};

// The report as text, where the options ask for that form of it. Throws IndexError.
void WriteTextReport(const Options& options, const IndexSummary& summary);

// The address of the page that stands for that of `item`, which was left out as a copy; empty for
// one that nothing is known of.
std::string OriginalOf(const SourceItem& item, Reason reason, const PageCollection& collection,
                       PageTableWriter& table);

}  // namespace vela::indexer
