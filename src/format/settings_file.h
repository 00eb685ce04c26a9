// settings_file.h: `settings.vdat`, what the site owner configured and what the other files hold.
//
// A text file of lines in any order; a key that is not known is passed over.
//
//   Key = 123              a number
//   Key = "text"           a text
//   STR_KEY = "text"       an interface text (settings/language_strings.h)
//   catnames               the names of NumCats categories follow, a line each
//   metafields             NumMetaFields definitions follow (meta_fields.h)
//   MapAccents = 1         two lines follow, each with quoted items separated by commas:
//   AccentChars = "A",...      what is folded
//   NormalChars = "a",...      what to, in the same order
//
// A section needs its count before it, and DatePickerPath empties a LinkBackURL before it. The keys
// with the fields that they fill stand in settings/setting_keys.h.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

inline constexpr char kSettingsFileName[] = "settings.vdat";

// Bytes of a line, its line feed included. A longer one is read in pieces.
inline constexpr size_t kSettingsLineLimit = 2047;

inline constexpr std::string_view kCategoryNamesLine = "catnames";
inline constexpr std::string_view kMetaFieldsLine = "metafields";
inline constexpr std::string_view kAccentTableKey = "MapAccents";  // 1: the table follows
inline constexpr std::string_view kAccentCharsKey = "AccentChars";
inline constexpr std::string_view kNormalCharsKey = "NormalChars";
inline constexpr std::string_view kLanguageKeyPrefix = "STR_";

}  // namespace vela
