#include "indexer/state/page_row.h"

#include <algorithm>
#include <optional>

#include "indexer/collect/block_bytes.h"
#include "indexer/state/packed_bytes.h"

namespace vela::indexer {

namespace {

constexpr int64_t kFormat = 1;
constexpr size_t kBlockLimit = size_t{1} << 31;

// A number of 64 bits as SQLite has them, and back.
int64_t Stored(uint64_t number) { return static_cast<int64_t>(number); }
uint64_t Restored(int64_t number) { return static_cast<uint64_t>(number); }

}  // namespace

std::string FormText(const Fingerprint& version) {
  return std::to_string(kFormat) + " " + TextOf(version);
}

std::string StateText(Database& database, std::string_view name) {
  Query query(database, "SELECT value FROM state WHERE name = ?");
  return query.Bind(name).Next() ? query.Text(0) : std::string();
}

void SetState(Database& database, std::string_view name, std::string_view value) {
  Query query(database, "INSERT OR REPLACE INTO state VALUES (?, ?)");
  query.Bind(name).BindBytes(value).Next();
}

bool PageRow::Read(const Query& query) {
  path = query.Text(0);
  address = query.Text(1);
  type = static_cast<FileType>(std::clamp<int64_t>(query.Number(2), 0, kFileTypeCount - 1));
  item = Restored(query.Number(3));
  version = query.Text(4);
  content = {.high = Restored(query.Number(5)), .low = Restored(query.Number(6))};
  modifiedTime = query.Number(7);
  const std::optional<Reason> reason = ReasonOfCode(query.Text(8));
  outcome = {.reason = reason.value_or(Reason::kNone),
             .block = query.Number(9),
             .packed = Restored(query.Number(10))};
  return reason.has_value() && Restored(query.Number(11)) == CheckSum();
}

void PageRow::Write(Database& database) const {
  Query query(database, "INSERT OR REPLACE INTO page VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  query.BindBytes(path).BindBytes(address).Bind(static_cast<int64_t>(type));
  query.Bind(Stored(item)).Bind(version);
  query.Bind(Stored(content.high)).Bind(Stored(content.low)).Bind(modifiedTime);
  query.Bind(ReasonCode(outcome.reason)).Bind(outcome.block).Bind(Stored(outcome.packed));
  query.Bind(Stored(CheckSum()));
  query.Next();
}

uint64_t PageRow::CheckSum() const {
  FingerprintOfAll all;
  all.Add(path);
  all.Add(address);
  all.Add(static_cast<uint64_t>(type));
  all.Add(item);
  all.Add(version);
  all.Add(TextOf(content));
  all.Add(Restored(modifiedTime));
  all.Add(ReasonCode(outcome.reason));
  all.Add(Restored(outcome.block));
  all.Add(outcome.packed);
  return all.Finish().low;
}

uint64_t ItemFingerprint(const SourceItem& item) {
  FingerprintOfAll all;
  all.Add(item.path);
  all.Add(item.address);
  all.Add(static_cast<uint64_t>(item.type));
  all.Add(item.file);
  all.Add(uint64_t{item.isXml ? 1U : 0U});
  all.Add(item.mediaType);
  return all.Finish().low;
}

uint64_t PackedFingerprint(std::string_view packed, std::string_view anchors) {
  FingerprintOfAll all;
  all.Add(FingerprintOf(packed).low);
  all.Add(FingerprintOf(anchors).low);
  return all.Finish().low;
}

bool ReadOutcome(Database& database, const KeptOutcome& kept, const SourceItem& item,
                 bool needsAnchors, ItemOutcome& outcome) {
  outcome = {.reason = kept.reason, .block = {}, .anchors = {}};
  if (kept.block == 0) return kept.reason != Reason::kNone && !needsAnchors;
  Query query(database, "SELECT bytes, anchors, anchors IS NOT NULL FROM block WHERE id = ?");
  if (!query.Bind(kept.block).Next()) return false;
  const std::string packed = query.Text(0);
  const std::string anchors = query.Text(1);
  if (PackedFingerprint(packed, anchors) != kept.packed) return false;
  if (needsAnchors && (query.Number(2) == 0 || !Unpack(anchors, kBlockLimit, outcome.anchors))) {
    return false;
  }
  if (kept.reason != Reason::kNone) return true;
  std::string bytes;
  return Unpack(packed, kBlockLimit, bytes) && ReadBlock(bytes, outcome.block) &&
         outcome.block.facts.path == item.path && outcome.block.facts.address == item.address;
}

}  // namespace vela::indexer
