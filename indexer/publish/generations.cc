#include "indexer/publish/generations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>

#include "format/index_directory.h"
#include "indexer/publish/carry_over.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr char kNew[] = "new-";
// From a generation to the index folder.
const fs::path kOutward = "../..";

// The number of a generation's folder; 0 for another name.
uint64_t GenerationNumber(const std::string& name) {
  uint64_t number = 0;
  const char* end = name.data() + name.size();
  const auto result = std::from_chars(name.data(), end, number);
  return result.ec == std::errc() && result.ptr == end ? number : 0;
}

bool IsLinkTo(const fs::path& link, const fs::path& leadsTo) {
  std::error_code error;
  return fs::read_symlink(link, error) == leadsTo && !error;
}

bool Exists(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

// Whether the entry of the index folder is the link to the present generation's file of that name.
bool IsShown(const fs::path& outer) {
  return IsLinkTo(outer, fs::path(kCurrentGeneration) / outer.filename());
}

// Whether the entry of a generation is the link to the owner's file of that name.
bool IsOwners(const fs::path& inner) { return IsLinkTo(inner, kOutward / inner.filename()); }

// The names in a folder, all read before anything there changes.
std::set<std::string> NamesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    names.insert(entry.path().filename().string());
  }
  names.erase(kGenerations);
  return names;
}

// What a search reads through the handle of a folder, so that it has to stay for a while.
bool IsReadBySearches(const std::string& name) { return name.ends_with(".vdat"); }

}  // namespace

Generations::Generations(const fs::path& target, const PublishSystem& system)
    : IndexPlace(target, system), folder_(target / kGenerations) {}

Generations::~Generations() {
  if (!fresh_.empty()) RemoveFolder(fresh_);
  fresh_.clear();
  lock_.Release();
  rmdir(folder_.c_str());  // stays unless it is empty, when the first run failed
}

bool Generations::AreIn(const fs::path& target) {
  return fs::is_symlink(fs::symlink_status(target / kCurrentGeneration));
}

std::unique_ptr<IndexPlace> Generations::Open(const fs::path& target, const PublishSystem& system) {
  std::unique_ptr<Generations> place(new Generations(target, system));
  place->Begin();
  return place;
}

void Generations::Begin() {
  int error = 0;
  do {
    // A run that fails takes the folder away again, together with the lock that was waited for.
    if (fs::create_directory(folder_)) TakeOwnerAndMode(target_, folder_);
    error = TakeLock(folder_ / "lock");
  } while (error == ENOENT);
  if (error == 0) {
    std::error_code none;
    const fs::path current = fs::read_symlink(target_ / kCurrentGeneration, none);
    if (!current.empty() && fs::is_directory(folder_ / current)) former_ = folder_ / current;
    present_ = former_;
    // Its settings lie in the index folder itself until then.
    isPlainIndexDone_ = !former_.empty() && IsLongFormer(target_ / kCurrentGeneration, target_);
    Sweep();
    error = MakeFreshFolder(folder_ / kNew, fresh_);
  }
  if (error != 0) FailPublishing("Cannot make a folder in " + folder_.string(), strerror(error));
}

