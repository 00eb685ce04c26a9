#include "indexer/source/page_store.h"

#include <utility>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr int64_t kFormat = 2;
constexpr DatabaseWords kWords = {.holds = "the pages that were fetched",
                                  .afterLoss = "fetch all pages anew"};

constexpr char kSchema[] = R"(
CREATE TABLE IF NOT EXISTS state (name TEXT PRIMARY KEY, value) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS page (
  id INTEGER PRIMARY KEY,
  address TEXT NOT NULL,
  origin TEXT NOT NULL,
  kind INTEGER NOT NULL,
  depth INTEGER NOT NULL,
  hops INTEGER NOT NULL,
  found INTEGER NOT NULL,
  settled INTEGER NOT NULL DEFAULT 0,
  outcome INTEGER NOT NULL DEFAULT 0,
  reason TEXT NOT NULL DEFAULT '',
  media_type TEXT NOT NULL DEFAULT '',
  charset TEXT NOT NULL DEFAULT '',
  etag TEXT NOT NULL DEFAULT '',
  last_modified TEXT NOT NULL DEFAULT '',
  modified INTEGER NOT NULL DEFAULT 0,
  no_follow INTEGER NOT NULL DEFAULT 0,
  UNIQUE (address, kind));
CREATE INDEX IF NOT EXISTS waiting ON page (depth, address) WHERE settled < found;
CREATE TABLE IF NOT EXISTS content (id INTEGER PRIMARY KEY, bytes BLOB NOT NULL);
)";

// In form 1 an address was a page or a sitemap and not both.
constexpr char kFromForm1[] = "ALTER TABLE page RENAME TO former_page; DROP INDEX waiting;";
constexpr char kTakeFormer[] =
    "INSERT INTO page SELECT * FROM former_page; DROP TABLE former_page;";

int64_t StateNumber(Database& database, std::string_view name) {
  Query query(database, "SELECT value FROM state WHERE name = ?");
  return query.Bind(name).Next() ? query.Number(0) : 0;
}

void SetState(Database& database, std::string_view name, int64_t value) {
  Query query(database, "INSERT OR REPLACE INTO state VALUES (?, ?)");
  query.Bind(name).Bind(value).Next();
}

// The columns of a WaitingAddress, in this order.
#define VELA_WAITING_COLUMNS "id, address, origin, kind, depth, hops, etag, last_modified"

WaitingAddress WaitingOf(const Query& row) {
  return {.id = row.Number(0),
          .found = {.address = row.Text(1),
                    .origin = row.Text(2),
                    .kind = row.Number(3) == 0 ? StoredKind::kPage : StoredKind::kSitemap,
                    .depth = static_cast<uint32_t>(row.Number(4)),
                    .hops = static_cast<uint32_t>(row.Number(5))},
          .etag = row.Text(6),
          .lastModified = row.Text(7)};
}

}  // namespace

PageStore::PageStore(std::filesystem::path file, StoreUse use) : file_(std::move(file)) {
  if (use == StoreUse::kRead) {
    database_ = std::make_unique<Database>(file_, false, kWords);
    return;
  }
  MakePrivateFile(file_);
  database_ = std::make_unique<Database>(file_, true, kWords);
  database_->Run("PRAGMA journal_mode = WAL");
  database_->Run("PRAGMA synchronous = FULL");
  database_->Run(kSchema);
  const int64_t format = StateNumber(*database_, "format");
  if (format > kFormat) {
    throw IndexError(ExitStatus::kFailed,
                     file_.string() +
                         " was written by a newer version of this program. Remove it "
                         "to fetch all pages anew.");
  }
  Begin();
  if (format == 1) {
    database_->Run(kFromForm1);
    database_->Run(kSchema);
    database_->Run(kTakeFormer);
  }
  SetState(*database_, "format", kFormat);
  Commit();
}

PageStore::~PageStore() = default;

void PageStore::Begin() {
  if (inTransaction_) return;
  database_->Run("BEGIN IMMEDIATE");
  inTransaction_ = true;
}

