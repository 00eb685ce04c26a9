#include "indexer/config/options.h"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "indexer/config/config_file.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr char kDefaultConfigName[] = "vela_index.toml";

// What the command line alone says; what was given wins over the configuration file.
struct CommandLine {
  Options given;
  std::string configFile;
  std::string initFile;
};

void AddOptions(CLI::App& app, CommandLine& line) {
  Options& given = line.given;
  app.set_version_flag("--version", "vela_index " VELA_VERSION);
  app.add_option("--config", line.configFile,
                 "Configuration of the site and its search; the options below win over it")
      ->type_name("FILE");
  app.add_option("--init", line.initFile,
                 "Write a commented configuration file and end (default: vela_index.toml)")
      ->type_name("[FILE]")
      ->expected(0, 1);
  app.add_option("--site", given.site, "Folder with the site's HTML and text files")
      ->type_name("DIR");
  app.add_option("--base-url", given.baseUrl,
                 "Address of that folder on the web, such as https://www.example.org/ or /docs/")
      ->type_name("URL");
  app.add_option("--out", given.out,
                 "Folder for the index; made, or replaced in one step when it exists")
      ->type_name("INDEXDIR");
  app.add_option("--template", given.templateName,
                 "Page around the results: default, minimal, embed or a file of your own "
                 "(default: the one in INDEXDIR, else default)")
      ->type_name("NAME|FILE");
  app.add_option("--language", given.language,
                 "Language of the search page: a built-in one or a .vlang file (default: english)")
      ->type_name("NAME|FILE");
  app.add_option("--exclude", given.exclude,
                 "Leave out files and folders of this name or path; * and ? are wild; repeatable")
      ->type_name("PATTERN");
  app.add_option("--memory", given.memoryMegabytes,
                 "Memory for collecting words before they go to disk, in MB (default: 256)")
      ->type_name("MB")
      ->check(CLI::Range(uint64_t{1}, kMostMemoryMegabytes));
  app.add_option("--max-file-size", given.maxFileMegabytes,
                 "Leave out larger files, in MB (default: 20)")
      ->type_name("MB")
      ->check(CLI::Range(uint64_t{1}, kMostFileMegabytes));
  app.add_flag("--quiet", given.quiet, "No progress and no summary");
  app.footer(
      "--site, --base-url and --out must be given here or in the configuration file.\n"
      "Exit status: 0 done, 1 a file could not be read or written, 2 wrong arguments or\n"
      "configuration, 3 no page found, 4 interrupted. Unless it is 0, an index in INDEXDIR\n"
      "stays as it was.");
}

void TakeGiven(const CLI::App& app, const CommandLine& line, Options& options) {
  const Options& given = line.given;
  const auto take = [&](const char* name, auto& into, const auto& value) {
    if (app.count(name) != 0) into = value;
  };
  take("--site", options.site, given.site);
  take("--base-url", options.baseUrl, given.baseUrl);
  take("--out", options.out, given.out);
  take("--template", options.templateName, given.templateName);
  take("--language", options.language, given.language);
  take("--exclude", options.exclude, given.exclude);
  take("--memory", options.memoryMegabytes, given.memoryMegabytes);
  take("--max-file-size", options.maxFileMegabytes, given.maxFileMegabytes);
  take("--quiet", options.quiet, given.quiet);
}

void CheckComplete(const Options& options) {
  const struct {
    const std::string& value;
    const char* what;
  } kNeeded[] = {
      {options.site, "the site's folder: --site DIR, or folder in [site] of the file"},
      {options.baseUrl, "the site's address: --base-url URL, or base_url in [site] of the file"},
      {options.out, "the folder for the index: --out INDEXDIR, or out in [site] of the file"},
  };
  for (const auto& needed : kNeeded) {
    if (!needed.value.empty()) continue;
    throw IndexError(ExitStatus::kUsage, std::string("Give ") + needed.what +
                                             " that --config names. Run with --help for more.");
  }
}

// --init reads nothing, so that an option beside it would be lost without a word.
void CheckInitAlone(const CLI::App& app) {
  for (const CLI::Option* option : app.get_options()) {
    if (option->count() == 0 || option->get_name() == "--init") continue;
    throw IndexError(ExitStatus::kUsage, "--init writes an example and ends: it does not go with " +
                                             option->get_name() +
                                             ". Give --init alone, then change the file.");
  }
}

}  // namespace

ParsedOptions ParseOptions(int argc, const char* const* argv) {
  ParsedOptions parsed;
  CommandLine line;
  CLI::App app("Indexes a folder of web pages for Vela Search.", "vela_index");
  AddOptions(app, line);
  app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
    return "vela_index: " + CLI::FailureMessage::simple(failed, error);
  });
  try {
    app.parse(argc, argv);
    if (app.count("--init") != 0) {
      CheckInitAlone(app);
      if (line.initFile.empty()) line.initFile = kDefaultConfigName;
      WriteExampleConfig(line.initFile);
      printf("Wrote %s. Change it, then run: vela_index --config %s\n", line.initFile.c_str(),
             line.initFile.c_str());
      parsed.exitStatus = static_cast<int>(ExitStatus::kSuccess);
      return parsed;
    }
    if (app.count("--config") != 0) ReadConfigFile(line.configFile, parsed.options);
    TakeGiven(app, line, parsed.options);
    CheckComplete(parsed.options);
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
