// database.h: what is kept from run to run, in a file of SQLite. The file is not trusted: a damaged
// one ends what is asked of it with a message, and does nothing else.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace vela::indexer {

// How messages speak of a database.
struct DatabaseWords {
  std::string_view holds;      // "the pages that were fetched"
  std::string_view afterLoss;  // what happens when it is removed: "fetch all pages anew"
};

// Makes the file when it is missing, for its owner alone: pages may have been fetched with a
// password, and whoever else uses the machine must not read them. A failure shows when it is
// opened.
void MakePrivateFile(const std::filesystem::path& file);

// Removes a database with what SQLite keeps beside it.
void RemoveDatabase(const std::filesystem::path& file);

// A connection and its statements, each prepared once, at its first use. For one thread at a time.
// Failures throw IndexError, kBusy where another process holds the file, or std::bad_alloc.
class Database {
 public:
  // `words` hold constants.
  Database(const std::filesystem::path& file, bool writes, const DatabaseWords& words);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // Runs statements without values.
  void Run(const char* sql);
  // The prepared statement of `sql`, a constant.
  sqlite3_stmt* Statement(const char* sql);
  // The row that was inserted last.
  int64_t LastRow() const;
  // Throws unless `result`, of a function of SQLite, is a success.
  void Check(int result) const;

 private:
  struct Close {
    void operator()(sqlite3* handle) const;
  };

  std::string file_;
  DatabaseWords words_;
  std::unique_ptr<sqlite3, Close> handle_;
  std::unordered_map<const char*, sqlite3_stmt*> statements_;
};

// One use of a statement: values are bound in order, rows taken one by one, and all is reset.
class Query {
 public:
  Query(Database& database, const char* sql);
  ~Query();
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  // What is bound must outlive this.
  Query& Bind(int64_t value);
  Query& Bind(std::string_view text);
  Query& BindBytes(std::string_view bytes);
  Query& BindNull();

  // False: there is no further row.
  bool Next();
  // Of the present row, by columns from 0 on.
  int64_t Number(int column) const;
  std::string Text(int column) const;
  uint64_t Size(int column) const;  // bytes

 private:
  Database& database_;
  sqlite3_stmt* statement_;
  int bound_ = 0;
};

}  // namespace vela::indexer
