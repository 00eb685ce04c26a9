#include "settings/settings_file.h"

#include <algorithm>

#include "format/page_text.h"
#include "format/settings_file.h"
#include "settings/line_format.h"
#include "settings/setting_keys.h"
#include "text/edit.h"
#include "text/numbers.h"

namespace vela {

namespace {

// The next line as text, up to a NUL; false at the end of the file.
bool NextLine(LineReader& reader, std::string_view& line) {
  if (!ReadLine(reader, kSettingsLineLimit, line)) return false;
  line = UpToNul(line);
  return true;
}

SettingsStatus ReadCategoryNames(Settings& settings, LineReader& reader) {
  if (settings.NumCats < 1) return SettingsStatus::kOk;
  settings.categoryNames.Release();
  std::string_view line;
  while (settings.categoryNames.size() < settings.NumCats && NextLine(reader, line)) {
    if (line.empty()) break;  // began with a NUL
    if (!settings.categoryNames.TryAdd(TrimWhitespace(line))) return SettingsStatus::kNoMemory;
  }
  return SettingsStatus::kOk;
}

// Reads one definition; kInvalid when the file ends inside it.
SettingsStatus ReadMetaField(Settings& settings, LineReader& reader, MetaFieldDef& field) {
  std::string_view lines[kMetaDefinitionLines];
  for (std::string_view& line : lines) {
    if (!NextLine(reader, line)) return SettingsStatus::kInvalid;
  }
  field.type = ReadDecimal32(lines[0]);
  Set(field.name, TrimWhitespace(lines[1]));
  Set(field.label, TrimWhitespace(lines[2]));
  Set(field.extraText, TrimWhitespace(lines[3]));
  field.method = ReadDecimal32(lines[4]);
  field.numValues = ReadDecimal32(lines[5]);
  if (!HasMetaList(field.type)) return SettingsStatus::kOk;
  field.firstValue = settings.metaValues.size();
  for (int32_t i = 0; i < field.numValues; ++i) {
    std::string_view line;
    if (!NextLine(reader, line)) return SettingsStatus::kInvalid;
    MetaListText value;
    Set(value, TrimWhitespace(line));
    if (!settings.metaValues.TryAdd(View(value))) return SettingsStatus::kNoMemory;
  }
  return SettingsStatus::kOk;
}

SettingsStatus ReadMetaFields(Settings& settings, LineReader& reader) {
  if (settings.NumMetaFields < 1) return SettingsStatus::kOk;
  settings.metaFields.Release();
  settings.metaValues.Release();
  for (int32_t i = 0; i < settings.NumMetaFields; ++i) {
    MetaFieldDef field;
    const SettingsStatus status = ReadMetaField(settings, reader, field);
    if (status != SettingsStatus::kOk) return status;
    if (!settings.metaFields.TryResize(settings.metaFields.size() + 1)) {
      return SettingsStatus::kNoMemory;
    }
    settings.metaFields[settings.metaFields.size() - 1] = field;
  }
  return SettingsStatus::kOk;
}

void TruncateMetaFields(Settings& settings) {
  const auto most = static_cast<size_t>(std::max(settings.NumMetaFields, 0));
  if (settings.metaFields.size() <= most) return;
  if (most == 0 || !settings.metaFields.TryResize(most)) settings.metaFields.Release();
}

// Takes the next double-quoted item off the text; false when no pair of quotes is left.
bool TakeItem(std::string_view& text, std::string_view& item) {
  const size_t open = text.find('"');
  if (open == text.npos) return false;
  const size_t close = text.find('"', open + 1);
  if (close == text.npos) return false;
  item = text.substr(open + 1, close - open - 1);
  text.remove_prefix(close + 1);
  return true;
}

SettingsStatus ReadAccentTable(Settings& settings, LineReader& reader) {
  std::string_view line;
  std::string_view accents;
  std::string_view normals;
  if (!NextLine(reader, line)) return SettingsStatus::kOk;
  ParseRest(line, kAccentCharsKey, accents);
  if (NextLine(reader, line)) ParseRest(line, kNormalCharsKey, normals);
  const auto quotes = static_cast<size_t>(std::count(accents.begin(), accents.end(), '"'));
  if (!settings.accents.TryAllocate(quotes / 2)) return SettingsStatus::kNoMemory;
  settings.hasAccentTable = true;
  std::string_view item;
  for (AccentPair& pair : settings.accents) {
    if (TakeItem(accents, item)) Set(pair.accent, item);
    if (TakeItem(normals, item)) Set(pair.normal, item);
  }
  return SettingsStatus::kOk;
}

void ReadTextSetting(Settings& settings, const TextSetting& key, std::string_view line) {
  if (key.isEmptiedFirst) key.store(settings, {});
  // Kept: a file that names the date picker after the link-back address loses that address
  // (golden settings/date_picker_path_empties_link_back).
  if (key.key == "DatePickerPath") Clear(settings.LinkBackURL);
  std::string_view value;
  if (ParseQuoted(line, key.key, value)) key.store(settings, value);
  if (key.key == "LinkBackURL" && View(settings.LinkBackURL).find('?') != value.npos) {
    Set(settings.linkBackSeparator, "&amp;");
  }
}

// Reads one line, and the further lines of a section that it opens.
SettingsStatus ReadSettingsLine(Settings& settings, std::string_view line, LineReader& reader) {
  const std::string_view token = FirstToken(line);
  if (token.empty()) return SettingsStatus::kOk;
  if (token.starts_with(kLanguageKeyPrefix)) {
    const LanguageLine result = ReadLanguageString(settings.language, token, line);
    return result == LanguageLine::kNoMemory ? SettingsStatus::kNoMemory : SettingsStatus::kOk;
  }
  if (const NumberSetting* number = FindNumberSetting(token); number != nullptr) {
    int32_t& field = settings.*number->field;
    ParseInteger(line, token, field);
    if (token == "DictIDLen" && field > int32_t{kTokenWidthLimit}) {
      return SettingsStatus::kInvalidDictIdLen;
    }
    if (token == kAccentTableKey && field == 1) return ReadAccentTable(settings, reader);
    return SettingsStatus::kOk;
  }
  if (const TextSetting* text = FindTextSetting(token); text != nullptr) {
    ReadTextSetting(settings, *text, line);
    return SettingsStatus::kOk;
  }
  if (token == kCategoryNamesLine) return ReadCategoryNames(settings, reader);
  if (token == kMetaFieldsLine) return ReadMetaFields(settings, reader);
  return SettingsStatus::kOk;
}

}  // namespace

SettingsStatus ReadSettings(Settings& settings, std::string_view bytes) {
  LineReader reader{bytes};
  std::string_view line;
  while (NextLine(reader, line)) {
    const SettingsStatus status = ReadSettingsLine(settings, line, reader);
    if (status != SettingsStatus::kOk) return status;
  }
  // A later line may have lowered the counts that the sections were read with.
  settings.categoryNames.Truncate(std::max(settings.NumCats, 0));
  TruncateMetaFields(settings);
  // Counts lines, not different keys.
  const bool complete = settings.language.count >= static_cast<int32_t>(kLanguageStringCount);
  return complete ? SettingsStatus::kOk : SettingsStatus::kMissingText;
}

SettingsStatus ReadSettingsFile(Settings& settings, const IndexDirectory& directory) {
  settings.UseBigPageInfoData = 0;
  Set(settings.linkBackSeparator, "?");
  FileImage file;
  if (!file.Open(directory, kSettingsFileName, true)) return SettingsStatus::kCannotOpen;
  return ReadSettings(settings, file.bytes());
}

}  // namespace vela
