#include "indexer/config/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <utility>

#include "indexer/config/completion.h"
#include "indexer/config/config_file.h"
#include "indexer/config/option_table.h"
#include "indexer/report/index_error.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kLines = "lines";
constexpr std::string_view kJson = "json";
constexpr std::string_view kTellLinks = "tell";
constexpr std::string_view kFailByLinks = "fail";

template <typename Value>
Value& PlaceOf(CommandLine& line, Value Options::*field) {
  return line.options.*field;
}
std::string& PlaceOf(CommandLine& line, std::string CommandLine::*field) { return line.*field; }

// The value by default, as the help tells it; empty for none.
std::string TextOf(const std::string& value) { return value; }
std::string TextOf(uint64_t value) { return std::to_string(value); }
std::string TextOf(const std::vector<std::string>&) { return {}; }

void AddShown(CLI::App& app, const OptionRow& row, Shown shown) {
  const std::string name(row.name);
  const std::string help(row.help);
  if (shown == Shown::kHelp) {
    app.set_help_flag(name, help);
  } else {
    app.set_version_flag(name, "vela_index " VELA_VERSION, help);
  }
}

template <typename Value>
void AddValue(CLI::App& app, const OptionRow& row, Value& value) {
  const std::string otherwise = row.otherwise.empty() ? TextOf(value) : std::string(row.otherwise);
  std::string help(row.help);
  if (!otherwise.empty()) help += " (default: " + otherwise + ")";
  CLI::Option* option = app.add_option(std::string(row.name), value, help);
  option->type_name(std::string(row.value));
  if (row.value.starts_with('[')) option->expected(0, 1);
  if (row.limit != 0) option->check(CLI::Range(uint64_t{1}, row.limit));
}

void AddOption(CLI::App& app, const OptionRow& row, CommandLine& line) {
  const auto add = [&](auto target) {
    if constexpr (std::is_same_v<decltype(target), Shown>) {
      AddShown(app, row, target);
    } else if constexpr (std::is_same_v<decltype(target), bool Options::*>) {
      app.add_flag(std::string(row.name), PlaceOf(line, target), std::string(row.help));
    } else {
      AddValue(app, row, PlaceOf(line, target));
    }
  };
  std::visit(add, row.target);
}

// "--site, --base-url and --out"
std::string NeededNames() {
  std::vector<std::string_view> names;
  for (const OptionRow& row : OptionTable()) {
    if (!row.needed.empty()) names.push_back(row.name);
  }
  std::string text;
  for (size_t i = 0; i < names.size(); ++i) {
    text.append(i == 0 ? "" : i + 1 < names.size() ? ", " : " and ").append(names[i]);
  }
  return text;
}

// Where the pages are is said once, and what follows from it need not be said.
void CheckSource(Options& options) {
  const bool crawls = !options.crawl.empty() || !options.sitemaps.empty();
  const bool lists = !options.list.empty();
  const int sources = (crawls ? 1 : 0) + (lists ? 1 : 0) + (options.warc.empty() ? 0 : 1) +
                      (!options.site.empty() && !lists ? 1 : 0);
  if (sources > 1) {
    throw IndexError(ExitStatus::kUsage,
                     "The pages come from one place: give --site, or --crawl with --sitemap, or "
                     "--list, or --warc.");
  }
  if (!crawls || !options.baseUrl.empty()) return;
  const std::string& first = options.crawl.empty() ? options.sitemaps[0] : options.crawl[0];
  const size_t host = first.find("://");
  if (host == first.npos) return;  // no address, as the crawl will say
  options.baseUrl = LowerAsciiCopy(first.substr(0, first.find_first_of("/?#", host + 3)));
}

// What a run that reads or merges parts can be asked for.
void CheckParts(const Options& options) {
  const bool isPart = !options.part.empty();
  if (!isPart && options.merge.empty()) return;
  const std::string given = isPart ? "--part" : "--merge";
  if (isPart && options.state.empty()) {
    throw IndexError(ExitStatus::kUsage,
                     "Give the folder for the part, too: --state DIR, another one for each part.");
  }
  const bool crawls = !options.crawl.empty() || !options.sitemaps.empty();
  if (isPart && (crawls || (!options.list.empty() && options.site.empty()))) {
    throw IndexError(ExitStatus::kUsage,
                     "--part reads a folder or archives, no web servers: fetch the pages in one "
                     "run.");
  }
  const std::pair<bool, const char*> others[] = {
      {isPart && !options.merge.empty(), "--merge"},
      {!options.checkLinks.empty(), "--check-links"},
      {isPart && !options.report.empty(), "--report"},
      {isPart && options.dryRun, "--dry-run"},
  };
  for (const auto& [isGiven, name] : others) {
    if (!isGiven) continue;
    throw IndexError(ExitStatus::kUsage, given + " does not go with " + name + ".");
  }
}

void CheckReport(const Options& options) {
  if (options.reportFormat.empty()) return;
  const std::vector<std::string_view> formats = ReportFormats();
  if (std::ranges::find(formats, options.reportFormat) == formats.end()) {
    throw IndexError(ExitStatus::kUsage, "Give --report-format lines or json.");
  }
  if (options.report.empty()) {
    throw IndexError(ExitStatus::kUsage, "Give the file of the report, too: --report FILE.");
  }
}

void CheckLinkMode(const Options& options) {
  const std::vector<std::string_view> modes = LinkCheckModes();
  if (options.checkLinks.empty() || std::ranges::find(modes, options.checkLinks) != modes.end()) {
    return;
  }
  throw IndexError(ExitStatus::kUsage,
                   "Give --check-links, --check-links=tell or "
                   "--check-links=fail.");
}

