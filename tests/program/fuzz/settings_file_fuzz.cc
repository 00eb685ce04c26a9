// settings_file_fuzz.cc: the reader of the settings. Input: the file.
#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "output/response.h"
#include "output/settings_listing.h"
#include "program/fuzz/check.h"
#include "program/fuzz/written.h"
#include "settings/settings_file.h"

namespace vela::fuzz {
namespace {

// What the settings of the file are, as text.
std::string Listing(std::string_view file, SettingsStatus& status) {
  const auto settings = std::make_unique<Settings>();
  status = ReadSettings(*settings, file);
  for (size_t i = 0; i < settings->metaFields.size(); ++i) {
    const MetaFieldDef& field = settings->metaFields[i];
    VELA_CHECK(MetaListValue(*settings, field, -1) == nullptr);
    VELA_CHECK(MetaListValue(*settings, field, INT32_MAX) == nullptr);
    const bool hasList = field.type == kMetaDropDown || field.type == kMetaMultiple;
    if (hasList && field.numValues > 0 && status == SettingsStatus::kOk) {
      VELA_CHECK(MetaListValue(*settings, field, field.numValues - 1) != nullptr);
    }
  }
  return Written([&](Response& response) { WriteSettingsListing(response, *settings); });
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  const std::string_view file = Text(data, size);
  SettingsStatus status = SettingsStatus::kOk;
  SettingsStatus again = SettingsStatus::kOk;
  VELA_CHECK(Listing(file, status) == Listing(file, again));
  VELA_CHECK(status == again);
  return 0;
}
