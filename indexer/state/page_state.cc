#include "indexer/state/page_state.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <iterator>
#include <optional>
#include <utility>

#include "indexer/collect/block_bytes.h"
#include "indexer/report/index_error.h"
#include "indexer/state/packed_bytes.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr size_t kTransactionBytes = size_t{16} << 20;

// Of the number of a row, which counts from 1 on: what does not fit is of a file that is not ours,
// and leads to a row whose fingerprint is another one.
constexpr uint64_t kBlockBits = (uint64_t{1} << 48) - 1;

constexpr char kPublished[] = "published";
constexpr char kPublishedFiles[] = "published_files";

// Gives the page of a block the time of its file, where its date follows from that. False where it
// cannot be told: then the page has to be read.
bool SetFileTime(const std::vector<DateSource>& dates, int64_t time, PageFacts& facts) {
  const int64_t former = facts.fileTime;
  if (former == time) return true;
  const bool countsFiles = std::ranges::find(dates, DateSource::kFile) != dates.end();
  if (countsFiles && (former == 0 || time == 0)) return false;
  if (countsFiles && facts.time == former) {
    if (facts.ownTime == former) return false;  // the page may name that very second
    facts.time = time;
  }
  facts.fileTime = time;
  return true;
}

void AppendTime(const struct timespec& time, FingerprintOfAll& all) {
  all.Add(static_cast<uint64_t>(time.tv_sec));
  all.Add(static_cast<uint64_t>(time.tv_nsec));
}

// Of the files of an index as they lie there. `names`: one a line.
std::string FilesText(const Fingerprint& wishes, const fs::path& index, std::string_view names) {
  FingerprintOfAll all;
  all.Add(TextOf(wishes));
  all.Add(index.string());
  while (!names.empty()) {
    const size_t end = std::min(names.find('\n'), names.size());
    const std::string name(names.substr(0, end));
    names.remove_prefix(std::min(end + 1, names.size()));
    struct stat info = {};
    if (stat((index / name).c_str(), &info) != 0) return {};
    all.Add(name);
    all.Add(static_cast<uint64_t>(info.st_size));
    all.Add(uint64_t{info.st_ino});
    AppendTime(info.st_mtim, all);
    AppendTime(info.st_ctim, all);
  }
  return TextOf(all.Finish());
}

}  // namespace

Fingerprint ContentFingerprint(const FileContent& content) {
  FingerprintOfAll all;
  all.Add(TextOf(FingerprintOf(content.bytes)));
  all.Add(content.size);
  all.Add(content.charset);
  return all.Finish();
}

bool IsPassing(Reason reason) {
  constexpr Reason kPassing[] = {Reason::kMarkupTooSlow,    Reason::kStopped,
                                 Reason::kNoMemory,         Reason::kDocumentTooSlow,
                                 Reason::kDocumentTooLarge, Reason::kReaderFailed};
  return std::ranges::find(kPassing, reason) != std::end(kPassing);
}

void PageState::Known::Set(const KeptOutcome& outcome, Is which) {
  packed = outcome.packed;
  block = static_cast<uint64_t>(outcome.block) & kBlockBits;
  reason = static_cast<uint8_t>(outcome.reason);
  is = static_cast<uint8_t>(which);
}

KeptOutcome PageState::Known::Outcome() const {
  return {.reason = static_cast<Reason>(reason),
          .block = static_cast<int64_t>(block),
          .packed = packed};
}

// Whatever goes wrong with the file ends its use, not the run.
template <typename Action>
bool PageState::Guarded(Action action) {
  if (isBroken_) return false;
  try {
    action();
    return true;
  } catch (const IndexError& error) {
    Break(error.what());
    return false;
  }
}

void PageState::Break(const char* why) {
  fault_ = why;
  isBroken_ = true;
  isUnchanged_ = false;
}

PageState::PageState(fs::path file, const Fingerprint& version, bool fresh,
                     const std::vector<DateSource>& dates)
    : file_(std::move(file)), dates_(dates) {
  // A file that is damaged is made anew, once.
  const bool isOpen = Guarded([&] { Open(fresh, version); });
  if (isOpen) return;
  isBroken_ = false;
  fault_.clear();
  Guarded([&] { Open(true, version); });
}

PageState::~PageState() = default;

void PageState::Open(bool fresh, const Fingerprint& version) {
  database_.reset();
  if (fresh) RemoveDatabase(file_);
  MakePrivateFile(file_);
  database_ = std::make_unique<Database>(file_, true, kPageStateWords);
  database_->Run("PRAGMA journal_mode = WAL");
  // What the system loses when it falls is read again.
  database_->Run("PRAGMA synchronous = NORMAL");
  database_->Run(kPageSchema);
  const std::string form = FormText(version);
  const std::string found = StateText(*database_, kFormName);
  if (found == form) return;
  if (!fresh && !found.empty()) return Open(true, version);
  SetState(*database_, kFormName, form);
}

