#include "support/inspection.h"

#include <algorithm>
#include <memory>

#include "format/index_directory.h"
#include "inspector/check/check_index.h"
#include "inspector/findings/report_text.h"
#include "inspector/opened/opened_index.h"

namespace vela::support {

std::string FaultsOf(const std::filesystem::path& directory) {
  const auto index = std::make_unique<inspector::OpenedIndex>();
  inspector::OpenIndex(*index, directory.string());
  inspector::Findings findings(5);
  inspector::Progress progress(false);
  inspector::CheckIndex(*index, findings, progress);
  const bool isSound = std::ranges::none_of(
      findings.kept(), [](const inspector::Finding& each) { return IsIndexFileName(each.file); });
  return isSound ? std::string() : inspector::ReportText(findings);
}

}  // namespace vela::support