void PageStore::Commit() {
  if (!inTransaction_) return;
  database_->Run("COMMIT");
  inTransaction_ = false;
}

bool PageStore::BeginPass(std::string_view rules) {
  Begin();
  pass_ = StateNumber(*database_, "pass");
  const bool isOpen = pass_ != 0 && StateNumber(*database_, "finished") < pass_;
  bool goesOn = false;
  {
    Query query(*database_, "SELECT value FROM state WHERE name = 'rules'");
    goesOn = isOpen && query.Next() && query.Text(0) == rules;
  }
  if (!goesOn) {
    SetState(*database_, "pass", ++pass_);
    Query(*database_, "INSERT OR REPLACE INTO state VALUES ('rules', ?)").Bind(rules).Next();
    // What an earlier pass found and never asked for is not found by this one yet.
    Query(*database_, "UPDATE page SET found = settled WHERE settled < found").Next();
  }
  Commit();
  Query query(*database_, "SELECT count(*) FROM page WHERE settled = ?");
  query.Bind(pass_).Next();
  settled_ = static_cast<uint64_t>(query.Number(0));
  return goesOn;
}

void PageStore::FinishPass() {
  Begin();
  Query(*database_, "DELETE FROM content WHERE id IN (SELECT id FROM page WHERE settled < ?)")
      .Bind(pass_)
      .Next();
  Query(*database_, "DELETE FROM page WHERE settled < ?").Bind(pass_).Next();
  SetState(*database_, "finished", pass_);
  Commit();
}

std::optional<WaitingAddress> PageStore::AddFound(const FoundAddress& found) {
  Begin();
  // What is a page and a sitemap as well is asked for as each: a server may send whoever asks for
  // anything to its first page.
  Query query(*database_,
              "INSERT INTO page (address, origin, kind, depth, hops, found)"
              " VALUES (?, ?, ?, ?, ?, ?)"
              " ON CONFLICT (address, kind) DO UPDATE SET origin = excluded.origin,"
              " depth = excluded.depth, hops = excluded.hops, found = excluded.found"
              " WHERE page.found < excluded.found"
              " RETURNING " VELA_WAITING_COLUMNS);
  query.Bind(found.address).Bind(found.origin).Bind(static_cast<int64_t>(found.kind));
  query.Bind(int64_t{found.depth}).Bind(int64_t{found.hops}).Bind(pass_);
  if (!query.Next()) return {};
  WaitingAddress waiting = WaitingOf(query);
  while (query.Next()) {
    // To its end, so that the row is written.
  }
  return waiting;
}

std::vector<WaitingAddress> PageStore::Waiting() {
  std::vector<WaitingAddress> waiting;
  Query query(*database_, "SELECT " VELA_WAITING_COLUMNS
                          " FROM page WHERE settled < found ORDER BY depth, address");
  while (query.Next()) waiting.push_back(WaitingOf(query));
  return waiting;
}

void PageStore::Settle(int64_t id, Outcome outcome, Reason reason, const PageAnswer& answer) {
  Begin();
  Query query(*database_,
              "UPDATE page SET settled = ?, outcome = ?, reason = ?, media_type = ?, charset = ?,"
              " etag = ?, last_modified = ?, modified = ?, no_follow = ? WHERE id = ?");
  query.Bind(pass_).Bind(static_cast<int64_t>(outcome)).Bind(ReasonCode(reason));
  query.Bind(answer.mediaType).Bind(answer.charset).Bind(answer.etag).Bind(answer.lastModified);
  query.Bind(answer.modifiedTime).Bind(int64_t{answer.noFollow ? 1 : 0}).Bind(id);
  query.Next();
  ++settled_;
}

void PageStore::RemoveContent(int64_t id) {
  Begin();
  Query(*database_, "DELETE FROM content WHERE id = ?").Bind(id).Next();
}

