// generations.h: an index folder that cannot be replaced as a whole, such as a container's volume,
// and holds whole indexes inside.
//
//   .generations/lock          while a run is at work
//   .generations/new-XXXXXX/   what a run is writing; one that nobody holds is of a killed run
//   .generations/7/            a former index, which searches that have begun go on reading
//   .generations/8/            the present one; one with a time of 1970 was not put into place,
//                              as its run was killed before
//   .generations/current       a link to "8", by which search.cgi finds it; replaced in one step
//   vela_search.css            a link to .generations/current/vela_search.css, and so every file of
//                              the index, so that web servers find it where it always was
//   search.cgi, logs/          what is no such link is the owner's; each generation has a link
//                              ../../search.cgi to it
// src/settings/index_directory.h reads this; src/format/index_directory.h has the names.
#pragma once

#include "indexer/publish/index_place.h"

namespace vela::indexer {

class Generations : public IndexPlace {
 public:
  // Whether the folder holds generations. It then keeps to them: where it cannot be replaced as a
  // whole for one, it must not be for another who could.
  static bool AreIn(const std::filesystem::path& target);
  static std::unique_ptr<IndexPlace> Open(const std::filesystem::path& target,
                                          const PublishSystem& system);
  ~Generations() override;

  void Commit(const std::vector<std::filesystem::path>& needed) override;
  std::filesystem::path LastIndex() const override;

 private:
  Generations(const std::filesystem::path& target, const PublishSystem& system);
  void Begin();
  void Sweep() const;
  bool IsOfPlainIndex(const std::string& name) const;
  void TakeInPlainIndex();
  void CarryOver() const;
  std::filesystem::path MakeGeneration(const std::filesystem::path& folder) const;
  void KeepForFormer(const std::string& name) const;
  void ShowFiles(const std::filesystem::path& generation) const;
  void HideFiles(const std::filesystem::path& generation) const;
  void PlaceLink(const std::filesystem::path& to, const std::filesystem::path& link) const;
  void SwitchTo(const std::filesystem::path& generation);

  std::filesystem::path folder_;   // .generations
  std::filesystem::path former_;   // the present generation before Commit; empty for none
  std::filesystem::path present_;  // that one, and the new one after Commit
  bool isPlainIndexDone_ = false;  // no search reads the files of a former plain index any more
};

}  // namespace vela::indexer
