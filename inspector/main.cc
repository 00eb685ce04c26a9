// The inspector: checks an index, says what it holds, and explains why a query finds a page.
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <string>

#include "inspector/check/check_index.h"
#include "inspector/exit_status.h"
#include "inspector/explain/explanation_report.h"
#include "inspector/findings/json_text.h"
#include "inspector/findings/plain_text.h"
#include "inspector/findings/report_text.h"
#include "inspector/opened/opened_index.h"
#include "inspector/options.h"
#include "inspector/show/page_listing.h"
#include "inspector/show/page_name.h"
#include "inspector/show/summary.h"
#include "inspector/show/word_listing.h"

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

// Hands out what was asked for.
void WriteShown(const Options& options, const std::string& text, const JsonText& json) {
  Write((options.json ? json.text() : text) + "\n");
}

ExitStatus EndWithout(const std::string& why) {
  fprintf(stderr, "vela_inspect: %s\n", why.c_str());
  return ExitStatus::kFindings;
}

ExitStatus ShowWord(const OpenedIndex& index, const Options& options) {
  const std::optional<uint32_t> word = FindWord(index, options.word);
  if (!word.has_value()) return EndWithout("The index has no word " + Quoted(options.word) + ".");
  JsonText json;
  json.BeginObject();
  WriteWord(index, *word, json);
  json.EndObject();
  WriteShown(options, WordText(index, *word), json);
  return ExitStatus::kSound;
}

ExitStatus ShowPage(const OpenedIndex& index, const Options& options) {
  const std::optional<uint32_t> page = FindPage(index, options.page);
  if (!page.has_value()) return EndWithout(NoPageText(index, options.page));
  JsonText json;
  json.BeginObject();
  WritePage(index, *page, json);
  json.EndObject();
  WriteShown(options, PageText(index, *page), json);
  return ExitStatus::kSound;
}

ExitStatus ShowText(const OpenedIndex& index, const Options& options) {
  const std::optional<uint32_t> page = FindPage(index, options.text);
  if (!page.has_value()) return EndWithout(NoPageText(index, options.text));
  const std::string text = RunningText(index, *page);
  JsonText json;
  json.BeginObject().Number("page", *page).Text("text", text).EndObject();
  WriteShown(options, text, json);
  return ExitStatus::kSound;
}

ExitStatus ExplainQuery(const OpenedIndex& index, const Options& options) {
  std::optional<uint32_t> page;
  if (!options.page.empty()) {
    page = FindPage(index, options.page);
    if (!page.has_value()) return EndWithout(NoPageText(index, options.page));
  }
  const Question question = {.query = options.explain,
                             .allTerms = options.allTerms,
                             .categories = options.categories,
                             .from = options.from,
                             .to = options.to,
                             .sort = options.sort};
  const auto searched = OpenSearchedIndex(options.directory);
  const ExplanationReport report = Explain(*searched, question, page, options.most);
  WriteShown(options, report.text, report.json);
  return report.isFound ? ExitStatus::kSound : ExitStatus::kFindings;
}

ExitStatus Run(const Options& options) {
  const auto index = std::make_unique<OpenedIndex>();
  OpenIndex(*index, options.directory);
  if (!options.explain.empty()) return ExplainQuery(*index, options);
  if (!options.word.empty()) return ShowWord(*index, options);
  if (!options.text.empty()) return ShowText(*index, options);
  if (!options.page.empty()) return ShowPage(*index, options);
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
