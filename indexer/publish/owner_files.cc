#include "indexer/publish/owner_files.h"

#include <filesystem>

#include "indexer/config/embedded_files.h"
#include "indexer/publish/open_search.h"
#include "indexer/publish/template_words.h"
#include "indexer/report/index_error.h"
#include "indexer/source/file_reading.h"
#include "indexer/write/settings_writer.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kLanguageEnding = ".vlang";

struct BuiltInTemplate {
  std::string_view name;
  std::string_view file;
};
constexpr BuiltInTemplate kTemplates[] = {
    {"default", "search_template.html"},
    {"minimal", "search_template_minimal.html"},
    {"embed", "search_template_embed.html"},
};

const BuiltInTemplate* FindTemplate(const std::string& name) {
  for (const BuiltInTemplate& each : kTemplates) {
    if (each.name == name) return &each;
  }
  return nullptr;
}

// Takes out the line that links to the description of the search.
void RemoveOpenSearchLink(std::string& page) {
  const size_t at = page.find(kOpenSearchName);
  if (at == page.npos) return;
  const size_t begin = page.rfind('\n', at) + 1;
  page.erase(begin, page.find('\n', at) + 1 - begin);
}

}  // namespace

std::string ReadOwnersFile(const std::string& path, const std::string& option) {
  constexpr uint64_t kLargest = uint64_t{4} << 20;
  FileContent content;
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  const std::string reason =
      error ? "no such file" : ReadSiteFile(real.string(), kLargest, content);
  if (!reason.empty()) {
    throw IndexError(ExitStatus::kFailed, "Cannot use " + path + " for " + option + ": " + reason +
                                              ". Check the path and its permissions.");
  }
  return std::move(content.bytes);
}

std::string LoadLanguage(const std::string& language) {
  if (language.find('/') != language.npos || language.ends_with(kLanguageEnding)) {
    return CheckedLanguage(ReadOwnersFile(language, "--language"), language);
  }
  const EmbeddedFile* file = FindEmbeddedFile(language + std::string(kLanguageEnding));
  if (file == nullptr) {
    std::string names;
    for (const EmbeddedFile& each : EmbeddedFiles()) {
      if (!each.name.ends_with(kLanguageEnding)) continue;
      names += names.empty() ? "" : ", ";
      names += each.name.substr(0, each.name.size() - kLanguageEnding.size());
    }
    throw IndexError(ExitStatus::kUsage, "There is no built-in language \"" + language +
                                             "\". Give one of " + names +
                                             ", or the path of a .vlang file.");
  }
  return CheckedLanguage(file->content, language);
}

std::string LoadTemplate(const std::string& name, const Options& options,
                         const IndexCharset& charset) {
  const BuiltInTemplate* builtIn = FindTemplate(name);
  if (builtIn == nullptr) return ReadOwnersFile(name, "--template");
  const EmbeddedFile* file = FindEmbeddedFile(builtIn->file);
  if (file == nullptr) {
    throw IndexError(ExitStatus::kUsage, "This vela_index was built without the template \"" +
                                             name + "\". Give --template default or a file.");
  }
  std::string page(file->content);
  TranslateTemplate(page, options.language);
  if (options.config.searchAddress.empty()) RemoveOpenSearchLink(page);
  std::string content = charset.WithReferences(page);
  constexpr std::string_view kUtf8Meta = "<meta charset=\"utf-8\">";
  const size_t at = content.find(kUtf8Meta);
  if (!charset.utf8() && at != content.npos) {
    content.replace(at, kUtf8Meta.size(), "<meta charset=\"" + charset.name() + "\">");
  }
  return content;
}

bool IsBuiltInTemplate(const std::string& name) { return FindTemplate(name) != nullptr; }

}  // namespace vela::indexer
