// inspector_fuzz.cc: the inspector on an index of which one file is damaged. Input: a line with the
// name of the file and, behind it, "cut", "seal", both or neither; then four bytes for each change,
// a place in the file (little-endian, modulo its size) and the byte that it gets. "cut" ends the
// file at the place of the last change; "seal" corrects the checksums of a lookup file.
#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "format/checksum.h"
#include "format/lookup.h"
#include "inspector/explain/explanation_report.h"
#include "inspector/show/page_listing.h"
#include "inspector/show/summary.h"
#include "inspector/show/word_listing.h"
#include "program/fuzz/check.h"
#include "support/inspected_site.h"

namespace vela::inspector {
namespace {

constexpr size_t kChangeSize = 4;

void Seal(std::string& bytes) {
  for (size_t at = 0; at + kLookupBlockSize <= bytes.size(); at += kLookupBlockSize) {
    const std::string_view room(bytes.data() + at, kLookupBlockRoom);
    const uint64_t sum = Checksum(room, at / kLookupBlockSize);
    memcpy(bytes.data() + at + kLookupBlockRoom, &sum, sizeof sum);
  }
}

// The bytes of the file with the changes of the input made.
std::string Changed(std::string bytes, std::string_view how, std::string_view changes) {
  size_t last = bytes.size();
  for (; changes.size() >= kChangeSize && !bytes.empty(); changes.remove_prefix(kChangeSize)) {
    uint32_t change = 0;
    memcpy(&change, changes.data(), sizeof change);
    last = (change & 0xFFFFFFU) % bytes.size();
    bytes[last] = static_cast<char>(change >> 24);
  }
  if (how.find("cut") != how.npos) bytes.resize(last);
  if (how.find("seal") != how.npos) Seal(bytes);
  return bytes;
}

void ShowAll(const InspectedSite& site) {
  const auto index = site.Open();
  JsonText json;
  json.BeginObject();
  WriteSummary(*index, json);
  VELA_CHECK(!SummaryText(*index).empty());
  for (uint32_t page = 0; page < std::min(PageCount(*index), 4U); ++page) {
    VELA_CHECK(!PageText(*index, page).empty());
    WritePage(*index, page, json);
    static_cast<void>(RunningText(*index, page));
  }
  for (const std::string_view word : {"cat", "pets", "x"}) {
    const auto number = FindWord(*index, word);
    if (number.has_value()) VELA_CHECK(!WordText(*index, *number).empty());
  }
}

void ExplainSome(const InspectedSite& site) {
  try {
    const auto index = OpenSearchedIndex(site.path().string());
    for (const char* query :
         {"kitten dog ca* -hound", "\"young cat\" food", "site:news", "kiten"}) {
      const ExplanationReport report = Explain(*index, {.query = query}, {}, 5);
      VELA_CHECK(report.json.text().ends_with('}'));
    }
  } catch (const std::runtime_error&) {
    // The search program cannot answer either.
  }
}

}  // namespace
}  // namespace vela::inspector

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela::inspector;
  static const InspectedSite site;
  std::string_view input = vela::fuzz::Text(data, size);
  const std::string_view line = vela::fuzz::TakeLine(input);
  const std::string name(line.substr(0, line.find(' ')));
  const auto file = FullSiteFiles().find(name);
  if (file == FullSiteFiles().end()) {
    VELA_CHECK(site.Check().count() == 0);
    return 0;
  }
  site.Write(name, Changed(file->second, line.substr(name.size()), input));
  const Findings findings = site.Check();
  VELA_CHECK(findings.count() == site.Check().count());
  VELA_CHECK(findings.count() == 0 || !ReportText(findings).empty());
  ShowAll(site);
  ExplainSome(site);
  site.Write(name, file->second);
  return 0;
}
