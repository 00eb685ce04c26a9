#include "indexer/options.h"

#include <CLI/CLI.hpp>

#include "indexer/index_error.h"

namespace vela::indexer {

ParsedOptions ParseOptions(int argc, const char* const* argv) {
  ParsedOptions parsed;
  Options& options = parsed.options;
  CLI::App app("Indexes a folder of web pages for Vela Search.", "vela_index");
  app.set_version_flag("--version", "vela_index " VELA_VERSION);
  app.add_option("--site", options.site, "Folder with the site's HTML and text files")
      ->required()
      ->type_name("DIR");
  app.add_option("--base-url", options.baseUrl,
                 "Address of that folder on the web, such as https://www.example.org/ or /docs/")
      ->required()
      ->type_name("URL");
  app.add_option("--out", options.out,
                 "Folder for the index; made, or replaced in one step when it exists")
      ->required()
      ->type_name("INDEXDIR");
  app.add_option("--template", options.templateFile,
                 "Page around the results (default: the one in INDEXDIR, else a built-in one)")
      ->type_name("FILE");
  app.add_option("--language", options.language,
                 "Language of the search page: a built-in one or a .vlang file (default: english)")
      ->type_name("NAME|FILE");
  app.add_option("--exclude", options.exclude,
                 "Leave out files and folders of this name or path; * and ? are wild; repeatable")
      ->type_name("PATTERN");
  app.add_option("--memory", options.memoryMegabytes,
                 "Memory for collecting words before they go to disk, in MB (default: 256)")
      ->type_name("MB")
      ->check(CLI::Range(1, 1 << 20));
  app.add_option("--max-file-size", options.maxFileMegabytes,
                 "Leave out larger files, in MB (default: 20)")
      ->type_name("MB")
      ->check(CLI::Range(1, 500));
  app.add_flag("--quiet", options.quiet, "No progress and no summary");
  app.footer(
      "Exit status: 0 done, 1 a file could not be read or written, 2 wrong arguments,\n"
      "3 no page found, 4 interrupted. Unless it is 0, an index in INDEXDIR stays as it was.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    parsed.exitStatus = status == 0 ? 0 : static_cast<int>(ExitStatus::kUsage);
  }
  return parsed;
}

}  // namespace vela::indexer
