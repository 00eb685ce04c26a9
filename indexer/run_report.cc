#include "indexer/run_report.h"

#include <sys/resource.h>

#include <optional>
#include <utility>

#include "indexer/extract/character_references.h"
#include "indexer/report/json_text.h"
#include "indexer/report/report_text.h"
#include "indexer/site/address.h"
#include "indexer/source/file_endings.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

namespace {

constexpr uint64_t kForm = 1;  // rises when a member changes its meaning or goes

std::string UtcText(std::time_t time) {
  char text[40] = "";
  struct tm parts = {};
  if (gmtime_r(&time, &parts) != nullptr) strftime(text, sizeof text, "%FT%TZ", &parts);
  return text;
}

// The most memory that the process had at a time, in bytes.
uint64_t PeakMemory() {
  struct rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<uint64_t>(usage.ru_maxrss) * 1024;
}

std::string ObjectOf(const Finding& finding) {
  std::string object = "{";
  AppendMember("code", ReasonCode(finding.reason), object);
  AppendMember("where", finding.where, object);
  AppendMember("subject", finding.subject, object);
  AppendMember("text", FindingText(finding), object);
  return object;
}

std::string ObjectOf(const LeftOut::Entry& entry) {
  std::string object = "{";
  AppendMember("path", entry.path, object);
  if (!entry.where.empty()) AppendMember("field", entry.where, object);
  AppendMember("value", entry.value, object);
  AppendMember("code", ReasonCode(entry.reason), object);
  AppendMember("text", ReasonText(entry.reason), object);
  return object;
}

std::string ObjectOf(const BrokenLink& link) {
  const Reason reason = link.noPlace ? Reason::kBrokenPlace : Reason::kBrokenLink;
  std::string object = "{";
  AppendMember("path", link.path, object);
  AppendMember("address", link.address, object);
  AppendMember("link", link.text, object);
  AppendMember("code", ReasonCode(reason), object);
  AppendMember("text", ReasonText(reason), object);
  return object;
}

void AppendChanged(std::string_view name, const ChangedPages& pages, std::string& out) {
  out += out.ends_with('{') ? "\"" : ",\"";
  out.append(name).append("\":{");
  AppendMember("count", pages.count, out);
  out += ",\"examples\":[";
  for (const std::string& address : pages.examples) {
    if (!out.ends_with('[')) out += ',';
    AppendJsonText(address, out);
  }
  out += "]}";
}

void AppendChanges(const IndexChanges& changes, std::string& out) {
  out += ",\n\"changes\":{";
  AppendChanged("added", changes.added, out);
  AppendChanged("gone", changes.gone, out);
  AppendChanged("changed", changes.changed, out);
  out += '}';
}

void AppendCounts(const IndexSummary& summary, std::string& out) {
  out += ",\n\"counts\":{";
  AppendMember("pages", summary.pages, out);
  if (summary.sectionPages != 0) AppendMember("section_pages", summary.sectionPages, out);
  AppendMember("left_out", summary.files.total, out);
  AppendMember("other_kinds", summary.otherKinds.total, out);
  AppendMember("words", summary.words, out);
  AppendMember("occurrences", summary.occurrences, out);
  AppendMember("source_bytes", summary.sourceBytes, out);
  AppendMember("index_bytes", summary.indexBytes, out);
  AppendMember("word_runs", summary.runs, out);
  AppendMember("excluded_parts", summary.content.excluded, out);
  AppendMember("excluding_pages", summary.content.excludingPages, out);
  AppendMember("chosen_pages", summary.content.chosenPages, out);
  if (summary.links.wereSought) AppendMember("links", summary.links.checked, out);
  out += '}';
}

void AppendTexts(std::string_view name, const std::vector<std::string>& texts, std::string& out) {
  out += out.ends_with('{') ? "\"" : ",\"";
  out.append(name).append("\":[");
  for (const std::string& text : texts) {
    if (!out.ends_with('[')) out += ',';
    AppendJsonText(text, out);
  }
  out += ']';
}

// What pages were found to share.
std::string SiteObject(const IndexSummary& summary) {
  std::string out = ",\n\"site\":{";
  AppendTexts("names", summary.siteNames, out);
  if (!summary.sharedTitle.empty()) AppendMember("shared_title", summary.sharedTitle, out);
  AppendTexts("repeated", summary.repeatedTexts, out);
  return out + '}';
}

std::string_view TypeName(FileType type) { return kFileTypeEndings[static_cast<size_t>(type)].key; }

}  // namespace

RunReport::RunReport(const Options& options, const Progress& progress)
    : path_(WantsJsonReport(options) ? options.report : std::string()),
      progress_(progress),
      started_(std::time(nullptr)),
      isDryRun_(options.dryRun),
      hasTitles_(IndexCharset(options.config.charset).utf8()) {}

void RunReport::Begin() {
  file_ = std::make_unique<OutFile>(path_);
  std::string text = "{";
  AppendMember("form", kForm, text);
  AppendMember("program", "vela_index " VELA_VERSION, text);
  AppendMember("started", UtcText(started_), text);
  Write(text);
  BeginList("documents");
}

