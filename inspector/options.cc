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
  app.add_option(
         "--limit", options.most,
         "Findings of a kind that are shown, all are counted; results in the JSON of --explain")
      ->type_name("N")
      ->capture_default_str();
  CLI::Option* word =
      app.add_option("--word", options.word, "Show the pages of a word, as the dictionary has it");
  word->type_name("WORD");
  CLI::Option* page =
      app.add_option("--page", options.page,
                     "Show what the index says of a page; with --explain, the page that is meant");
  page->type_name("ADDRESS|NUMBER");
  CLI::Option* text = app.add_option("--text", options.text, "Show the text of a page as words");
  text->type_name("ADDRESS|NUMBER");
  CLI::Option* explain = app.add_option(
      "--explain", options.explain,
      "Tell why the query finds the page of --page where it does, or why it does not; without "
      "--page, why the first page is first");
  explain->type_name("QUERY");
  app.add_flag("--and", options.allTerms, "Pages must match all words of the query")
      ->needs(explain);
  app.add_option("--category", options.categories, "Search in this category only; repeatable")
      ->type_name("NUMBER")
      ->needs(explain);
  CLI::Option* from = app.add_option("--from", options.from,
                                     "Search pages from this date on, as a visitor types it");
  from->type_name("DATE")->needs(explain);
  CLI::Option* to = app.add_option("--to", options.to, "Search pages up to this date");
  to->type_name("DATE")->needs(explain);
  from->needs(to);
  to->needs(from);
  app.add_option("--sort", options.sort, "0 by relevance, 1 newest first, 2 oldest first")
      ->check(CLI::Range(0, 2))
      ->type_name("N")
      ->needs(explain);
  word->excludes(text)->excludes(explain)->excludes(page);
  text->excludes(explain)->excludes(page);
  app.footer(
      "Exit status: 0 the index is sound, 1 something is wrong with it, 2 the search program "
      "cannot\n"
      "answer from it, 3 wrong arguments. With --word, --page, --text and --explain: 0 shown,\n"
      "1 no such word or page, or the query does not find it.");
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
