// options.h: the command line, on top of the configuration file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/crawl_rules.h"
#include "indexer/config/site_config.h"

namespace vela::indexer {

constexpr uint64_t kMemoryMegabytesLimit = uint64_t{1} << 20;
constexpr uint64_t kFileMegabytesLimit = 500;
constexpr uint64_t kJobsLimit = 256;
constexpr char kConfigFileName[] = "vela_index.toml";  // of --init without a name

struct Options {
  // Where the pages are: the site's folder, or in its place addresses to crawl from, sitemaps, a
  // list or archives. At least one of them is given.
  std::string site;
  std::vector<std::string> crawl;     // addresses
  std::vector<std::string> sitemaps;  // addresses
  std::string list;                   // a file of addresses, or of names below `site`; "-"
  std::vector<std::string> warc;      // files
  // A folder for what is kept from run to run. Empty: what is fetched lies in one beside the index,
  // and nothing is kept of the pages.
  std::string state;
  bool fresh = false;  // what is kept of the pages is not used
  std::string part;    // "2/7": that part of the site is read, into `state`; empty: all of it
  std::vector<std::string> merge;  // in the place of the site, folders into which parts were read
  CrawlRules crawlRules;
  std::string baseUrl;
  std::string out;
  std::string templateName;  // see LoadTemplate; empty: the one the index has, or the default
  std::string language = "english";  // a name that comes with the program, or a .vlang file
  std::vector<std::string> exclude;
  uint64_t memoryMegabytes = 256;
  uint64_t maxFileMegabytes = 20;
  uint64_t jobs = 0;         // threads that read pages; 0: one for each processor
  std::string report;        // a file to write; empty: none
  std::string reportFormat;  // one of ReportFormats; empty: as the name of the file ends
  bool followLinks = false;
  // Of the pages of the index that is there, how many in a hundred may be missing from the new one;
  // more end the run. 100: all.
  uint32_t missingPercentLimit = 100;
  bool acceptFewer = false;  // the limit is not looked at
  bool verbose = false;      // of an explained page all is told
  bool quiet = false;
  std::string program;      // the search program, to be put into the index folder; empty: none
  bool wait = false;        // for another run that is writing the same index
  bool keepLast = true;     // the index before stays, for a rollback
  std::string explainPage;  // to be explained in the place of a run; empty: none
  std::string checkLinks;   // one of LinkCheckModes; empty: links are not looked at
  bool dryRun = false;      // all is done but to put the index into place
  bool rollback = false;    // nothing is read: the index before takes its place again
  SiteConfig config;
};

// The forms of a report: JSON lines of what was left out (report_text.h), or all in one JSON
// document (run_report.h).
std::vector<std::string_view> ReportFormats();
bool WantsJsonReport(const Options& options);

// What becomes of links that lead nowhere: they are told, or end the run with kBrokenLinks.
std::vector<std::string_view> LinkCheckModes();

// Reads the arguments, and the configuration file that they name. An exit status instead of options
// means that all is said and done: help, version, --init and --completion on standard output (0), a
// message on standard error about a wrong argument or configuration (2) or a file (1).
struct ParsedOptions {
  Options options;
  std::optional<int> exitStatus;
};
ParsedOptions ParseOptions(int argc, const char* const* argv);

}  // namespace vela::indexer
