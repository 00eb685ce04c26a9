#include "indexer/source/page_store.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>
#include <unordered_map>
#include <utility>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr int64_t kFormat = 1;
constexpr int kBusyMilliseconds = 10000;

constexpr char kSchema[] = R"(
CREATE TABLE IF NOT EXISTS state (name TEXT PRIMARY KEY, value) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS page (
  id INTEGER PRIMARY KEY,
  address TEXT NOT NULL UNIQUE,
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
  no_follow INTEGER NOT NULL DEFAULT 0);
CREATE INDEX IF NOT EXISTS waiting ON page (depth, address) WHERE settled < found;
CREATE TABLE IF NOT EXISTS content (id INTEGER PRIMARY KEY, bytes BLOB NOT NULL);
)";

Reason ReasonOfCode(std::string_view code) {
  for (int i = 1; i <= static_cast<int>(kLastReason); ++i) {
    if (ReasonCode(static_cast<Reason>(i)) == code) return static_cast<Reason>(i);
  }
  return Reason::kFileNotRead;  // of a newer version
}

}  // namespace

// A connection and its statements, each prepared once, at its first use.
class PageStore::Database {
 public:
  Database(const std::filesystem::path& file, bool writes) : file_(file.string()) {
    const int flags = SQLITE_OPEN_NOMUTEX |
                      (writes ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY);
    sqlite3* opened = nullptr;  // given also where opening fails, for its message
    const int result = sqlite3_open_v2(file_.c_str(), &opened, flags, nullptr);
    handle_.reset(opened);
    Check(result);
    Check(sqlite3_busy_timeout(opened, kBusyMilliseconds));
    // A file is not trusted for what its schema could make the library do.
    Check(sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr));
    Check(sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr));
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() {
    for (const auto& [sql, statement] : statements_) sqlite3_finalize(statement);
  }

  void Run(const char* sql) { Check(sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr)); }

  // The prepared statement of `sql`, a constant.
  sqlite3_stmt* Statement(const char* sql) {
    sqlite3_stmt*& statement = statements_[sql];
    if (statement == nullptr) {
      Check(sqlite3_prepare_v3(handle_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement,
                               nullptr));
    }
    return statement;
  }

  void Check(int result) const {
    if (result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE) return;
    if (result == SQLITE_NOMEM) throw std::bad_alloc();
    std::string why = handle_ == nullptr ? sqlite3_errstr(result) : sqlite3_errmsg(handle_.get());
    if (result == SQLITE_CORRUPT || result == SQLITE_NOTADB) {
      why += ". Remove the file to fetch all pages anew";
    }
    throw IndexError(
        result == SQLITE_BUSY || result == SQLITE_LOCKED ? ExitStatus::kBusy : ExitStatus::kFailed,
        "Cannot use " + file_ + ", which holds the pages that were fetched: " + why + ".");
  }

 private:
  std::string file_;
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
  };
  std::unique_ptr<sqlite3, Close> handle_;
  std::unordered_map<const char*, sqlite3_stmt*> statements_;
};

namespace {

// One use of a statement: values are bound in order, rows taken one by one, and all is reset.
template <typename Database>
class Query {
 public:
  Query(Database& database, const char* sql)
      : database_(database), statement_(database.Statement(sql)) {}
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;
  ~Query() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
  }

  // What is bound must outlive this.
  Query& Bind(int64_t value) {
    database_.Check(sqlite3_bind_int64(statement_, ++bound_, value));
    return *this;
  }
  Query& Bind(std::string_view text) {
    database_.Check(sqlite3_bind_text64(statement_, ++bound_,
                                        text.data() == nullptr ? "" : text.data(), text.size(),
                                        SQLITE_STATIC, SQLITE_UTF8));
    return *this;
  }
  Query& BindBytes(std::string_view bytes) {
    database_.Check(sqlite3_bind_blob64(statement_, ++bound_,
                                        bytes.data() == nullptr ? "" : bytes.data(), bytes.size(),
                                        SQLITE_STATIC));
    return *this;
  }

  bool Next() {
    const int result = sqlite3_step(statement_);
    database_.Check(result);
    return result == SQLITE_ROW;
  }

  int64_t Number(int column) const { return sqlite3_column_int64(statement_, column); }
  std::string Text(int column) const {
    const void* bytes = sqlite3_column_blob(statement_, column);
    const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, column));
    if (size != 0 && bytes == nullptr) throw std::bad_alloc();
    return size == 0 ? std::string() : std::string(static_cast<const char*>(bytes), size);
  }
  uint64_t Size(int column) const {
    return static_cast<uint64_t>(sqlite3_column_bytes(statement_, column));
  }

 private:
  Database& database_;
  sqlite3_stmt* statement_;
  int bound_ = 0;
};

template <typename Database>
int64_t StateNumber(Database& database, std::string_view name) {
  Query query(database, "SELECT value FROM state WHERE name = ?");
  return query.Bind(name).Next() ? query.Number(0) : 0;
}

template <typename Database>
void SetState(Database& database, std::string_view name, int64_t value) {
  Query query(database, "INSERT OR REPLACE INTO state VALUES (?, ?)");
  query.Bind(name).Bind(value).Next();
}

// The columns of a WaitingAddress, in this order.
#define VELA_WAITING_COLUMNS "id, address, origin, kind, depth, hops, etag, last_modified"

template <typename Row>
WaitingAddress WaitingOf(const Row& row) {
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

PageStore::PageStore(std::filesystem::path file) : file_(std::move(file)) {
  // Pages may have been fetched with a password: whoever else uses the machine must not read them.
  const int made =
      open(file_.c_str(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
  if (made >= 0) close(made);
  database_ = std::make_unique<Database>(file_, true);
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
  // A page that turns out to be a sitemap as well, or the other way, stays what it was found as.
  Query query(*database_,
              "INSERT INTO page (address, origin, kind, depth, hops, found)"
              " VALUES (?, ?, ?, ?, ?, ?)"
              " ON CONFLICT (address) DO UPDATE SET origin = excluded.origin, kind = excluded.kind,"
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
    const bool isPage = query.Number(2) == static_cast<int64_t>(Outcome::kPage);
    pages.push_back({.address = query.Text(0),
                     .mediaType = query.Text(1),
                     .reason = isPage ? Reason::kNone : ReasonOfCode(query.Text(3))});
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
    if (reader == nullptr) reader = std::make_unique<Database>(file_, false);
    Query query(*reader,
                "SELECT bytes, modified, charset FROM page JOIN content USING (id)"
                " WHERE address = ?");
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
