#include "inspector/check/settings_check.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

#include "format/meta_fields.h"
#include "format/page_info.h"
#include "format/page_text.h"
#include "format/settings_file.h"
#include "inspector/check/setting_ranges.h"
#include "inspector/check/stored_texts.h"
#include "inspector/findings/plain_text.h"
#include "settings/line_format.h"
#include "settings/setting_keys.h"
#include "text/ascii.h"
#include "text/numbers.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

namespace {

bool IsLanguageKey(std::string_view key) {
  return std::ranges::find(kLanguageKeys, key) != kLanguageKeys.end() ||
         std::ranges::any_of(kFurtherTexts,
                             [&](const FurtherText& text) { return text.key == key; });
}

std::string_view WithoutReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Goes through the lines as the reader does.
class LineChecker {
 public:
  LineChecker(std::string_view bytes, const Settings& settings, Findings& findings)
      : lines_{bytes}, settings_(settings), findings_(findings) {}

  void Run() {
    std::string_view line;
    while (Next(line)) {
      const std::string_view key = FirstToken(line);
      if (!key.empty()) CheckLine(key, line);
    }
    for (const std::string_view key : kLanguageKeys) {
      if (!seen_.contains(key)) {
        findings_.Add(Fault::kMissingText, kSettingsFileName, kWholeFile, std::string(key));
      }
    }
  }

 private:
  bool Next(std::string_view& line) {
    if (!lines_.Next(line)) return false;
    if (line.size() >= kSettingsLineLimit) {
      Add(Fault::kTooLong, CountOfText(line.size() + 1, "byte", "bytes") + ", of which " +
                               CountText(kSettingsLineLimit) + " are read at once");
    }
    return true;
  }

  void Add(Fault fault, std::string detail) {
    findings_.Add(fault, kSettingsFileName, Line(lines_.number), std::move(detail));
  }

  void CheckLine(std::string_view key, std::string_view line) {
    if (key == kCategoryNamesLine || key == kMetaFieldsLine) {
      CheckOnce(key);
      return key == kCategoryNamesLine ? PassCategories() : PassFields();
    }
    if (FindNumberSetting(key) != nullptr) {
      CheckOnce(key);
      return CheckNumber(key, line);
    }
    if (const TextSetting* text = FindTextSetting(key); text != nullptr) {
      CheckOnce(key);
      return CheckText(key, line, text->capacity);
    }
    if (IsLanguageKey(key)) {
      CheckOnce(key);
      return CheckText(key, line, kSettingsLineLimit);
    }
    Add(Fault::kUnknownKey, Quoted(key));
  }

  void CheckOnce(std::string_view key) {
    if (!seen_.insert(key).second) Add(Fault::kRepeated, std::string(key));
  }

  void CheckNumber(std::string_view key, std::string_view line) {
    int32_t value = 0;
    if (!ParseInteger(line, key, value)) return Add(Fault::kNoNumber, Quoted(line));
    const SettingRange* range = FindSettingRange(key);
    if (range != nullptr && (value < range->least || value > range->most)) {
      Add(Fault::kOutOfRange, std::string(key) + " = " + std::to_string(value) + ", not from " +
                                  std::to_string(range->least) + " to " +
                                  std::to_string(range->most));
    }
    if (key == kAccentTableKey && value == 1) CheckAccents();
  }

  void CheckText(std::string_view key, std::string_view line, size_t capacity) {
    if (line.find("\"\"") != line.npos) return;  // empty
    std::string_view value;
    const size_t first = line.find('"');
    if (!ParseQuotedAfterToken(line, value) || line.find('"', first + 1) == line.npos) {
      return Add(Fault::kWrongForm, std::string(key) + " is not followed by a text in quotes");
    }
    if (value.size() > capacity) {
      Add(Fault::kTooLong, std::string(key) + ": " + CountText(value.size()) + " bytes, of which " +
                               CountText(capacity) + " are kept");
    }
    if (!IsCleanText(value, IsUtf8(settings_))) Add(Fault::kBadText, std::string(key));
  }

  void CheckAccents() {
    size_t counts[2] = {};
    const std::string_view keys[2] = {kAccentCharsKey, kNormalCharsKey};
    for (int i = 0; i < 2; ++i) {
      std::string_view line;
      if (!Next(line) || FirstToken(line) != keys[i]) {
        return Add(Fault::kWrongForm, "no " + std::string(keys[i]) + " behind MapAccents = 1");
      }
      counts[i] = static_cast<size_t>(std::ranges::count(line, '"'));
      if (!IsCleanText(WithoutReturn(line), IsUtf8(settings_))) {
        Add(Fault::kBadText, std::string(keys[i]));
      }
    }
    if (counts[0] != counts[1] || counts[0] % 2 != 0) {
      Add(Fault::kWrongCount, "AccentChars and NormalChars have not as many items");
    }
  }

  // The reader takes the counts from the lines before the section.
  void PassCategories() {
    int32_t names = 0;
    std::string_view line;
    for (; names < settings_.NumCats && Next(line); ++names) {
      line = WithoutReturn(line);
      if (line.empty()) Add(Fault::kWrongForm, "a category without a name");
      if (!IsCleanText(line, IsUtf8(settings_))) Add(Fault::kBadText, "the name of a category");
    }
    if (names < settings_.NumCats) {
      Add(Fault::kWrongCount, CountText(static_cast<uint64_t>(names)) + " names of " +
                                  CountText(static_cast<uint64_t>(settings_.NumCats)) +
                                  " categories (NumCats)");
    }
  }

