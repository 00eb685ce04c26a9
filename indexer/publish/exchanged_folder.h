// exchanged_folder.h: an index folder that is replaced as a whole, by exchanging it with another.
//
// Everything else lies beside it under hidden names, here for a folder "search":
//   .search.lock         while a run is at work
//   .search.new-XXXXXX   what a run is writing; one that nobody holds is of a run that was killed
//   .search.old-XXXXXX   a former index, which searches that have begun go on reading; or, with a
//                        time of 1970, a new one whose run was killed before it was in place
#pragma once

#include "indexer/publish/index_place.h"

namespace vela::indexer {

class ExchangedFolder : public IndexPlace {
 public:
  // Null when `target` cannot be replaced as a whole: it is the root of a mounted file system, its
  // file system cannot exchange folders, or nothing can be made beside it. That is found out here,
  // before the work, and without changing `target`.
  static std::unique_ptr<IndexPlace> Open(const std::filesystem::path& target,
                                          const PublishSystem& system);

  void Commit(const std::vector<std::filesystem::path>& needed) override;
  std::filesystem::path LastIndex() const override;

 private:
  ExchangedFolder(const std::filesystem::path& target, const PublishSystem& system);
  std::filesystem::path Hidden(const char* what) const;
  bool Begin();
  bool CanExchange() const;
  void Sweep() const;
  void CarryOver() const;
};

}  // namespace vela::indexer
