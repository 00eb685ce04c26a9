// passing_folder.h: a folder among the system's temporary ones, for one run.
#pragma once

#include <filesystem>
#include <utility>

namespace vela::indexer {

// Removed, with all that is in it, with this.
class PassingFolder {
 public:
  PassingFolder() = default;
  PassingFolder(PassingFolder&& other) noexcept : path_(std::exchange(other.path_, {})) {}
  PassingFolder& operator=(PassingFolder&& other) noexcept {
    path_.swap(other.path_);
    return *this;
  }
  ~PassingFolder();

  // Makes one, for its owner alone. Throws IndexError.
  static PassingFolder Make();

  // Empty: there is none.
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace vela::indexer
