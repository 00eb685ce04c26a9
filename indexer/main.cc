// The indexer: reads a site's folder and writes the index that the search program answers from.
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>

#include "indexer/build_index.h"
#include "indexer/config/options.h"
#include "indexer/report/index_error.h"
#include "indexer/report/progress.h"

namespace {
volatile std::sig_atomic_t g_stop = 0;
void OnSignal(int) { g_stop = 1; }
}  // namespace

int main(int argc, char** argv) {
  using vela::indexer::ExitStatus;
  const vela::indexer::ParsedOptions parsed = vela::indexer::ParseOptions(argc, argv);
  if (parsed.exitStatus.has_value()) return *parsed.exitStatus;
  struct sigaction action = {};
  action.sa_handler = &OnSignal;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGHUP, &action, nullptr);
  const auto begun = std::chrono::steady_clock::now();
  try {
    vela::indexer::Progress progress(!parsed.options.quiet && isatty(STDERR_FILENO) != 0);
    const vela::indexer::IndexSummary summary =
        vela::indexer::BuildIndex(parsed.options, progress, g_stop);
    if (!parsed.options.quiet) {
      const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
      fputs(vela::indexer::SummaryText(summary, parsed.options.out, took.count()).c_str(), stdout);
    }
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
