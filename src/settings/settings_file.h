// settings_file.h: the reader of `settings.vdat`.
//
// A line-based text file: `Key = 123`, `Key = "text"`, language lines (language_strings.h), and
// three sections: "catnames" followed by one name a line, "metafields" followed by six lines a
// definition (type, name, label, extra text, method, number of list values) and its list values,
// and "MapAccents = 1" followed by the lines AccentChars and NormalChars with quoted items. Lines
// may come in any order, but a section needs its count before it, and DatePickerPath empties a
// LinkBackURL before it. Unknown keys are passed over. A line is read in pieces of at most 2047
// bytes.
#pragma once

#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

inline constexpr char kSettingsFileName[] = "settings.vdat";

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