fs::path Generations::LastIndex() const {
  const uint64_t present = GenerationNumber(present_.filename().string());
  uint64_t last = 0;
  for (const std::string& name : NamesIn(folder_)) {
    const uint64_t number = GenerationNumber(name);
    struct stat info = {};
    if (number <= last || number >= present) continue;
    if (lstat((folder_ / name).c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) continue;
    if (WasInPlace(info)) last = number;
  }
  return last == 0 ? fs::path() : folder_ / std::to_string(last);
}

void Generations::Sweep() const {
  const fs::path last = system_.keepsLast ? LastIndex() : fs::path();
  for (const std::string& name : NamesIn(folder_)) {
    const fs::path folder = folder_ / name;
    if (folder == present_ || folder == last) continue;
    if (!fs::is_directory(fs::symlink_status(folder))) continue;
    if (IsFreshName(name, kNew) || (GenerationNumber(name) != 0 && IsLongFormer(folder))) {
      RemoveFolder(folder);
    }
  }
}

// Puts a link into a place where there may be a file or a link, in one step.
void Generations::PlaceLink(const fs::path& to, const fs::path& link) const {
  const fs::path made = folder_ / "link";
  fs::remove_all(made);
  fs::create_symlink(to, made);
  fs::rename(made, link);
}

// Gives a complete folder the next number.
fs::path Generations::MakeGeneration(const fs::path& folder) const {
  uint64_t last = 0;
  for (const std::string& name : NamesIn(folder_)) last = std::max(last, GenerationNumber(name));
  TakeOwnerAndMode(target_, folder);
  MarkNotYetInPlace(folder);
  fs::path generation = folder_ / std::to_string(last + 1);
  fs::rename(folder, generation);
  return generation;
}

void Generations::SwitchTo(const fs::path& generation) {
  // From now on it counts as former.
  if (!former_.empty()) MarkChanged(former_);
  PlaceLink(generation.filename(), target_ / kCurrentGeneration);
  MarkChanged(generation);
  present_ = generation;
}

// Whether the entry of the index folder is of an index there, or in the way of the new one.
bool Generations::IsOfPlainIndex(const std::string& name) const {
  return (IsIndexFile(name) || Exists(fresh_ / name)) && !IsShown(target_ / name);
}

// An index that lies in the folder itself becomes the first generation, of the same files, so that
// all the rest is a change from one generation to another.
void Generations::TakeInPlainIndex() {
  const std::set<std::string> names = NamesIn(target_);
  if (std::ranges::none_of(names, [&](const auto& name) { return IsOfPlainIndex(name); })) return;
  fs::path plain;
  const int error = MakeFreshFolder(folder_ / kNew, plain);
  if (error != 0) FailPublishing("Cannot make a folder in " + folder_.string(), strerror(error));
  for (const std::string& name : names) {
    if (IsOfPlainIndex(name)) {
      LinkOrCopy(target_ / name, plain / name);
    } else if (!IsShown(target_ / name)) {
      fs::create_symlink(kOutward / name, plain / name);
    }
  }
  const fs::path generation = MakeGeneration(plain);
  SwitchTo(generation);
  former_ = generation;
}

void Generations::CarryOver() const {
  for (const std::string& name : NamesIn(target_)) {
    if (IsIndexFile(name) || Exists(fresh_ / name) || IsShown(target_ / name)) continue;
    fs::create_symlink(kOutward / name, fresh_ / name);
  }
  if (former_.empty()) return;
  // What came to be there otherwise: a template that an earlier run wrote, a log of searches.
  for (const std::string& name : NamesIn(former_)) {
    if (IsIndexFile(name) || Exists(fresh_ / name) || IsOwners(former_ / name)) continue;
    LinkOrCopy(former_ / name, fresh_ / name);
  }
}

// The owner's file is about to give way to one of the index: the former generation keeps it.
void Generations::KeepForFormer(const std::string& name) const {
  if (former_.empty() || !IsOwners(former_ / name)) return;
  const fs::path owners = target_ / name;
  if (fs::is_symlink(fs::symlink_status(owners))) {
    const fs::path to = fs::read_symlink(owners);
    PlaceLink(to.is_absolute() ? to : kOutward / to, former_ / name);
    return;
  }
  const fs::path kept = folder_ / "link";
  fs::remove_all(kept);
  LinkOrCopy(owners, kept);
  fs::rename(kept, former_ / name);
}

// Makes the files of a generation appear in the index folder once it is the present one. Until
// then the links lead to the former one, which has what they take the place of.
void Generations::ShowFiles(const fs::path& generation) const {
  for (const std::string& name : NamesIn(generation)) {
    const fs::path outer = target_ / name;
    if (IsOwners(generation / name) || IsShown(outer)) continue;
    if (Exists(outer)) {
      if (IsReadBySearches(name) && !isPlainIndexDone_) continue;
      KeepForFormer(name);
    }
    PlaceLink(fs::path(kCurrentGeneration) / name, outer);
  }
}

// Removes from the index folder what the present generation no longer has.
void Generations::HideFiles(const fs::path& generation) const {
  for (const std::string& name : NamesIn(target_)) {
    if (Exists(generation / name)) continue;
    const bool isOfPlainIndex = IsIndexFile(name) && (isPlainIndexDone_ || !IsReadBySearches(name));
    if (IsShown(target_ / name) || isOfPlainIndex) fs::remove(target_ / name);
  }
}

void Generations::Commit(const std::vector<fs::path>& needed) {
  if (former_.empty()) TakeInPlainIndex();
  for (const fs::path& folder : needed) fs::create_directories(target_ / folder);
  CarryOver();
  const fs::path generation = MakeGeneration(fresh_);
  fresh_.clear();
  ShowFiles(generation);
  SwitchTo(generation);
  HideFiles(generation);
  if (system_.keepsLast) Sweep();  // what was the last index until now
}

}  // namespace vela::indexer
