// page_state.h: what was made of every page, kept for the next run in a database (SQLite), so that
// only what has changed is read again.
//
// A row stands for one item of the source: its name and address, a fingerprint of what the source
// says of it, its version (Source::Version), a fingerprint of its bytes, and what became of it: why
// it was left out, or where its block lies. The block is bytes (block_bytes.h), packed.
//
// The file is not trusted. Each row has a fingerprint of itself and of its block; what does not
// fit, or was made by another program or by other wishes, counts as not there, and the page is read
// again. A file that cannot be used costs the run no more than that: it is removed in the end.
//
// Rows become durable as the run goes on, each for itself, so that a run after one that was killed
// goes on from there.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/report/reason.h"
#include "indexer/source/database.h"
#include "indexer/source/fingerprint.h"
#include "indexer/source/source.h"
#include "indexer/state/page_row.h"

namespace vela::indexer {

// What an item held when it was read.
struct ItemContent {
  std::string version;       // asked for before it was read
  Fingerprint bytes;         // see ContentFingerprint
  int64_t modifiedTime = 0;  // see FileContent
};

Fingerprint ContentFingerprint(const FileContent& content);

// Whether the same bytes may have another outcome in the next run: time or memory ran out, or the
// run was stopped.
bool IsPassing(Reason reason);

class PageState {
 public:
  // Opens the database `file`, or makes it, for its owner alone; no other run may use it. What is
  // there is dropped when it is of another `version`, which stands for all that a block depends on
  // beside the page, and when `fresh`.
  PageState(std::filesystem::path file, const Fingerprint& version, bool fresh,
            const std::vector<DateSource>& dates);
  ~PageState();
  PageState(const PageState&) = delete;
  PageState& operator=(const PageState&) = delete;

  // Finds out which items are as they were, and drops what is kept of those that are gone. The
  // items stand in ascending byte order of their paths and outlive this. One whose anchors are not
  // known counts as changed where `needsAnchors`. Before the functions below, which are given
  // numbers of these items.
  void Compare(const Source& source, const ItemList& items, bool needsAnchors);

  // Whether each item is as it was, and none is gone. Files of another time or place whose bytes
  // and dates are the same are as they were.
  bool isUnchanged() const { return isUnchanged_; }
  // Items whose outcome was taken from here.
  uint64_t takenCount() const { return taken_; }

  // Any number of threads may call these at once. They throw std::bad_alloc.

  // The outcome of an item that need not be read. False: read it.
  [[nodiscard]] bool Take(size_t item, ItemOutcome& outcome);
  // The same of one that was read and holds what it did before.
  [[nodiscard]] bool TakeEqual(size_t item, const ItemContent& content, ItemOutcome& outcome);
  // Keeps the outcome of an item.
  void Keep(size_t item, const ItemContent& content, const ItemOutcome& outcome);

  // Whether `index` is that of these items as they were, made by the wishes of the fingerprint.
  [[nodiscard]] bool IsPublished(const Fingerprint& wishes, const std::filesystem::path& index);
  // Notes that it is: `files` are those of its files that the run has written. After all items.
  void NotePublished(const Fingerprint& wishes, const std::filesystem::path& index,
                     const std::vector<std::string>& files);

  // Notes what the run had of the site beside these items (site_part.h): they are a part of it.
  // After all items.
  void NotePart(const std::string& part);

  // All becomes durable. Returns what the owner should know, mostly nothing. Nothing can be asked
  // of this afterwards.
  std::vector<Finding> Finish();

 private:
  enum class Is : uint8_t { kNew, kChanged, kSame };
  // What is known of an item, in few bytes: there may be millions. The rest is in its row.
  struct Known {
    uint64_t packed = 0;  // as in a KeptOutcome, like the next two
    uint64_t block : 48 = 0;
    uint64_t reason : 8 = 0;
    uint64_t is : 8 = 0;  // an Is

    void Set(const KeptOutcome& outcome, Is which);
    KeptOutcome Outcome() const;
    Is Which() const { return static_cast<Is>(is); }
  };
  static_assert(sizeof(Known) == 16);

  template <typename Action>
  bool Guarded(Action action);
  void Break(const char* why);
  void Open(bool fresh, const Fingerprint& version);
  void Begin();
  void CommitWhenMuch(size_t bytes);
  bool IsEqualNow(const Source& source, const SourceItem& item, PageRow& row);
  void DropPublished();
  bool HadContent(size_t item, const Fingerprint& content);
  bool ReadKept(size_t item, ItemOutcome& outcome);
  void Write(size_t item, const PageRow& row, const std::string* packed,
             const std::string* anchors);

  std::filesystem::path file_;
  std::vector<DateSource> dates_;
  const ItemList* items_ = nullptr;
  std::vector<Known> known_;  // beside the items
  bool needsAnchors_ = false;
  bool isUnchanged_ = false;
  std::atomic<uint64_t> taken_ = 0;

  std::mutex mutex_;  // of all that follows
  std::unique_ptr<Database> database_;
  std::vector<std::unique_ptr<Database>> readers_;  // that nobody uses now
  bool inTransaction_ = false;
  bool hasPublished_ = true;  // the note of an index may be there
  size_t waitingBytes_ = 0;   // of the transaction
  std::string fault_;         // why the file is of no use; empty: it is
  std::atomic<bool> isBroken_ = false;
};

}  // namespace vela::indexer
