#include "indexer/config/language_file.h"

#include <algorithm>
#include <map>

#include "indexer/config/embedded_files.h"
#include "indexer/config/owner_file.h"
#include "indexer/report/index_error.h"
#include "settings/language_strings.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kLanguageEnding = ".vlang";
// What the search program reads of a line, in bytes.
constexpr size_t kLineLimit = 2046;

}  // namespace

std::vector<std::string_view> BuiltInLanguages() {
  std::vector<std::string_view> names;
  for (const EmbeddedFile& each : EmbeddedFiles()) {
    if (!each.name.ends_with(kLanguageEnding)) continue;
    names.push_back(each.name.substr(0, each.name.size() - kLanguageEnding.size()));
  }
  return names;
}

std::string LoadLanguage(const std::string& language) {
  if (language.find('/') != language.npos || language.ends_with(kLanguageEnding)) {
    return CheckedLanguage(ReadOwnersFile(language, "--language"), language);
  }
  const EmbeddedFile* file = FindEmbeddedFile(language + std::string(kLanguageEnding));
  if (file == nullptr) {
    std::string names;
    for (const std::string_view each : BuiltInLanguages()) {
      names.append(names.empty() ? "" : ", ").append(each);
    }
    throw IndexError(ExitStatus::kUsage, "There is no built-in language \"" + language +
                                             "\". Give one of " + names +
                                             ", or the path of a .vlang file.");
  }
  return CheckedLanguage(file->content, language);
}

std::string CheckedLanguage(std::string_view content, const std::string& name) {
  if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
  std::map<std::string, std::string, std::less<>> lines;
  while (!content.empty()) {
    const size_t end = std::min(content.find('\n'), content.size());
    const std::string_view line = TrimAll(content.substr(0, end));
    content.remove_prefix(std::min(end + 1, content.size()));
    const size_t keyEnd = line.find_first_of(" \t=");
    if (!line.starts_with(kLanguageKeyPrefix) || keyEnd == line.npos) continue;
    const size_t open = line.find('"');
    if (open == line.npos || line.find('"', open + 1) != line.size() - 1 ||
        line.size() > kLineLimit) {
      throw IndexError(ExitStatus::kUsage, "The language file " + name +
                                               " has a line that is not of the form KEY = "
                                               "\"text\": " +
                                               std::string(line.substr(0, 80)));
    }
    lines[std::string(line.substr(0, keyEnd))] = line.substr(open);
  }
  std::string checked;
  for (const std::string_view key : kLanguageKeys) {
    const auto found = lines.find(key);
    if (found == lines.end()) {
      throw IndexError(ExitStatus::kUsage, "The language file " + name + " lacks the text " +
                                               std::string(key) + ". Add the line " +
                                               std::string(key) + " = \"...\".");
    }
    checked.append(key).append(" = ").append(found->second).append("\n");
  }
  return checked;
}

}  // namespace vela::indexer
