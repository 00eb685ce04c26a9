#include "indexer/state/merged_parts.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

#include "indexer/report/index_error.h"
#include "indexer/state/state_folder.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Refuse(const std::string& folder, const std::string& why) {
  throw IndexError(ExitStatus::kUsage, "Cannot merge " + folder + ": " + why);
}

std::string NameOf(const PartNumber& part) {
  return std::to_string(part.number) + "/" + std::to_string(part.count);
}

// The rows of one part, one after the other.
class Rows {
 public:
  explicit Rows(Database& database) : query_(database, kSelectPages) { Next(); }
  bool isAtEnd() const { return !hasRow_; }
  bool isWhole() const { return isWhole_; }
  const PageRow& row() const { return row_; }
  void Next() {
    hasRow_ = query_.Next();
    isWhole_ = hasRow_ && row_.Read(query_);
  }

 private:
  Query query_;
  PageRow row_;
  bool hasRow_ = false;
  bool isWhole_ = false;
};

}  // namespace

PartNotes MergedParts::OpenPart(const std::string& folder) {
  std::error_code error;
  Part part;
  part.folder = fs::canonical(folder, error);
  if (error || !fs::exists(part.folder / kPageStateName)) {
    Refuse(folder,
           "it holds no part. Give the folders that --state named in the runs with --part.");
  }
  for (const Part& other : parts_) {
    if (other.folder == part.folder) Refuse(folder, "it is given twice.");
  }
  auto lock = std::make_unique<RunLock>();
  const LockStatus status = lock->TryTake(part.folder / kStateLockName);
  if (status == LockStatus::kBusy) {
    throw IndexError(ExitStatus::kBusy, "Another run is using " + folder + ".");
  }
  if (status == LockStatus::kHeld) part.lock = std::move(lock);
  auto database = std::make_unique<Database>(part.folder / kPageStateName, false, kPageStateWords);
  PartNotes notes;
  if (!ReadPartText(StateText(*database, kPartName), notes)) {
    Refuse(folder, "it holds no complete part. Run it with --part again.");
  }
  part.form = StateText(*database, kFormName);
  part.readers.push_back(std::move(database));
  parts_.push_back(std::move(part));
  return notes;
}

MergedParts::MergedParts(const std::vector<std::string>& folders) {
  std::vector<std::string> folderOf;  // by the number of the part
  for (const std::string& folder : folders) {
    PartNotes notes = OpenPart(folder);
    const size_t number = notes.part.number - 1;
    if (parts_.size() == 1) {
      folderOf.resize(notes.part.count);
      notes_ = std::move(notes);
      folderOf[number] = folder;
      continue;
    }
    const std::string& first = folders.front();
    if (notes.part.count != notes_.part.count) {
      Refuse(folder, "it is part " + NameOf(notes.part) + ", and " + first + " is part " +
                         NameOf(notes_.part) + ".");
    }
    if (!folderOf[number].empty()) {
      Refuse(folder, "it is part " + NameOf(notes.part) + ", as " + folderOf[number] + " is.");
    }
    folderOf[number] = folder;
    if (parts_.back().form != parts_.front().form || notes.base != notes_.base) {
      Refuse(folder, "it was made by another configuration, version or machine than " + first +
                         ". Run all parts with the same ones.");
    }
    if (notes.list != notes_.list) {
      Refuse(folder, "the site had other files for it than for " + first +
                         ". Run both again, when it does not change.");
    }
  }
  for (uint32_t i = 0; i < folderOf.size(); ++i) {
    if (!folderOf[i].empty()) continue;
    throw IndexError(ExitStatus::kUsage, "Part " +
                                             NameOf({.number = i + 1, .count = notes_.part.count}) +
                                             " is missing. Give --merge for all of them.");
  }
}

void MergedParts::CheckVersion(const Fingerprint& version) const {
  if (parts_.front().form == FormText(version)) return;
  Refuse(
      parts_.front().folder.string(),
      "it was made by another configuration, version or machine than this run has. Merge with the "
      "program and the configuration of the parts.");
}

SiteListing MergedParts::List() {
  std::vector<std::unique_ptr<Rows>> rows;
  for (const Part& part : parts_) rows.push_back(std::make_unique<Rows>(*part.readers.front()));
  SiteListing listing = std::move(notes_.listing);
  ListFingerprint list;
  while (true) {
    // The part whose next row stands first.
    std::optional<uint32_t> first;
    for (uint32_t i = 0; i < rows.size(); ++i) {
      if (rows[i]->isAtEnd()) continue;
      if (!first.has_value() || rows[i]->row().path < rows[*first]->row().path) first = i;
    }
    if (!first.has_value()) break;
    if (!rows[*first]->isWhole()) {
      Refuse(parts_[*first].folder.string(), "it is damaged. Run it with --part again.");
    }
    const PageRow& row = rows[*first]->row();
    list.Add(row.item);
    listing.items.Add({.path = row.path, .address = row.address, .type = row.type});
    known_.push_back({.part = *first, .outcome = row.outcome});
    rows[*first]->Next();
  }
  if (list.Finish() != notes_.list) {
    throw IndexError(ExitStatus::kUsage,
                     "The parts do not hold all pages of the site. Run all with --part again.");
  }
  items_ = listing.items;
  return listing;
}

void MergedParts::Take(size_t item, ItemOutcome& outcome) const {
  const Known& known = known_[item];
  std::unique_ptr<Database> reader;
  {
    const std::lock_guard lock(mutex_);
    std::vector<std::unique_ptr<Database>>& readers = parts_[known.part].readers;
    if (!readers.empty()) {
      reader = std::move(readers.back());
      readers.pop_back();
    }
  }
  if (reader == nullptr) {
    reader = std::make_unique<Database>(FileOf(known.part), false, kPageStateWords);
  }
  const bool isThere = ReadOutcome(*reader, known.outcome, items_[item], false, outcome);
  {
    const std::lock_guard lock(mutex_);
    parts_[known.part].readers.push_back(std::move(reader));
  }
  if (isThere) return;
  Refuse(parts_[known.part].folder.string(), "it is damaged. Run it with --part again.");
}

Reason MergedParts::Read(const SourceItem& item, FileContent& content) const {
  (void)item;
  content = FileContent();
  return Reason::kFileNotFound;
}

std::string MergedParts::Version(const SourceItem& item) const {
  (void)item;
  return {};
}

}  // namespace vela::indexer
