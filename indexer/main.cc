// The indexer: reads a site's folder and writes the index that the search program answers from.
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>

#include "indexer/build_index.h"
#include "indexer/config/options.h"
#include "indexer/explain_page.h"
#include "indexer/publish/rollback.h"
#include "indexer/report/index_error.h"
#include "indexer/report/progress.h"
#include "indexer/report/summary.h"
#include "indexer/report/terminal.h"
#include "indexer/run_conditions.h"

namespace {

using vela::indexer::ExitStatus;
using vela::indexer::Options;
using vela::indexer::Progress;

volatile std::sig_atomic_t g_stop = 0;
void OnSignal(int) { g_stop = 1; }

void RollBackIndex(const Options& options, Progress& progress) {
  const vela::indexer::KnownIndex index = vela::indexer::RollBack(
      options.out, vela::indexer::PublishSystemOf(options, progress, g_stop));
  progress.Clear();
  if (options.quiet) return;
  fputs(vela::indexer::RollbackText(index.made, index.pages, options.out).c_str(), stdout);
}

void BuildAndTell(const Options& options, Progress& progress) {
  const auto begun = std::chrono::steady_clock::now();
  const vela::indexer::IndexSummary summary = vela::indexer::BuildIndex(options, progress, g_stop);
  if (options.quiet) return;
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
  const std::string text = vela::indexer::SummaryText(summary, options.out, took.count());
  const bool colors = vela::indexer::ShowsColors(STDOUT_FILENO);
  fputs((colors ? vela::indexer::Colored(text) : text).c_str(), stdout);
}

ExitStatus ExplainAndTell(const Options& options, Progress& progress) {
  const vela::indexer::Explanation said = vela::indexer::ExplainPage(options, progress, g_stop);
  const std::string text = vela::indexer::ExplanationText(said, options.verbose);
  const bool colors = vela::indexer::ShowsColors(STDOUT_FILENO);
  if (!options.quiet) fputs((colors ? vela::indexer::Colored(text) : text).c_str(), stdout);
  return said.isTaken ? ExitStatus::kSuccess : ExitStatus::kLeftOut;
}

}  // namespace

int main(int argc, char** argv) {
  const vela::indexer::ParsedOptions parsed = vela::indexer::ParseOptions(argc, argv);
  if (parsed.exitStatus.has_value()) return *parsed.exitStatus;
  struct sigaction action = {};
  action.sa_handler = &OnSignal;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGHUP, &action, nullptr);
  try {
    Progress progress(!parsed.options.quiet && isatty(STDERR_FILENO) != 0);
    if (!parsed.options.explainPage.empty()) {
      return static_cast<int>(ExplainAndTell(parsed.options, progress));
    }
    const auto run = parsed.options.rollback ? &RollBackIndex : &BuildAndTell;
    run(parsed.options, progress);
    return static_cast<int>(ExitStatus::kSuccess);
  } catch (const vela::indexer::IndexError& error) {
    fprintf(stderr, "vela_index: %s\n", error.what());
    return static_cast<int>(error.status);
  } catch (const std::bad_alloc&) {
    fputs("vela_index: Out of memory. Give a smaller --memory or --max-file-size.\n", stderr);
  } catch (const std::exception& error) {
    fprintf(stderr, "vela_index: %s\n", error.what());
  }
  return static_cast<int>(ExitStatus::kFailed);
}
