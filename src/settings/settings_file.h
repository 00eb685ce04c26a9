// settings_file.h: the reader of the settings file (format/settings_file.h). Its keys with the
// fields that they fill stand in setting_keys.h.
#pragma once

#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

// What stops the settings from being used; the numbers are those of the codes in the field.
enum class SettingsStatus : int {
  kOk = 0,
  kInvalid = 1,
  kMissingText = 2,  // fewer language lines than there are texts
  kNoMemory = 4,
  kInvalidDictIdLen = 5,
  kCannotOpen = 6,
};

// Reads the bytes of a settings file into `settings`, whose fields hold their defaults before. What
// was read before a failure stays.
[[nodiscard]] SettingsStatus ReadSettings(Settings& settings, std::string_view bytes);

// Opens and reads the settings file of the directory.
[[nodiscard]] SettingsStatus ReadSettingsFile(Settings& settings, const IndexDirectory& directory);

}  // namespace vela