void PageStore::SettlePage(int64_t id, const PageAnswer& answer) {
  Settle(id, Outcome::kPage, Reason::kNone, answer);
  Query(*database_, "INSERT OR REPLACE INTO content VALUES (?, ?)")
      .Bind(id)
      .BindBytes(answer.bytes)
      .Next();
}

bool PageStore::SettleUnchanged(int64_t id, PageAnswer& answer) {
  answer = PageAnswer();
  Begin();
  {
    Query query(*database_,
                "SELECT media_type, charset, etag, last_modified, modified, no_follow, bytes"
                " FROM page JOIN content USING (id) WHERE id = ?");
    if (!query.Bind(id).Next()) return false;
    answer = {.bytes = query.Text(6),
              .mediaType = query.Text(0),
              .charset = query.Text(1),
              .etag = query.Text(2),
              .lastModified = query.Text(3),
              .modifiedTime = query.Number(4),
              .noFollow = query.Number(5) != 0};
  }
  Query(*database_, "UPDATE page SET settled = ? WHERE id = ?").Bind(pass_).Bind(id).Next();
  ++settled_;
  return true;
}

void PageStore::SettleRedirect(int64_t id) {
  Settle(id, Outcome::kRedirect, Reason::kNone, {});
  RemoveContent(id);
}

void PageStore::SettleSitemap(int64_t id, const PageAnswer& answer) {
  Settle(id, Outcome::kSitemap, Reason::kNone, answer);
  Query(*database_, "INSERT OR REPLACE INTO content VALUES (?, ?)")
      .Bind(id)
      .BindBytes(answer.bytes)
      .Next();
}

void PageStore::SettleLeftOut(int64_t id, Reason reason, const std::string& mediaType) {
  PageAnswer answer;
  answer.mediaType = mediaType;
  Settle(id, Outcome::kLeftOut, reason, answer);
  RemoveContent(id);
}

std::vector<StoredPage> PageStore::List() {
  Commit();
  std::vector<StoredPage> pages;
  // The order of SQLite's own comparison of texts is that of their bytes.
  Query query(*database_,
              "SELECT address, media_type, outcome, reason FROM page"
              " WHERE kind = 0 AND outcome IN (?, ?) ORDER BY address");
  query.Bind(static_cast<int64_t>(Outcome::kPage)).Bind(static_cast<int64_t>(Outcome::kLeftOut));
  while (query.Next()) {
    // A newer version may have left it out for a reason of its own.
    const bool isPage = query.Number(2) == static_cast<int64_t>(Outcome::kPage);
    pages.push_back({.address = query.Text(0),
                     .mediaType = query.Text(1),
                     .reason = isPage
                                   ? Reason::kNone
                                   : ReasonOfCode(query.Text(3)).value_or(Reason::kFileNotRead)});
  }
  return pages;
}

Reason PageStore::Read(std::string_view address, uint64_t limit, FileContent& content) const {
  content = FileContent();
  std::unique_ptr<Database> reader;
  {
    const std::scoped_lock lock(mutex_);
    if (!readers_.empty()) {
      reader = std::move(readers_.back());
      readers_.pop_back();
    }
  }
  Reason reason = Reason::kNone;
  try {
    if (reader == nullptr) reader = std::make_unique<Database>(file_, false, kWords);
    Query query(*reader,
                "SELECT bytes, modified, charset FROM page JOIN content USING (id)"
                " WHERE address = ? AND kind = 0");
    if (!query.Bind(address).Next()) {
      reason = Reason::kFileNotFound;
    } else if (query.Size(0) > limit) {
      reason = Reason::kFileTooLarge;
    } else {
      content = {.bytes = query.Text(0),
                 .size = query.Size(0),
                 .modifiedTime = query.Number(1),
                 .charset = query.Text(2)};
    }
  } catch (const IndexError&) {
    return Reason::kReadError;
  }
  const std::scoped_lock lock(mutex_);
  readers_.push_back(std::move(reader));
  return reason;
}

}  // namespace vela::indexer
