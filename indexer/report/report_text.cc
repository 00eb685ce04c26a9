#include "indexer/report/report_text.h"

#include <cstdio>
#include <string_view>

#include "text/ascii.h"

namespace vela::indexer {

namespace {

void AppendText(std::string_view text, std::string& out) {
  out += '"';
  for (const char c : text) {
    if (IsControl(c)) {
      char escaped[8];
      snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
      out += escaped;
      continue;
    }
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  out += '"';
}

void AppendMember(std::string_view name, std::string_view text, std::string& out) {
  out += out.ends_with('{') ? "\"" : ",\"";
  out.append(name).append("\":");
  AppendText(text, out);
}

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
