#include "indexer/source/folder_walk.h"

#include <fnmatch.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "indexer/report/index_error.h"
#include "indexer/words/lower_ascii.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

// None when the name is not that of a page.
std::optional<FileKind> KindOf(const std::string& name, const WalkRules& rules) {
  const size_t dot = name.rfind('.');
  if (dot == name.npos) return {};
  const std::string ending = LowerAsciiCopy(std::string_view(name).substr(dot + 1));
  if (std::ranges::find(rules.htmlEndings, ending) != rules.htmlEndings.end()) {
    return FileKind::kHtml;
  }
  if (std::ranges::find(rules.textEndings, ending) != rules.textEndings.end()) {
    return FileKind::kText;
  }
  return {};
}

// Folders that tools make beside a site and that repeat its pages or hold none.
constexpr std::string_view kNeverPages[] = {"_sources", "node_modules", "cgi-bin"};

bool IsExcluded(const std::string& name, const std::string& path, const WalkRules& rules) {
  if (name.starts_with('.')) return true;
  if (std::ranges::find(kNeverPages, name) != std::end(kNeverPages)) return true;
  for (std::string pattern : rules.excluded) {
    if (pattern.ends_with('/')) pattern.pop_back();  // "drafts/" is a folder
    if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0) return true;
    if (fnmatch(pattern.c_str(), path.c_str(), 0) == 0) return true;
  }
  return false;
}

}  // namespace

std::vector<SiteFile> WalkSite(const fs::path& site, const WalkRules& rules, LeftOut& leftOut) {
  std::vector<SiteFile> files;
  std::vector<std::string> folders = {""};  // still to be read; "" is the site itself
  while (!folders.empty()) {
    const std::string folder = std::move(folders.back());
    folders.pop_back();
    std::error_code error;
    fs::directory_iterator entries(site / folder, error);
    if (error) {
      if (folder.empty()) {
        throw IndexError(ExitStatus::kFailed, "Cannot read the site folder " + site.string() +
                                                  ": " + error.message() +
                                                  ". Check --site and the folder's permissions.");
      }
      AddLeftOut(leftOut, Reason::kFolderNotRead, folder);
      continue;
    }
    while (entries != fs::directory_iterator()) {
      const fs::directory_entry& entry = *entries;
      const std::string name = entry.path().filename().string();
      const std::string path = folder.empty() ? name : (fs::path(folder) / name).string();
      const fs::file_type type = entry.symlink_status(error).type();
      if (error) {
        AddLeftOut(leftOut, Reason::kFileNotRead, path);
      } else if (IsExcluded(name, path, rules)) {
        // Left out on purpose: no reason to report.
      } else if (type == fs::file_type::symlink) {
        // A link into the site is indexed where its target lies; one out of it never.
        if (KindOf(name, rules).has_value() || entry.is_directory(error)) {
          AddLeftOut(leftOut, Reason::kSymbolicLink, path);
        }
      } else if (type == fs::file_type::directory) {
        if (entry.path() != rules.excludedFolder) folders.push_back(path);
      } else if (const std::optional<FileKind> kind = KindOf(name, rules); kind.has_value()) {
        if (type == fs::file_type::regular) {
          files.push_back({path, *kind});
        } else {
          AddLeftOut(leftOut, Reason::kNotRegular, path);
        }
      }
      entries.increment(error);
      if (error) {
        AddLeftOut(leftOut, Reason::kFolderNotRead, folder);
        break;
      }
    }
  }
  // std::string compares as unsigned bytes, so the order does not depend on the locale.
  std::ranges::sort(files, {}, &SiteFile::path);
  return files;
}

}  // namespace vela::indexer