void PageState::Begin() {
  if (inTransaction_) return;
  database_->Run("BEGIN IMMEDIATE");
  inTransaction_ = true;
}

void PageState::CommitWhenMuch(size_t bytes) {
  waitingBytes_ += bytes;
  if (waitingBytes_ < kTransactionBytes) return;
  database_->Run("COMMIT");
  inTransaction_ = false;
  waitingBytes_ = 0;
}

// Before the first change of what the published index was made from.
void PageState::DropPublished() {
  if (!hasPublished_) return;
  Query(*database_, "DELETE FROM state WHERE name IN (?, ?)")
      .Bind(std::string_view(kPublished))
      .Bind(kPartName)
      .Next();
  hasPublished_ = false;
}

// Whether an item whose version is another one, or is not known, holds what it did. `row` then has
// the present version.
bool PageState::IsEqualNow(const Source& source, const SourceItem& item, PageRow& row) {
  std::string version = source.Version(item);
  FileContent content;
  const Reason reason = source.Read(item, content);
  if (reason != Reason::kNone) return reason == row.outcome.reason && row.content == Fingerprint();
  if (ContentFingerprint(content) != row.content || content.modifiedTime != row.modifiedTime) {
    return false;
  }
  row.version = std::move(version);
  return true;
}

void PageState::Compare(const Source& source, const ItemList& items, bool needsAnchors) {
  items_ = &items;
  needsAnchors_ = needsAnchors;
  known_.assign(items.size(), Known());
  isUnchanged_ = true;
  size_t next = 0;
  auto item = items.begin();  // the item of that number
  const std::lock_guard lock(mutex_);
  std::vector<std::pair<size_t, PageRow>> moved;      // as they were, with another version
  std::vector<std::pair<std::string, int64_t>> gone;  // paths, and rows of blocks
  Guarded([&] {
    Query query(*database_, kSelectPages);
    PageRow row;
    while (query.Next()) {
      const bool isWhole = row.Read(query);
      for (; next < items.size() && item->path < row.path; ++next, ++item) isUnchanged_ = false;
      if (next == items.size() || item->path != row.path) {
        gone.emplace_back(row.path, row.outcome.block);
        isUnchanged_ = false;
        continue;
      }
      const SourceItem found = *item;
      Known& known = known_[next];
      ++next;
      ++item;
      if (!isWhole || row.item != ItemFingerprint(found)) {
        if (isWhole) known.Set({.block = row.outcome.block}, Is::kNew);
        isUnchanged_ = false;
        continue;
      }
      known.Set(row.outcome, Is::kChanged);
      const bool counts = !IsPassing(row.outcome.reason);
      if (counts && !row.version.empty() && row.version == source.Version(found)) {
        known.Set(row.outcome, Is::kSame);
      } else if (counts && isUnchanged_ && IsEqualNow(source, found, row)) {
        // Where all are the same there is no run to come that would look at its bytes.
        known.Set(row.outcome, Is::kSame);
        if (!row.version.empty()) moved.emplace_back(next - 1, row);
      } else {
        isUnchanged_ = false;
      }
    }
  });
  if (next < items.size()) isUnchanged_ = false;
  if (needsAnchors) isUnchanged_ = false;
  Guarded([&] {
    for (const auto& [number, row] : moved) Write(number, row, nullptr, nullptr);
    if (gone.empty()) return;
    Begin();
    DropPublished();
    for (const auto& [path, block] : gone) {
      Query(*database_, "DELETE FROM page WHERE path = ?").BindBytes(path).Next();
      Query(*database_, "DELETE FROM block WHERE id = ?").Bind(block).Next();
    }
  });
}

// Whether the item held the same when it was read.
bool PageState::HadContent(size_t item, const Fingerprint& content) {
  const std::string path = (*items_)[item].path;
  bool isSame = false;
  const std::lock_guard lock(mutex_);
  Guarded([&] {
    Query query(*database_, kSelectPage);
    PageRow row;
    isSame = query.BindBytes(path).Next() && row.Read(query) && row.content == content;
  });
  return isSame;
}

bool PageState::ReadKept(size_t item, ItemOutcome& outcome) {
  std::unique_ptr<Database> reader;
  {
    const std::lock_guard lock(mutex_);
    if (isBroken_) return false;
    if (!readers_.empty()) {
      reader = std::move(readers_.back());
      readers_.pop_back();
    }
  }
  bool isThere = false;
  try {
    if (reader == nullptr) reader = std::make_unique<Database>(file_, false, kPageStateWords);
    isThere = ReadOutcome(*reader, known_[item].Outcome(), (*items_)[item], needsAnchors_, outcome);
  } catch (const IndexError& error) {
    const std::lock_guard lock(mutex_);
    Break(error.what());
    return false;
  }
  const std::lock_guard lock(mutex_);
  readers_.push_back(std::move(reader));
  return isThere;
}