  void PassFields() {
    std::string_view line;
    for (int32_t i = 0; i < settings_.NumMetaFields; ++i) {
      const size_t first = lines_.number + 1;
      std::string_view lines[kMetaDefinitionLines];
      for (std::string_view& each : lines) {
        if (!Next(each)) return EndInField(i);
      }
      const int32_t kind = ReadDecimal32(lines[0]);
      const int32_t values = ReadDecimal32(lines[kMetaDefinitionLines - 1]);
      const bool isOfNumbers = IsDecimal(WithoutReturn(lines[0])) &&
                               IsDecimal(WithoutReturn(lines[4])) &&
                               IsDecimal(WithoutReturn(lines[5]));
      if (!isOfNumbers || WithoutReturn(lines[1]).empty() || values < 0 ||
          values > static_cast<int32_t>(kMetaChoiceLimit)) {
        findings_.Add(Fault::kWrongForm, kSettingsFileName, Line(first),
                      "the definition of meta field " + Quoted(lines[1]));
      }
      for (int32_t value = 0; HasMetaList(kind) && value < values; ++value) {
        if (!Next(line)) return EndInField(i);
        if (!IsCleanText(WithoutReturn(line), IsUtf8(settings_))) {
          Add(Fault::kBadText, "a value of meta field " + Quoted(lines[1]));
        }
      }
    }
  }

  void EndInField(int32_t field) {
    Add(Fault::kWrongCount, "the file ends in meta field " + std::to_string(field + 1) + " of " +
                                std::to_string(settings_.NumMetaFields) + " (NumMetaFields)");
  }

  NumberedLines lines_;
  const Settings& settings_;
  Findings& findings_;
  std::set<std::string_view> seen_;
};

void CheckRelations(const Settings& s, Findings& findings) {
  const auto add = [&](Fault fault, std::string detail) {
    findings.Add(fault, kSettingsFileName, kWholeFile, std::move(detail));
  };
  if (s.DictReservedSuffixes > s.DictReservedPrefixes ||
      s.DictReservedPrefixes > s.DictReservedNoSpaces ||
      s.DictReservedNoSpaces != s.DictReservedLimit) {
    add(Fault::kWrongOrder,
        "DictReservedSuffixes, DictReservedPrefixes and DictReservedNoSpaces do not follow one "
        "another, or the last is not DictReservedLimit");
  }
  if (s.DictReservedLimit >= s.NumKeywords && s.NumKeywords > 0) {
    add(Fault::kOutOfRange, "DictReservedLimit is not below NumKeywords");
  }
  if (s.DictIDLen > static_cast<int32_t>(kTokenVariantWidth) && s.NumKeywords > 0 &&
      static_cast<size_t>(s.DictIDLen) < TokenWidth(static_cast<uint64_t>(s.NumKeywords))) {
    add(Fault::kOutOfRange, "DictIDLen = " + std::to_string(s.DictIDLen) + " has no room for " +
                                std::to_string(s.NumKeywords) + " words");
  }
  if (HasCategorySets(s)) {
    if (s.categoryNames.size() != s.NumCats) {
      add(Fault::kWrongCount, std::to_string(s.categoryNames.size()) + " names of " +
                                  std::to_string(s.NumCats) + " categories (NumCats)");
    }
    if (s.NumCats > 0 &&
        static_cast<int64_t>(CategorySetBytes(static_cast<size_t>(s.NumCats))) > s.NumCatBytes) {
      add(Fault::kOutOfRange, "NumCatBytes = " + std::to_string(s.NumCatBytes) +
                                  " has no room for " + std::to_string(s.NumCats) + " categories");
    }
  }
  if (UsesMetaFields(s) && static_cast<int64_t>(s.metaFields.size()) != s.NumMetaFields) {
    add(Fault::kWrongCount, std::to_string(s.metaFields.size()) + " definitions of " +
                                std::to_string(s.NumMetaFields) + " meta fields (NumMetaFields)");
  }
  const bool saysUtf8 =
      std::ranges::equal(View(s.Charset), std::string_view("utf-8"), {}, ToLowerAscii);
  if (!IsEmpty(s.Charset) && saysUtf8 != IsUtf8(s)) {
    add(Fault::kOutOfRange,
        "Charset is " + Quoted(View(s.Charset)) + ", but UseUTF8 is " + std::to_string(s.UseUTF8));
  }
}

std::string StatusText(SettingsStatus status) {
  switch (status) {
    case SettingsStatus::kOk:
      break;
    case SettingsStatus::kInvalid:
      return "the file ends in the definition of a meta field";
    case SettingsStatus::kMissingText:
      return "texts of the search page are missing";
    case SettingsStatus::kNoMemory:
      return "there is no memory for what it asks for";
    case SettingsStatus::kInvalidDictIdLen:
      return "DictIDLen is above " + std::to_string(kTokenWidthLimit);
    case SettingsStatus::kCannotOpen:
      return "it cannot be opened";
  }
  return {};
}

}  // namespace

void CheckSettings(const CheckInput& input) {
  const OpenedIndex& index = input.index;
  if (index.settingsStatus != SettingsStatus::kOk) {
    input.findings.Add(Fault::kUnreadable, kSettingsFileName, kWholeFile,
                       StatusText(index.settingsStatus));
    input.findings.SetUnusable();
  }
  if (index.settingsStatus == SettingsStatus::kCannotOpen) return;
  LineChecker(index.settingsFile.bytes(), index.settings, input.findings).Run();
  CheckRelations(index.settings, input.findings);
}

}  // namespace vela::inspector
