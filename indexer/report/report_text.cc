#include "indexer/report/report_text.h"

#include "indexer/report/json_text.h"

namespace vela::indexer {

namespace {

void AppendEntries(const LeftOut& leftOut, std::string& out) {
  for (const LeftOut::Entry& entry : leftOut.entries) {
    out += '{';
    AppendMember("path", entry.path, out);
    if (entry.reason != Reason::kOtherKind && !entry.where.empty()) {
      AppendMember("field", entry.where, out);
      AppendMember("value", entry.value, out);
    }
    AppendMember("reason", ReasonCode(entry.reason), out);
    AppendMember("text", ReasonText(entry.reason), out);
    out += "}\n";
  }
}

}  // namespace

std::string ReportText(const IndexSummary& summary) {
  std::string out;
  AppendEntries(summary.files, out);
  AppendEntries(summary.otherKinds, out);
  AppendEntries(summary.metaValues, out);
  for (const LeftOut::Entry& entry : summary.remarks.entries) {
    out += '{';
    AppendMember("path", entry.path, out);
    AppendMember("remark", ReasonCode(entry.reason), out);
    AppendMember("subject", entry.value, out);
    AppendMember("text", ReasonText(entry.reason), out);
    out += "}\n";
  }
  for (const BrokenLink& link : summary.links.found) {
    const Reason reason = link.noPlace ? Reason::kBrokenPlace : Reason::kBrokenLink;
    out += '{';
    AppendMember("path", link.path, out);
    AppendMember("remark", ReasonCode(reason), out);
    AppendMember("subject", link.address, out);
    AppendMember("link", link.text, out);
    AppendMember("text", ReasonText(reason), out);
    out += "}\n";
  }
  for (const Finding& warning : summary.warnings) {
    out += '{';
    AppendMember("remark", ReasonCode(warning.reason), out);
    AppendMember("where", warning.where, out);
    AppendMember("subject", warning.subject, out);
    AppendMember("text", FindingText(warning), out);
    out += "}\n";
  }
  return out;
}

}  // namespace vela::indexer