bool PageState::Take(size_t item, ItemOutcome& outcome) {
  if (known_[item].Which() != Is::kSame || !ReadKept(item, outcome)) return false;
  ++taken_;
  return true;
}

bool PageState::TakeEqual(size_t item, const ItemContent& content, ItemOutcome& outcome) {
  const Known& known = known_[item];
  if (known.Which() == Is::kNew || IsPassing(known.Outcome().reason) ||
      !HadContent(item, content.bytes) || !ReadKept(item, outcome)) {
    return false;
  }
  if (outcome.reason == Reason::kNone &&
      !SetFileTime(dates_, content.modifiedTime, outcome.block.facts)) {
    return false;
  }
  Keep(item, content, outcome);
  ++taken_;
  return true;
}

void PageState::Keep(size_t item, const ItemContent& content, const ItemOutcome& outcome) {
  if (isBroken_) return;
  const SourceItem source = (*items_)[item];
  const std::string packed =
      outcome.reason == Reason::kNone ? Packed(BlockBytes(outcome.block)) : std::string();
  const std::string anchors = needsAnchors_ ? Packed(outcome.anchors) : std::string();
  const PageRow row = {.path = source.path,
                       .address = source.address,
                       .type = source.type,
                       .item = ItemFingerprint(source),
                       .version = content.version,
                       .content = content.bytes,
                       .modifiedTime = content.modifiedTime,
                       .outcome = {.reason = outcome.reason,
                                   .block = known_[item].Outcome().block,
                                   .packed = PackedFingerprint(packed, anchors)}};
  const std::lock_guard lock(mutex_);
  Guarded([&] {
    Begin();
    DropPublished();
    Write(item, row, &packed, needsAnchors_ ? &anchors : nullptr);
  });
}

// Writes a row, with the block of `packed` where that is not null. The mutex is held.
void PageState::Write(size_t item, const PageRow& given, const std::string* packed,
                      const std::string* anchors) {
  Begin();
  PageRow row = given;
  if (packed != nullptr) {
    Query query(*database_, "INSERT OR REPLACE INTO block (id, bytes, anchors) VALUES (?, ?, ?)");
    if (row.outcome.block == 0) {
      query.BindNull();
    } else {
      query.Bind(row.outcome.block);
    }
    query.BindBytes(*packed);
    if (anchors == nullptr) {
      query.BindNull();
    } else {
      query.BindBytes(*anchors);
    }
    query.Next();
    if (row.outcome.block == 0) row.outcome.block = database_->LastRow();
    known_[item].block = static_cast<uint64_t>(row.outcome.block) & kBlockBits;
  }
  row.Write(*database_);
  CommitWhenMuch(packed == nullptr ? 0 : packed->size());
}

bool PageState::IsPublished(const Fingerprint& wishes, const fs::path& index) {
  bool isThere = false;
  const std::lock_guard lock(mutex_);
  Guarded([&] {
    const std::string noted = StateText(*database_, kPublished);
    const std::string files = StateText(*database_, kPublishedFiles);
    isThere = !noted.empty() && !files.empty() && noted == FilesText(wishes, index, files);
  });
  return isThere;
}

void PageState::NotePublished(const Fingerprint& wishes, const fs::path& index,
                              const std::vector<std::string>& files) {
  std::string names;
  for (const std::string& file : files) names += (names.empty() ? "" : "\n") + file;
  const std::lock_guard lock(mutex_);
  Guarded([&] {
    Begin();
    SetState(*database_, kPublishedFiles, names);
    SetState(*database_, kPublished, FilesText(wishes, index, names));
    hasPublished_ = true;
  });
}

void PageState::NotePart(const std::string& part) {
  const std::lock_guard lock(mutex_);
  Guarded([&] {
    Begin();
    SetState(*database_, kPartName, part);
  });
}

std::vector<Finding> PageState::Finish() {
  const std::lock_guard lock(mutex_);
  readers_.clear();
  Guarded([&] {
    if (inTransaction_) database_->Run("COMMIT");
    inTransaction_ = false;
  });
  try {
    // So that it is one file, which can be read where nothing can be written.
    if (!isBroken_) database_->Run("PRAGMA journal_mode = DELETE");
  } catch (const IndexError&) {
    // Somebody else is looking at it.
  }
  database_.reset();
  if (!isBroken_) return {};
  RemoveDatabase(file_);
  return {{Reason::kStateNotKept, {}, fault_}};
}

}  // namespace vela::indexer
