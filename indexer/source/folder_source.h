// folder_source.h: the site's folder as a source of pages.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "indexer/source/file_endings.h"
#include "indexer/source/source.h"

namespace vela::indexer {

struct SiteFolder {
  std::filesystem::path folder = {};     // absolute
  std::string base;                      // the folder's address, ending in "/"
  std::vector<std::string> excluded;     // shell patterns, tried on a name and on a relative path
  std::filesystem::path excludedFolder;  // absolute; the index folder, when it lies in the site
  FileEndings endings;                   // of names of pages
  uint64_t fileLimit = 0;                // bytes
  bool followLinks = false;
  // Only these are read: paths from the folder on, or whole ones. None: all are.
  std::optional<std::vector<std::string>> only = {};
};

// Its items are in ascending byte order of their paths. Names that begin with a dot are passed
// over. Symbolic links are followed only where the site says so, only to what lies in the site, and
// only to what is not read where it lies: nothing outside the site is ever read, nothing twice, and
// no loop can occur. List throws IndexError when the folder itself cannot be read.
//
// The version of an item is what the file system says of its file: size, times of its bytes and of
// all else, and number. A file that was changed within the last two seconds has none: it may be
// changed again without another time.
class FolderSource final : public Source {
 public:
  explicit FolderSource(SiteFolder site) : site_(std::move(site)) {}

  SiteListing List() override;
  [[nodiscard]] Reason Read(const SourceItem& item, FileContent& content) const override;
  std::string Version(const SourceItem& item) const override;
  Finding WhyNotListed(const std::string& path) const override;

 private:
  std::string FileOf(const SourceItem& item) const;

  SiteFolder site_;
};

}  // namespace vela::indexer
