#include "indexer/report/summary.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string_view>
#include <utility>

#include "indexer/report/progress.h"
#include "indexer/report/terminal.h"
#include "text/ascii.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace {

// A path that would fill the line, without its middle: what it begins with tells the part of the
// site, its end the file.
std::string ShownPath(std::string_view path) {
  constexpr size_t kHead = 20;
  constexpr size_t kTail = 40;
  constexpr std::string_view kGap = "...";
  if (path.size() <= kHead + kGap.size() + kTail) return Shown(std::string(path));
  const auto isInside = [&](size_t at) { return (static_cast<unsigned char>(path[at]) >> 6) == 2; };
  size_t head = kHead;
  while (head > 0 && isInside(head)) --head;
  size_t tail = path.size() - kTail;
  while (tail < path.size() && isInside(tail)) ++tail;
  std::string text(path.substr(0, head));
  return Shown(text.append(kGap).append(path.substr(tail)));
}

void AddGroups(const LeftOut& leftOut, std::string& text) {
  for (const auto& [reason, group] : GroupsByText(leftOut)) {
    text += "  " + CountText(group->count) + "  " + Shown(reason) + ": ";
    for (size_t i = 0; i < group->examples.size(); ++i) {
      text += (i == 0 ? "" : ", ") + ShownPath(group->examples[i]);
    }
    text += group->count > group->examples.size() ? ", ...\n" : "\n";
  }
}

// "30 .pdf, 2 .docx, 1 without an ending", the most frequent first.
std::string KindsText(const LeftOut& otherKinds) {
  constexpr size_t kKindLimit = 8;
  std::vector<std::pair<uint64_t, std::string_view>> kinds;
  for (const auto& [key, group] : otherKinds.groups) kinds.emplace_back(group.count, key.where);
  std::ranges::stable_sort(kinds, std::greater(), [](const auto& kind) { return kind.first; });
  std::string text;
  uint64_t others = otherKinds.total;
  for (size_t i = 0; i < kinds.size() && i < kKindLimit; ++i) {
    const auto& [count, ending] = kinds[i];
    text += (i == 0 ? "" : ", ") + CountText(count) + " ";
    text += ending.empty() ? "without an ending" : ShownPath(ending);
    others -= count;
  }
  return others == 0 ? text : text + ", " + CountText(others) + " of other kinds";
}

// "3 new pages: a, b, c"
void AddChanged(const ChangedPages& pages, const char* one, const char* more, std::string& text) {
  if (pages.count == 0) return;
  text += "  " + CountText(pages.count) + (pages.count == 1 ? one : more);
  for (size_t i = 0; i < pages.examples.size(); ++i) {
    text += (i == 0 ? ": " : ", ") + Shown(pages.examples[i]);
  }
  text += pages.count > pages.examples.size() ? ", ...\n" : "\n";
}

void AddChanges(const IndexChanges& changes, std::string& text) {
  if (!changes.hasFormer) {
    text += "There is no index to compare with.\n";
    return;
  }
  if (changes.added.count + changes.gone.count + changes.changed.count == 0) {
    text += "The pages are those of the index that is there, and none has changed.\n";
    return;
  }
  text += "Compared with the index that is there:\n";
  AddChanged(changes.added, " new page", " new pages", text);
  AddChanged(changes.gone, " page gone", " pages gone", text);
  AddChanged(changes.changed, " page changed", " pages changed", text);
}

}  // namespace

std::string LinksText(const BrokenLinks& links) {
  constexpr size_t kLinkLimit = 10;
  if (!links.wereSought) return {};
  const size_t broken = links.found.size();
  std::string text =
      "Of " + CountText(links.checked) + " links between pages " +
      (broken == 0 ? "none leads" : CountText(broken) + (broken == 1 ? " leads" : " lead")) +
      (broken == 0 ? " nowhere.\n" : " nowhere:\n");
  for (size_t i = 0; i < broken && i < kLinkLimit; ++i) {
    const BrokenLink& link = links.found[i];
    text += "  " + ShownPath(link.path) + " -> " + Shown(link.address);
    if (!link.text.empty()) text += " (" + Shown(link.text) + ")";
    text += link.noPlace ? ", no such place\n" : "\n";
  }
  if (broken > kLinkLimit) text += "  ...\n";
  return text;
}

