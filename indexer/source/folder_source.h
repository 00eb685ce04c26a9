// folder_source.h: the site's folder as a source of pages.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "indexer/report/left_out.h"
#include "indexer/report/reason.h"
#include "indexer/source/file_endings.h"
#include "indexer/source/file_reading.h"
#include "indexer/source/source_item.h"

namespace vela::indexer {

struct FolderSource {
  std::filesystem::path folder = {};     // absolute
  std::string base;                      // the folder's address, ending in "/"
  std::vector<std::string> excluded;     // shell patterns, tried on a name and on a relative path
  std::filesystem::path excludedFolder;  // absolute; the index folder, when it lies in the site
  FileEndings endings;                   // of names of pages
  uint64_t fileLimit = 0;                // bytes
  bool followLinks = false;
};

struct SiteListing {
  std::vector<SourceItem> items;  // in ascending byte order of their paths
  LeftOut leftOut;                // what might have been pages
  LeftOut otherKinds;             // `where` is the ending, with its dot; empty for none
  std::vector<Finding> unused;    // patterns of `excluded` that left nothing out
};

// Lists the pages. Names that begin with a dot are passed over. Symbolic links are followed only
// where the source says so, only to what lies in the site, and only to what is not read where it
// lies: nothing outside the site is ever read, nothing twice, and no loop can occur. Throws
// IndexError when the folder itself cannot be read.
SiteListing ListItems(const FolderSource& source);

// Reads an item of the list. What it holds is in `content` when kNone is returned.
[[nodiscard]] Reason ReadItem(const FolderSource& source, const SourceItem& item,
                              FileContent& content);

}  // namespace vela::indexer
