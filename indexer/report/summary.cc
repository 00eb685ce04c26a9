#include "indexer/report/summary.h"

#include <algorithm>
#include <cstdio>

#include "indexer/report/progress.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

// What a file or page is called may hold bytes that a terminal obeys.
std::string Shown(std::string text) {
  std::ranges::replace_if(text, IsControl, '?');
  return text;
}

void AddGroups(const LeftOut& leftOut, std::string& text) {
  for (const auto& [reason, group] : GroupsByText(leftOut)) {
    text += "  " + CountText(group->count) + "  " + Shown(reason) + ": ";
    for (size_t i = 0; i < group->examples.size(); ++i) {
      text += (i == 0 ? "" : ", ") + Shown(group->examples[i]);
    }
    text += group->count > group->examples.size() ? ", ...\n" : "\n";
  }
}

}  // namespace

std::string SummaryText(const IndexSummary& summary, const std::string& folder, double seconds) {
  char time[40];
  snprintf(time, sizeof time, "%.1f seconds", seconds);
  std::string text = "Indexed " + CountText(summary.pages) +
                     (summary.pages == 1 ? " page" : " pages") + " with " +
                     CountText(summary.words) + " different words in " + time + ".\n";
  text += "Read " + BytesText(summary.sourceBytes) + ", wrote " + BytesText(summary.indexBytes) +
          " to " + folder + ".\n";
  if (summary.runs != 0) {
    text += "The memory for words was full " + CountText(summary.runs) +
            " times; more of it (--memory) makes this faster.\n";
  }
  if (summary.files.total != 0) {
    text += "Left out " + CountText(summary.files.total) +
            (summary.files.total == 1 ? " file:\n" : " files:\n");
    AddGroups(summary.files, text);
  }
  if (summary.metaValues.total != 0) {
    text += "Meta elements that do not fit their field:\n";
    AddGroups(summary.metaValues, text);
  }
  for (const Finding& warning : summary.warnings) {
    text += "Warning: " + Shown(FindingText(warning)) + ".\n";
  }
  return text;
}

}  // namespace vela::indexer
