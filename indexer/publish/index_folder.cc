#include "indexer/publish/index_folder.h"

#include "indexer/publish/carry_over.h"
#include "indexer/publish/exchanged_folder.h"
#include "indexer/publish/generations.h"

namespace vela::indexer {

namespace fs = std::filesystem;

IndexFolder::IndexFolder(const fs::path& target, const PublishSystem& system) {
  std::error_code error;
  target_ = fs::weakly_canonical(fs::absolute(target), error);
  if (error) FailPublishing("Cannot use " + target.string() + " for --out", error.message());
  if (!target_.has_filename()) target_ = target_.parent_path();
  const fs::path parent = target_.parent_path();
  if (fs::exists(target_) && !fs::is_directory(target_)) {
    FailPublishing("Cannot use " + target_.string() + " for --out", "it exists and is no folder");
  }
  if (!fs::is_directory(parent)) {
    FailPublishing("Cannot use " + target_.string() + " for --out",
                   "the folder " + parent.string() + " does not exist. Make it first");
  }
  try {
    if (!Generations::AreIn(target_)) place_ = ExchangedFolder::Open(target_, system);
    if (place_ == nullptr) place_ = Generations::Open(target_, system);
  } catch (const fs::filesystem_error& failure) {
    FailPublishing("Cannot use " + target_.string() + " for --out", failure.what());
  }
}

bool IndexFolder::OldHas(const std::string& name) const {
  std::error_code ignored;
  return fs::exists(target_ / name, ignored);
}

void IndexFolder::Commit() {
  try {
    place_->Commit(needed_);
  } catch (const fs::filesystem_error& error) {
    FailPublishing("Cannot put the index into " + target_.string(), error.what());
  }
}

}  // namespace vela::indexer
