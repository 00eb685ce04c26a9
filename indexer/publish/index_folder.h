// index_folder.h: the folder that the index is written to, and how it takes the place of the old.
//
// Everything is written to a new folder. When it is complete, files of the old index that the
// indexer does not write (search.cgi, logs/, an edited template or language file, pictures ...) are
// carried over, and the new index takes the place of the old one in one step. A search that runs
// meanwhile sees the old index or the new one, never a mixture; a run that fails leaves the old one
// as it was, and the next run removes what a killed one left.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "indexer/publish/index_place.h"

namespace vela::indexer {

class IndexFolder {
 public:
  // Makes the new folder. `target` need not exist; its parent must. Throws IndexError, kBusy when
  // another run is writing this index.
  explicit IndexFolder(const std::filesystem::path& target, const PublishSystem& system = {});
  // Removes what was not put into place.
  ~IndexFolder() = default;
  IndexFolder(const IndexFolder&) = delete;
  IndexFolder& operator=(const IndexFolder&) = delete;

  // Where to write.
  const std::filesystem::path& fresh() const { return place_->fresh(); }
  // Where the index will be; absolute, links resolved.
  const std::filesystem::path& target() const { return target_; }
  // The index before the one that is there; see IndexPlace.
  std::filesystem::path LastIndex() const { return place_->LastIndex(); }
  // Whether the old folder has a file of that name.
  bool OldHas(const std::string& name) const;
  // Asks for a folder of that path in the index; what the old one has of it comes along.
  void Need(const std::filesystem::path& folder) { needed_.push_back(folder); }
  // Puts the new folder into place. Searches that have begun go on reading the old one.
  void Commit();

 private:
  std::filesystem::path target_;
  std::unique_ptr<IndexPlace> place_;
  std::vector<std::filesystem::path> needed_;
};

}  // namespace vela::indexer
