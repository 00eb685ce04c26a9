#include "indexer/source/database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr int kBusyMilliseconds = 10000;

// SQLite takes a null pointer for NULL, not for an empty value.
const char* BytesOf(std::string_view bytes) { return bytes.data() == nullptr ? "" : bytes.data(); }

}  // namespace

void MakePrivateFile(const std::filesystem::path& file) {
  const int made = open(file.c_str(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
  if (made >= 0) close(made);
}

void RemoveDatabase(const std::filesystem::path& file) {
  std::error_code ignored;
  for (const char* suffix : {"", "-wal", "-shm"}) {
    std::filesystem::remove(file.string() + suffix, ignored);
  }
}

void Database::Close::operator()(sqlite3* handle) const { sqlite3_close(handle); }

Database::Database(const std::filesystem::path& file, bool writes, const DatabaseWords& words)
    : file_(file.string()), words_(words) {
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

Database::~Database() {
  for (const auto& [sql, statement] : statements_) sqlite3_finalize(statement);
}

void Database::Run(const char* sql) {
  Check(sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr));
}

sqlite3_stmt* Database::Statement(const char* sql) {
  sqlite3_stmt*& statement = statements_[sql];
  if (statement == nullptr) {
    Check(
        sqlite3_prepare_v3(handle_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
  }
  return statement;
}

int64_t Database::LastRow() const { return sqlite3_last_insert_rowid(handle_.get()); }

void Database::Check(int result) const {
  if (result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE) return;
  if (result == SQLITE_NOMEM) throw std::bad_alloc();
  std::string why = handle_ == nullptr ? sqlite3_errstr(result) : sqlite3_errmsg(handle_.get());
  if (result == SQLITE_CORRUPT || result == SQLITE_NOTADB) {
    why.append(". Remove the file to ").append(words_.afterLoss);
  }
  throw IndexError(
      result == SQLITE_BUSY || result == SQLITE_LOCKED ? ExitStatus::kBusy : ExitStatus::kFailed,
      "Cannot use " + file_ + ", which holds " + std::string(words_.holds) + ": " + why + ".");
}

Query::Query(Database& database, const char* sql)
    : database_(database), statement_(database.Statement(sql)) {}

Query::~Query() {
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

Query& Query::Bind(int64_t value) {
  database_.Check(sqlite3_bind_int64(statement_, ++bound_, value));
  return *this;
}

Query& Query::Bind(std::string_view text) {
  database_.Check(sqlite3_bind_text64(statement_, ++bound_, BytesOf(text), text.size(),
                                      SQLITE_STATIC, SQLITE_UTF8));
  return *this;
}

Query& Query::BindBytes(std::string_view bytes) {
  database_.Check(
      sqlite3_bind_blob64(statement_, ++bound_, BytesOf(bytes), bytes.size(), SQLITE_STATIC));
  return *this;
}

Query& Query::BindNull() {
  database_.Check(sqlite3_bind_null(statement_, ++bound_));
  return *this;
}

bool Query::Next() {
  const int result = sqlite3_step(statement_);
  database_.Check(result);
  return result == SQLITE_ROW;
}

int64_t Query::Number(int column) const { return sqlite3_column_int64(statement_, column); }

std::string Query::Text(int column) const {
  const void* bytes = sqlite3_column_blob(statement_, column);
  const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, column));
  if (size != 0 && bytes == nullptr) throw std::bad_alloc();
  return size == 0 ? std::string() : std::string(static_cast<const char*>(bytes), size);
}

uint64_t Query::Size(int column) const {
  return static_cast<uint64_t>(sqlite3_column_bytes(statement_, column));
}

}  // namespace vela::indexer
