// folder_walk.h: which files of the site folder are pages.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "indexer/report/left_out.h"

namespace vela::indexer {

enum class FileKind : uint8_t { kHtml, kText };

struct SiteFile {
  std::string
      path;  // relative to the site folder, "/" between the names, as the file system has it
  FileKind kind = FileKind::kHtml;
};

struct WalkRules {
  std::vector<std::string> excluded;     // shell patterns, tried on a name and on a relative path
  std::filesystem::path excludedFolder;  // absolute; the index folder, when it lies in the site
  // What follows the last dot of a page's name, in lower case.
  std::vector<std::string> htmlEndings;
  std::vector<std::string> textEndings;
};

// Lists the pages below `site` in ascending byte order of their paths. Symbolic links are not
// followed, so that nothing outside the site is ever read and no loop can occur; names that begin
// with a dot are passed over. Files of other kinds are not counted as left out. Throws IndexError
// when `site` itself cannot be read.
std::vector<SiteFile> WalkSite(const std::filesystem::path& site, const WalkRules& rules,
                               LeftOut& leftOut);

}  // namespace vela::indexer
