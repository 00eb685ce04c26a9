#include "indexer/config/language_file.h"

#include <algorithm>

#include "format/settings_file.h"
#include "indexer/config/embedded_files.h"
#include "indexer/config/owner_file.h"
#include "indexer/report/index_error.h"
#include "settings/language_strings.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kLanguageEnding = ".vlang";
constexpr std::string_view kTemplateKeyPrefix = "TEMPLATE_";
constexpr size_t kLineFeed = 1;

const EmbeddedFile* FindBuiltIn(std::string_view language) {
  return FindEmbeddedFile(std::string(language).append(kLanguageEnding));
}

Language ReadNamed(const std::string& language) {
  if (IsLanguagePath(language)) {
    return ReadLanguage(ReadOwnersFile(language, "--language"), language);
  }
  const EmbeddedFile* file = FindBuiltIn(language);
  if (file != nullptr) return ReadLanguage(file->content, language);
  std::string names;
  for (const std::string_view each : BuiltInLanguages()) {
    names.append(names.empty() ? "" : ", ").append(each);
  }
  throw IndexError(ExitStatus::kUsage, "There is no built-in language \"" + language +
                                           "\". Give one of " + names +
                                           ", or the path of a .vlang file.");
}

}  // namespace

std::vector<std::string_view> BuiltInLanguages() {
  std::vector<std::string_view> names;
  for (const EmbeddedFile& each : EmbeddedFiles()) {
    if (!each.name.ends_with(kLanguageEnding)) continue;
    names.push_back(each.name.substr(0, each.name.size() - kLanguageEnding.size()));
  }
  return names;
}

bool IsLanguagePath(std::string_view language) {
  return language.find('/') != language.npos || language.ends_with(kLanguageEnding);
}

Language LoadLanguage(const std::string& language) {
  Language loaded = ReadNamed(language);
  const EmbeddedFile* english = FindBuiltIn("english");
  loaded.templateWords.merge(ReadLanguage(english->content, "english").templateWords);
  return loaded;
}

Language ReadLanguage(std::string_view content, const std::string& name) {
  if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
  std::map<std::string, std::string, std::less<>> strings;  // with their quotes
  Language language;
  while (!content.empty()) {
    const size_t end = std::min(content.find('\n'), content.size());
    const std::string_view line = TrimAll(content.substr(0, end));
    content.remove_prefix(std::min(end + 1, content.size()));
    const std::string key(line.substr(0, std::min(line.find_first_of(" \t="), line.size())));
    const bool ofTemplate = key.starts_with(kTemplateKeyPrefix);
    if (key.size() == line.size() || !(ofTemplate || key.starts_with(kLanguageKeyPrefix))) continue;
    const size_t open = line.find('"');
    if (open == line.npos || line.find('"', open + 1) != line.size() - 1 ||
        line.size() + kLineFeed > kSettingsLineLimit) {
      throw IndexError(ExitStatus::kUsage, "The language file " + name +
                                               " has a line that is not of the form KEY = "
                                               "\"text\": " +
                                               std::string(line.substr(0, 80)));
    }
    if (ofTemplate) {
      language.templateWords[key] = line.substr(open + 1, line.size() - open - 2);
    } else {
      strings[key] = line.substr(open);
    }
  }
  for (const std::string_view key : kLanguageKeys) {
    const auto found = strings.find(key);
    if (found == strings.end()) {
      throw IndexError(ExitStatus::kUsage, "The language file " + name + " lacks the text " +
                                               std::string(key) + ". Add the line " +
                                               std::string(key) + " = \"...\".");
    }
    language.strings.append(key).append(" = ").append(found->second).append("\n");
  }
  for (const FurtherText& text : kFurtherTexts) {
    const auto found = strings.find(text.key);
    if (found == strings.end()) continue;
    language.strings.append(text.key).append(" = ").append(found->second).append("\n");
  }
  return language;
}

}  // namespace vela::indexer
