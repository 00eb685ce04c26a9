// The inspector: checks an index, says what it holds, and explains why a query finds a page.
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "inspector/check/check_index.h"
#include "inspector/exit_status.h"
#include "inspector/findings/json_text.h"
#include "inspector/findings/report_text.h"
#include "inspector/opened/opened_index.h"
#include "inspector/options.h"
#include "inspector/show/summary.h"

namespace vela::inspector {

namespace {

void Write(const std::string& text) { fwrite(text.data(), 1, text.size(), stdout); }

ExitStatus CheckAndSummarise(const OpenedIndex& index, const Options& options) {
  Findings findings(options.most);
  Progress progress(isatty(STDERR_FILENO) != 0);
  CheckIndex(index, findings, progress);
  if (options.json) {
    JsonText json;
    json.BeginObject();
    WriteFindings(findings, json);
    WriteSummary(index, json);
    json.EndObject();
    Write(json.text() + "\n");
  } else {
    Write(SummaryText(index) + "Check\n" + ReportText(findings));
  }
  if (findings.isUnusable()) return ExitStatus::kUnusable;
  return findings.count() == 0 ? ExitStatus::kSound : ExitStatus::kFindings;
}

ExitStatus Run(const Options& options) {
  const auto index = std::make_unique<OpenedIndex>();
  OpenIndex(*index, options.directory);
  return CheckAndSummarise(*index, options);
}

}  // namespace

}  // namespace vela::inspector

int main(int argc, char** argv) {
  const vela::inspector::ParsedOptions parsed = vela::inspector::ParseOptions(argc, argv);
  if (parsed.exitStatus.has_value()) return *parsed.exitStatus;
  try {
    return static_cast<int>(vela::inspector::Run(parsed.options));
  } catch (const std::exception& error) {
    fprintf(stderr, "vela_inspect: %s\n", error.what());
  }
  return static_cast<int>(vela::inspector::ExitStatus::kUnusable);
}
