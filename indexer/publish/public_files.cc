#include "indexer/publish/public_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "format/template_file.h"
#include "indexer/config/embedded_files.h"
#include "indexer/publish/open_search.h"
#include "indexer/publish/search_template.h"
#include "indexer/source/file_reading.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kLargestTemplate = uint64_t{4} << 20;

void WriteWhole(const fs::path& path, std::string_view content) {
  OutFile file(path);
  file.Write(content);
  file.Finish();
}

// Whether the page has a marker with which results come out.
bool ShowsResults(std::string_view page) {
  return page.find(kWholePageMarker) != page.npos || page.find(kResultsMarker) != page.npos;
}

// "en" of "en-GB".
std::string_view MainLanguage(std::string_view language) {
  return language.substr(0, language.find('-'));
}

// What to warn the owner of in a template that stays as it is.
Finding TemplateFault(const std::string& name, std::string_view page, const TemplateWords& words) {
  if (!ShowsResults(page)) {
    return {.reason = Reason::kTemplateWithoutResults, .where = {}, .subject = name};
  }
  const std::string_view its = TemplateLanguage(page);
  const auto wanted = words.find("TEMPLATE_LANG");
  if (its.empty() || wanted == words.end() || MainLanguage(its) == MainLanguage(wanted->second)) {
    return {};
  }
  std::string both = "lang=\"";
  both.append(its).append("\", not \"").append(wanted->second).append("\"");
  return {.reason = Reason::kTemplateLanguage, .where = name, .subject = both};
}

bool IsPublic(std::string_view name) {
  return name.ends_with(".css") || name.ends_with(".js") || name.ends_with(".xsl");
}

// Where the log is, from the index folder on; empty without a log, for one in the index folder
// itself and for one outside of it.
fs::path LogFolder(const SiteConfig& config) {
  if (!config.logging) return {};
  fs::path logs = fs::path("/" + config.logFile).lexically_normal().parent_path().relative_path();
  if (fs::path(config.logFile).lexically_normal().string().starts_with("..")) logs.clear();
  return logs;
}

}  // namespace

Finding WriteTemplate(const Options& options, const TemplateWords& words,
                      const IndexCharset& charset, const IndexFolder& folder) {
  std::string name = options.templateName;
  if (name.empty() && folder.OldHas(kTemplateFileName)) {
    const fs::path old = folder.target() / kTemplateFileName;
    std::error_code error;
    FileContent kept;
    // One that this user cannot read is kept all the same: the web server may be able to.
    const std::string real = fs::canonical(old, error).string();
    if (ReadRegularFile(real, kLargestTemplate, kept) != Reason::kNone) return {};
    // A link leads to a file that is the owner's, whatever it holds.
    if (!fs::is_symlink(old, error)) name = UnchangedTemplate(kept.bytes);
    if (name.empty()) return TemplateFault(old.string(), kept.bytes, words);
  }
  if (name.empty()) name = "default";
  const std::string page =
      LoadTemplate(name, words, !options.config.searchAddress.empty(), charset);
  WriteWhole(folder.fresh() / kTemplateFileName, page);
  return TemplateFault(name, page, words);
}

void WritePublicFiles(const SiteConfig& config, bool suggestions, const IndexCharset& charset,
                      IndexFolder& folder) {
  for (const EmbeddedFile& file : EmbeddedFiles()) {
    if (IsPublic(file.name)) WriteWhole(folder.fresh() / file.name, file.content);
  }
  if (!config.searchAddress.empty()) {
    WriteWhole(folder.fresh() / kOpenSearchName, OpenSearchDocument(config, suggestions, charset));
  }
  if (const fs::path logs = LogFolder(config); !logs.empty()) folder.Need(logs);
}

Finding LogFolderFault(const SiteConfig& config, const fs::path& target) {
  const fs::path logs = LogFolder(config);
  if (logs.empty()) return {};
  const fs::path folder = target / logs;
  struct stat info = {};
  // A log that is there was written by whoever runs the search.
  if (stat((folder / fs::path(config.logFile).filename()).c_str(), &info) == 0) return {};
  if (stat(folder.c_str(), &info) == 0 &&
      (info.st_uid != geteuid() || (info.st_mode & (S_IWGRP | S_IWOTH)) != 0)) {
    return {};
  }
  return {.reason = Reason::kLogFolderNotGiven,
          .where = folder.string(),
          .subject = "install -d -o www-data -g www-data -m 750 /var/log/vela; rmdir " +
                     folder.string() + " && ln -sT /var/log/vela " + folder.string()};
}

}  // namespace vela::indexer
