#include "inspector/findings/report_text.h"

#include <string_view>

#include "inspector/findings/plain_text.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

namespace {

std::string PlaceText(const Finding& finding) {
  std::string text(finding.file);
  switch (finding.place.unit) {
    case Place::Unit::kWholeFile:
      break;
    case Place::Unit::kLine:
      text.append(", line ").append(std::to_string(finding.place.number));
      break;
    case Place::Unit::kByte:
      text.append(", byte ").append(std::to_string(finding.place.number));
      break;
  }
  return text;
}

}  // namespace

std::string ReportText(const Findings& findings) {
  if (findings.count() == 0) return "  nothing is wrong\n";
  std::string text;
  for (const Finding& finding : findings.kept()) {
    const FaultRow& row = RowOf(finding.fault);
    text.append("  ").append(PlaceText(finding)).append(": ").append(row.text);
    if (!finding.detail.empty()) text.append(": ").append(Printable(finding.detail));
    text.append(". ").append(row.remedy).append("\n");
  }
  for (const FindingCount& count : findings.Counts()) {
    if (count.found == count.kept) continue;
    text.append("  ").append(count.file).append(": ").append(RowOf(count.fault).text).append(": ");
    text.append(CountText(count.found - count.kept)).append(" times more\n");
  }
  return text;
}

void WriteFindings(const Findings& findings, JsonText& json) {
  json.Flag("sound", findings.count() == 0).Flag("usable", !findings.isUnusable());
  json.BeginArray("findings");
  for (const Finding& finding : findings.kept()) {
    const FaultRow& row = RowOf(finding.fault);
    json.BeginObject().Text("file", finding.file);
    if (finding.place.unit == Place::Unit::kLine) json.Number("line", finding.place.number);
    if (finding.place.unit == Place::Unit::kByte) json.Number("byte", finding.place.number);
    json.Text("fault", row.code).Text("text", row.text);
    json.Text("detail", finding.detail).Text("remedy", row.remedy).EndObject();
  }
  json.EndArray().BeginArray("counts");
  for (const FindingCount& count : findings.Counts()) {
    json.BeginObject().Text("file", count.file).Text("fault", RowOf(count.fault).code);
    json.Number("count", count.found).EndObject();
  }
  json.EndArray();
}

}  // namespace vela::inspector
