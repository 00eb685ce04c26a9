#include "indexer/source/folder_source.h"

#include <fnmatch.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

// None when the name is not that of a page.
std::optional<FileType> TypeOf(const std::string& name, const FolderSource& source) {
  const size_t dot = name.rfind('.');
  if (dot == name.npos) return {};
  const std::string ending = LowerAsciiCopy(std::string_view(name).substr(dot + 1));
  if (std::ranges::find(source.htmlEndings, ending) != source.htmlEndings.end()) {
    return FileType::kHtml;
  }
  if (std::ranges::find(source.textEndings, ending) != source.textEndings.end()) {
    return FileType::kText;
  }
  return {};
}

// Folders that tools make beside a site and that repeat its pages or hold none.
constexpr std::string_view kNeverPages[] = {"_sources", "node_modules", "cgi-bin"};

bool IsExcluded(const std::string& name, const std::string& path, const FolderSource& source) {
  if (name.starts_with('.')) return true;
  if (std::ranges::find(kNeverPages, name) != std::end(kNeverPages)) return true;
  for (std::string pattern : source.excluded) {
    if (pattern.ends_with('/')) pattern.pop_back();  // "drafts/" is a folder
    if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0) return true;
    if (fnmatch(pattern.c_str(), path.c_str(), 0) == 0) return true;
  }
  return false;
}

}  // namespace

std::vector<SourceItem> ListItems(const FolderSource& source, LeftOut& leftOut) {
  std::vector<SourceItem> items;
  std::vector<std::string> folders = {""};  // still to be read; "" is the site itself
  while (!folders.empty()) {
    const std::string folder = std::move(folders.back());
    folders.pop_back();
    std::error_code error;
    fs::directory_iterator entries(source.folder / folder, error);
    if (error) {
      if (folder.empty()) {
        throw IndexError(ExitStatus::kFailed, "Cannot read the site folder " +
                                                  source.folder.string() + ": " + error.message() +
                                                  ". Check --site and the folder's permissions.");
      }
      AddLeftOut(leftOut, Reason::kFolderNotRead, folder);
      continue;
    }
    while (entries != fs::directory_iterator()) {
      const fs::directory_entry& entry = *entries;
      const std::string name = entry.path().filename().string();
      const std::string path = folder.empty() ? name : (fs::path(folder) / name).string();
      const fs::file_type entryType = entry.symlink_status(error).type();
      if (error) {
        AddLeftOut(leftOut, Reason::kFileNotRead, path);
      } else if (IsExcluded(name, path, source)) {
        // Left out on purpose: no reason to report.
      } else if (entryType == fs::file_type::symlink) {
        // A link into the site is indexed where its target lies; one out of it never.
        if (TypeOf(name, source).has_value() || entry.is_directory(error)) {
          AddLeftOut(leftOut, Reason::kSymbolicLink, path);
        }
      } else if (entryType == fs::file_type::directory) {
        if (entry.path() != source.excludedFolder) folders.push_back(path);
      } else if (const std::optional<FileType> type = TypeOf(name, source); type.has_value()) {
        if (entryType == fs::file_type::regular) {
          items.push_back({path, PageAddress(source.base, path), *type});
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
  std::ranges::sort(items, {}, &SourceItem::path);
  return items;
}

Reason ReadItem(const FolderSource& source, const SourceItem& item, FileContent& content) {
  return ReadRegularFile((source.folder / item.path).string(), source.fileLimit, content);
}

}  // namespace vela::indexer
