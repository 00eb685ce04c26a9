#include "inspector/options.h"

#include <CLI/CLI.hpp>

#include "inspector/exit_status.h"

namespace vela::inspector {

ParsedOptions ParseOptions(int argc, const char* const* argv) {
  ParsedOptions parsed;
  Options& options = parsed.options;
  CLI::App app(
      "Checks an index of Vela Search from end to end and says what it holds. Nothing is written.",
      "vela_inspect");
  app.set_version_flag("--version", "vela_inspect " VELA_VERSION);
  app.add_option("INDEXDIR", options.directory, "The index directory")->required();
  app.add_flag("--json", options.json, "Write one JSON object instead of text");
  app.add_option("--limit", options.most, "Findings of a kind that are shown; all are counted")
      ->type_name("N")
      ->capture_default_str();
  app.footer(
      "Exit status: 0 the index is sound, 1 something is wrong with it, 2 the search program "
      "cannot\n"
      "answer from it, 3 wrong arguments.");
  app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
    return "vela_inspect: " + CLI::FailureMessage::simple(failed, error);
  });
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    parsed.exitStatus = status == 0 ? 0 : static_cast<int>(ExitStatus::kUsage);
  }
  return parsed;
}

}  // namespace vela::inspector
