#include "inspector/check/template_check.h"

#include "format/template_file.h"

namespace vela::inspector {

void CheckTemplate(const CheckInput& input) {
  FileImage file;
  if (!file.Open(input.index.directory, kTemplateFileName, false)) {
    input.findings.Add(Fault::kMissing, kTemplateFileName, kWholeFile, {});
    return;
  }
  const std::string_view text = file.bytes();
  if (text.find(kWholePageMarker) == text.npos && text.find(kResultsMarker) == text.npos) {
    input.findings.Add(Fault::kMissingMarker, kTemplateFileName, kWholeFile, {});
  }
}

}  // namespace vela::inspector
