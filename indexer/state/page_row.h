// page_row.h: the database in which what was made of pages is kept, and its rows.
//
// A row of `page` stands for one item of a source: its name and address, a fingerprint of what the
// source says of it, its version (Source::Version), a fingerprint of its bytes, and what became of
// it: why it was left out, or which row of `block` has its block (block_bytes.h), packed. `state`
// holds what is known of all: by which wishes and program they were made (`form`), which index was
// made from them (`published`), of which part of a site they are (`part`).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "indexer/collect/page_block.h"
#include "indexer/report/reason.h"
#include "indexer/source/database.h"
#include "indexer/source/fingerprint.h"
#include "indexer/source/source_item.h"

namespace vela::indexer {

inline constexpr char kPageStateName[] = "vela_pages.db";

inline constexpr DatabaseWords kPageStateWords = {.holds = "what was made of the pages",
                                                  .afterLoss = "read all pages anew"};

inline constexpr char kPageSchema[] = R"(
CREATE TABLE IF NOT EXISTS state (name TEXT PRIMARY KEY, value) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS page (
  path BLOB PRIMARY KEY,
  address BLOB NOT NULL,
  type INTEGER NOT NULL,
  item INTEGER NOT NULL,
  version TEXT NOT NULL,
  content_high INTEGER NOT NULL,
  content_low INTEGER NOT NULL,
  modified INTEGER NOT NULL,
  reason TEXT NOT NULL,
  block INTEGER NOT NULL,
  packed INTEGER NOT NULL,
  check_sum INTEGER NOT NULL) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS block (id INTEGER PRIMARY KEY, bytes BLOB, anchors BLOB);
)";

// All rows, in ascending byte order of their paths. Texts stand before all bytes.
inline constexpr char kSelectPages[] =
    "SELECT path, address, type, item, version, content_high, content_low, modified, reason, block,"
    " packed, check_sum FROM page WHERE typeof(path) = 'blob' ORDER BY path";
// That of a path.
inline constexpr char kSelectPage[] =
    "SELECT path, address, type, item, version, content_high, content_low, modified, reason, block,"
    " packed, check_sum FROM page WHERE path = ?";

inline constexpr std::string_view kFormName = "form";
inline constexpr std::string_view kPartName = "part";

// The value of `form` of what was made by the program and the wishes of that fingerprint.
std::string FormText(const Fingerprint& version);

// The value of that name; empty where there is none.
std::string StateText(Database& database, std::string_view name);
void SetState(Database& database, std::string_view name, std::string_view value);

// What became of an item.
struct ItemOutcome {
  Reason reason = Reason::kNone;
  PageBlock block;      // where that is kNone
  std::string anchors;  // for the check of links (anchor_bytes.h); of use where they were asked for
};

// Where it lies.
struct KeptOutcome {
  Reason reason = Reason::kNone;
  int64_t block = 0;    // row of its block; 0: it has none
  uint64_t packed = 0;  // fingerprint of that row
};

struct PageRow {
  std::string path;
  std::string address;
  FileType type = FileType::kHtml;
  uint64_t item = 0;  // ItemFingerprint
  std::string version;
  Fingerprint content;
  int64_t modifiedTime = 0;
  KeptOutcome outcome;

  // Takes a row of kSelectPages or kSelectPage. False when it is no whole row that Write has
  // written.
  [[nodiscard]] bool Read(const Query& query);
  void Write(Database& database) const;

 private:
  uint64_t CheckSum() const;
};

// What the source says of an item before it is read.
uint64_t ItemFingerprint(const SourceItem& item);

uint64_t PackedFingerprint(std::string_view packed, std::string_view anchors);

// Reads what became of the item of that path and address. False when it does not lie there, whole,
// or the anchors do not that are asked for.
[[nodiscard]] bool ReadOutcome(Database& database, const KeptOutcome& kept, const SourceItem& item,
                               bool needsAnchors, ItemOutcome& outcome);

}  // namespace vela::indexer