namespace {

// Of a part of the site, from which no index was made yet.
std::string PartText(const IndexSummary& summary, const std::string& time) {
  std::string text = "Read part " + summary.part + " into " + summary.partFolder + ": " +
                     CountText(summary.pages) + " of " + CountText(summary.siteItems) + " pages, " +
                     BytesText(summary.sourceBytes) + ", in " + time + ".\n";
  text += CountText(summary.keptPages) + " had not changed since the last run.\n";
  if (summary.files.total != 0) {
    text += "Left out " + CountText(summary.files.total) + ":\n";
    AddGroups(summary.files, text);
  }
  return text;
}

}  // namespace

std::string SummaryText(const IndexSummary& summary, const std::string& folder, double seconds) {
  char time[40];
  snprintf(time, sizeof time, "%.1f seconds", seconds);
  if (!summary.part.empty()) return PartText(summary, time);
  if (summary.isUnchanged) {
    return "Nothing has changed: the index with " + CountText(summary.pages) +
           (summary.pages == 1 ? " page" : " pages") + " stays in " + folder + " (" + time + ").\n";
  }
  std::string text = "Indexed " + CountText(summary.pages) +
                     (summary.pages == 1 ? " page" : " pages") + " with " +
                     CountText(summary.words) + " different words in " + time + ".\n";
  if (summary.sectionPages != 0) {
    text += CountText(summary.sectionPages) +
            (summary.sectionPages == 1 ? " of them is a section" : " of them are sections") +
            " of a long page (section_pages).\n";
  }
  text += "Read " + BytesText(summary.sourceBytes) + ", wrote " + BytesText(summary.indexBytes);
  if (summary.isDryRun) {
    text += " and removed it again: " + folder + " was not changed (--dry-run).\n";
    AddChanges(summary.changes, text);
  } else {
    text += " to " + folder + ".\n";
  }
  if (summary.usesState) {
    text += CountText(summary.keptPages) + (summary.keptPages == 1 ? " page" : " pages") +
            " had not changed since the last run.\n";
  }
  if (!summary.stemming.empty()) text += "Stemming: " + summary.stemming + ".\n";
  if (summary.runs != 0) {
    text += "The memory for words was full " + CountText(summary.runs) +
            " times; more of it (--memory) makes this faster.\n";
  }
  if (summary.files.total != 0) {
    text += "Left out " + CountText(summary.files.total) +
            (summary.files.total == 1 ? " file:\n" : " files:\n");
    AddGroups(summary.files, text);
  }
  if (summary.otherKinds.total != 0) {
    text += "Not read, being no kind of page: " + KindsText(summary.otherKinds) + ".\n";
  }
  const ContentSummary& content = summary.content;
  if (content.excluded != 0) {
    text += "Not content, as you say: " + CountText(content.excluded) +
            (content.excluded == 1 ? " part of " : " parts of ") +
            CountText(content.excludingPages) +
            (content.excludingPages == 1 ? " page.\n" : " pages.\n");
  }
  if (content.chosenPages != 0) {
    text += "Of " + CountText(content.chosenPages) +
            (content.chosenPages == 1 ? " page" : " pages") +
            " only the parts that you chose are in the index.\n";
  }
  if (summary.metaValues.total != 0) {
    text += "Meta elements that do not fit their field:\n";
    AddGroups(summary.metaValues, text);
  }
  for (const std::string& name : summary.siteNames) {
    text += "Taken off titles (site_name): " + Shown(name) + ".\n";
  }
  if (!summary.sharedTitle.empty()) {
    text += "Most pages are called \"" + Shown(summary.sharedTitle) +
            "\": their headings are shown in its place (site_name).\n";
  }
  for (const std::string& repeated : summary.repeatedTexts) {
    text += "Left out of most pages (repeated_text): " + ShownPath(repeated) + "\n";
  }
  if (summary.similar.total != 0) {
    text += "Indexed, though near_duplicates = \"leave_out\" would not:\n";
    AddGroups(summary.similar, text);
  }
  if (summary.remarks.total != 0) {
    text += "Remarks on pages that are in the index:\n";
    AddGroups(summary.remarks, text);
  }
  text += LinksText(summary.links);
  for (const Finding& warning : summary.warnings) {
    text += "Warning: " + Shown(FindingText(warning)) + ".\n";
  }
  return text;
}

std::string RollbackText(std::time_t made, int32_t pages, const std::string& folder) {
  char time[40] = "";
  struct tm parts = {};
  if (localtime_r(&made, &parts) != nullptr) strftime(time, sizeof time, "%F %H:%M", &parts);
  const auto count = static_cast<uint64_t>(std::max(pages, 0));
  return "The index of " + std::string(time) + " with " + CountText(count) +
         (count == 1 ? " page" : " pages") + " is in place again in " + folder +
         ".\nThe one that it replaces is kept: --rollback once more undoes this.\n";
}

}  // namespace vela::indexer