// A name may be no UTF-8, and JSON is nothing else.
void RunReport::Write(const std::string& text) { file_->Write(RepairedUtf8(text)); }

// Takes an object without its "}".
void RunReport::AddObject(std::string object) {
  Write((isFirst_ ? "\n" : ",\n") + std::move(object) + "}");
  isFirst_ = false;
}

void RunReport::BeginList(std::string_view name) {
  Write(",\n\"" + std::string(name) + "\":[");
  isFirst_ = true;
}

void RunReport::EndList() { Write("]"); }

void RunReport::AddListing(const SiteListing& listing) {
  if (!isWanted()) return;
  Begin();
  for (const LeftOut* list : {&listing.leftOut, &listing.otherKinds}) {
    for (const LeftOut::Entry& entry : list->entries) {
      std::string object = "{";
      AppendMember("path", entry.path, object);
      AppendMember("outcome", "not_read", object);
      AppendMember("code", ReasonCode(entry.reason), object);
      AppendMember("text", ReasonText(entry.reason), object);
      AddObject(std::move(object));
    }
  }
}

void RunReport::AddPage(const SourceItem& item, const PageEntry& entry, uint64_t number,
                        std::string_view similar) {
  if (!isWanted()) return;
  std::string object = "{";
  AppendMember("path", item.path, object);
  AppendMember("address", item.address, object);
  AppendMember("outcome", "indexed", object);
  AppendMember("number", number, object);
  AppendMember("indexed_as", PlainAddress(entry.address), object);
  if (hasTitles_) {
    std::string title;
    AppendResolved(entry.title, false, title);
    AppendMember("title", title, object);
  }
  AppendMember("type", TypeName(entry.fileType), object);
  if (!similar.empty()) AppendMember("similar", similar, object);
  if (!entry.language.empty()) AppendMember("language", entry.language, object);
  AppendMember("bytes", entry.fileSize, object);
  if (entry.time != kNoPageDate) {
    AppendMember("date", UtcText(static_cast<std::time_t>(entry.time)), object);
  }
  AddObject(std::move(object));
}

void RunReport::AddLeftOut(const SourceItem& item, Reason reason, std::string_view other) {
  if (!isWanted()) return;
  std::string object = "{";
  AppendMember("path", item.path, object);
  AppendMember("address", item.address, object);
  AppendMember("outcome", "left_out", object);
  AppendMember("code", ReasonCode(reason), object);
  AppendMember("text", ReasonText(reason), object);
  if (!other.empty()) AppendMember("other", other, object);
  AddObject(std::move(object));
}

void RunReport::Close(std::string_view result, ExitStatus status, std::string_view message) {
  std::string text = ",\n\"seconds\":{";
  for (const auto& [stage, seconds] : progress_.stages()) AppendSeconds(stage, seconds, text);
  text += "},\n\"end\":{";
  AppendMember("result", result, text);
  AppendMember("status", static_cast<uint64_t>(status), text);
  if (!message.empty()) AppendMember("message", message, text);
  AppendMember("ended", UtcText(std::time(nullptr)), text);
  AppendMember("memory_bytes", PeakMemory(), text);
  Write(text + "}}\n");
  file_->Finish();
  file_.reset();
}

void RunReport::Finish(const IndexSummary& summary) {
  if (!isWanted()) return;
  EndList();
  const auto addList = [this](std::string_view name, const auto& objects) {
    BeginList(name);
    for (const auto& each : objects) AddObject(ObjectOf(each));
    EndList();
  };
  addList("values", summary.metaValues.entries);
  addList("remarks", summary.remarks.entries);
  if (!summary.siteNames.empty() || !summary.sharedTitle.empty() ||
      !summary.repeatedTexts.empty()) {
    Write(SiteObject(summary));
  }
  if (summary.links.wereSought) addList("broken_links", summary.links.found);
  addList("warnings", summary.warnings);
  std::string text;
  if (summary.changes.hasFormer) AppendChanges(summary.changes, text);
  AppendCounts(summary, text);
  Write(text);
  Close(isDryRun_ ? "dry_run" : "published", ExitStatus::kSuccess, {});
}

void RunReport::Fail(ExitStatus status, std::string_view message) {
  if (!isWanted() || status == ExitStatus::kBusy) return;
  // Also in the place of what was said of a run that could not be published after all.
  if (file_ == nullptr) Begin();
  EndList();
  Close("failed", status, message);
}

void WriteTextReport(const Options& options, const IndexSummary& summary) {
  if (options.report.empty() || WantsJsonReport(options)) return;
  OutFile file(options.report);
  file.Write(RepairedUtf8(ReportText(summary)));
  file.Finish();
}

std::string OriginalOf(const SourceItem& item, Reason reason, const PageCollection& collection,
                       PageTableWriter& table) {
  if (reason == Reason::kCopy) return collection.addresses.OriginalOf(item.address);
  if (reason != Reason::kEqual && reason != Reason::kSimilar) return {};
  const std::optional<uint32_t> page = collection.addresses.PageAt(item.address);
  return page.has_value() ? PlainAddress(table.ReadLine(*page).address) : std::string();
}

}  // namespace vela::indexer