void CheckExplained(const Options& options) {
  if (options.explainPage.empty()) {
    if (!options.verbose) return;
    throw IndexError(ExitStatus::kUsage, "--verbose goes with --explain-page.");
  }
  const std::pair<bool, const char*> others[] = {
      {!options.part.empty(), "--part"},
      {!options.merge.empty(), "--merge"},
      {!options.checkLinks.empty(), "--check-links"},
      {!options.report.empty(), "--report"},
      {options.dryRun, "--dry-run"},
      {options.rollback, "--rollback"},
  };
  for (const auto& [isGiven, name] : others) {
    if (!isGiven) continue;
    throw IndexError(ExitStatus::kUsage,
                     std::string("--explain-page does not go with ") + name + ".");
  }
}

bool IsNeeded(const OptionRow& row, const Options& options) {
  if (row.needed.empty()) return false;
  if (!options.explainPage.empty() && row.name == "--out") return false;
  if (options.rollback) return row.name == "--out";
  if (!options.part.empty() && row.name == "--out") return false;
  const bool hasOther = !options.crawl.empty() || !options.sitemaps.empty() ||
                        !options.list.empty() || !options.warc.empty() || !options.merge.empty();
  return !(row.name == "--site" && hasOther);
}

void CheckComplete(CommandLine& line) {
  if (!line.options.rollback && line.options.merge.empty()) CheckSource(line.options);
  if (!line.options.rollback) CheckParts(line.options);
  CheckReport(line.options);
  CheckExplained(line.options);
  CheckLinkMode(line.options);
  for (const OptionRow& row : OptionTable()) {
    if (!IsNeeded(row, line.options)) continue;
    const auto* target = std::get_if<std::string Options::*>(&row.target);
    if (target == nullptr || !PlaceOf(line, *target).empty()) continue;
    std::string text = "Give ";
    text.append(row.needed).append(": ").append(row.name).append(" ").append(row.value);
    text.append(", or ").append(row.key).append(" in [site] of the file that --config names. ");
    throw IndexError(ExitStatus::kUsage, text.append("Run with --help for more."));
  }
}

// What only writes something and ends reads nothing, so that an option beside it would be lost
// without a word. Whether there is such an option.
bool StandsAlone(const CLI::App& app) {
  for (const OptionRow& row : OptionTable()) {
    const std::string name(row.name);
    if (row.alone.empty() || app.count(name) == 0) continue;
    for (const CLI::Option* option : app.get_options()) {
      if (option->count() == 0 || option->get_name() == name) continue;
      std::string text = name;
      text.append(" ").append(row.alone).append(" and ends: it does not go with ");
      text.append(option->get_name()).append(". Give ").append(name).append(" alone");
      throw IndexError(ExitStatus::kUsage, text.append(row.after).append("."));
    }
    return true;
  }
  return false;
}

void WriteInit(std::string file) {
  if (file.empty()) file = kConfigFileName;
  WriteExampleConfig(file);
  printf("Wrote %s. Change it, then run: vela_index --config %s\n", file.c_str(), file.c_str());
}

// Runs what stands alone, or fills line.options from the configuration file and the arguments.
// Returns whether there is a run to begin.
bool ReadArguments(CLI::App& app, int argc, const char* const* argv, CommandLine& line) {
  app.parse(argc, argv);
  if (StandsAlone(app)) {
    if (app.count("--init") != 0) WriteInit(line.initFile);
    if (app.count("--completion") != 0) fputs(CompletionScript(line.shell).c_str(), stdout);
    return false;
  }
  if (app.count("--config") != 0) {
    line.options = Options();
    ReadConfigFile(line.configFile, line.options);
    app.parse(argc, argv);  // what is given here wins over the file
  }
  if (app.count("--check-links") != 0 && line.options.checkLinks.empty()) {
    line.options.checkLinks = kTellLinks;
  }
  CheckComplete(line);
  return true;
}

}  // namespace

std::vector<std::string_view> ReportFormats() { return {kLines, kJson}; }

std::vector<std::string_view> LinkCheckModes() { return {kTellLinks, kFailByLinks}; }

bool WantsJsonReport(const Options& options) {
  if (options.report.empty()) return false;
  if (!options.reportFormat.empty()) return options.reportFormat == kJson;
  return options.report.ends_with(".json");
}

ParsedOptions ParseOptions(int argc, const char* const* argv) {
  ParsedOptions parsed;
  CommandLine line;
  CLI::App app("Indexes the pages of a web site for Vela Search.", "vela_index");
  for (const OptionRow& row : OptionTable()) AddOption(app, row, line);
  app.footer(NeededNames() +
             " must be given here or in the configuration file;\n"
             "--crawl, --sitemap, --list or --warc stands in the place of --site.\n"
             "Exit status: 0 done, 1 a file could not be read or written, 2 wrong arguments or\n"
             "configuration, 3 no page found, 4 interrupted, 5 another run at work, 6 too many\n"
             "pages missing, 7 broken links, 8 the page of --explain-page is left out.\n"
             "Unless it is 0, an index in INDEXDIR stays as it was.");
  app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
    return "vela_index: " + CLI::FailureMessage::simple(failed, error);
  });
  try {
    if (ReadArguments(app, argc, argv, line)) {
      parsed.options = std::move(line.options);
    } else {
      parsed.exitStatus = static_cast<int>(ExitStatus::kSuccess);
    }
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    parsed.exitStatus = status == 0 ? 0 : static_cast<int>(ExitStatus::kUsage);
  } catch (const IndexError& error) {
    fprintf(stderr, "vela_index: %s\n", error.what());
    parsed.exitStatus = static_cast<int>(error.status);
  }
  return parsed;
}

}  // namespace vela::indexer
