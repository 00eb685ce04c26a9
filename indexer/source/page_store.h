// page_store.h: pages fetched from the web, kept in a database (SQLite) that a killed crawl goes on
// from and that the next one asks what has changed since.
//
// Each address is one row, in one of these states:
//   waiting   `settled` < `found`: a pass has found it, and not yet asked for it
//   settled   in pass `settled`, with an outcome: a page (its bytes are in `content`), a redirect,
//             or nothing to index, for a reason
// A pass is one crawl from its first addresses to its end, however often it is killed meanwhile.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/report/reason.h"
#include "indexer/source/database.h"
#include "indexer/source/file_reading.h"

namespace vela::indexer {

enum class StoredKind : uint8_t { kPage, kSitemap };

// An address that was found.
struct FoundAddress {
  std::string address;  // in the form of PageAddress, with its host
  std::string origin;   // "https://www.example.org", to which it is asked for
  StoredKind kind = StoredKind::kPage;
  uint32_t depth = 0;  // links from the first addresses
  uint32_t hops = 0;   // redirects that led to it
};

// One that is to be asked for, and what is known of its last answer.
struct WaitingAddress {
  int64_t id = 0;
  FoundAddress found;
  std::string etag;          // empty: none
  std::string lastModified;  // the field of the answer; empty: none
};

// What a server answered with.
struct PageAnswer {
  std::string bytes;
  std::string mediaType;  // in lower case; empty: none
  std::string charset;    // in lower case; empty: none
  std::string etag;
  std::string lastModified;
  int64_t modifiedTime = 0;  // seconds since 1970; 0: not known
  bool noFollow = false;     // the server asks not to follow its links
};

// A row as it is listed.
struct StoredPage {
  std::string address;
  std::string mediaType;
  Reason reason = Reason::kNone;  // kNone: a page
};

enum class StoreUse : uint8_t { kWrite, kRead };

// All functions throw IndexError when the database cannot be read or written.
class PageStore {
 public:
  // Opens the database `file`, or makes it, for its owner alone. A run that writes it must be the
  // only one. With kRead it is there already, and only List and Read may be called.
  explicit PageStore(std::filesystem::path file, StoreUse use = StoreUse::kWrite);
  ~PageStore();
  PageStore(const PageStore&) = delete;
  PageStore& operator=(const PageStore&) = delete;

  // Begins a pass, or goes on with the last one, when that was not finished and had the same rules.
  // `rules` is any text that says by what addresses are chosen. True: it goes on.
  bool BeginPass(std::string_view rules);
  // All was found and settled: what this pass did not find is removed.
  void FinishPass();
  // Addresses that this pass has settled.
  uint64_t settledCount() const { return settled_; }

  // Everything since the last Commit becomes durable, in one step.
  void Commit();

  // Notes that the pass has found the address. Its row, when it waits since now; none when the pass
  // knew it.
  std::optional<WaitingAddress> AddFound(const FoundAddress& found);
  // All that wait, in the order of depth and address.
  std::vector<WaitingAddress> Waiting();

  void SettlePage(int64_t id, const PageAnswer& answer);
  // The page is as it was. Its former answer is in `answer`; false when there is none.
  bool SettleUnchanged(int64_t id, PageAnswer& answer);
  void SettleRedirect(int64_t id);
  void SettleSitemap(int64_t id, const PageAnswer& answer);
  // There is nothing to index.
  void SettleLeftOut(int64_t id, Reason reason, const std::string& mediaType = {});

  // Pages and what was left out, in ascending byte order of their addresses.
  std::vector<StoredPage> List();
  // Reads the bytes of a page, of which there must be at most `limit`. Any number of threads may
  // call it at once.
  [[nodiscard]] Reason Read(std::string_view address, uint64_t limit, FileContent& content) const;

 private:
  enum class Outcome : uint8_t { kUnknown, kPage, kRedirect, kLeftOut, kSitemap };

  void Begin();
  void Settle(int64_t id, Outcome outcome, Reason reason, const PageAnswer& answer);
  void RemoveContent(int64_t id);

  std::filesystem::path file_;
  std::unique_ptr<Database> database_;
  int64_t pass_ = 0;
  uint64_t settled_ = 0;
  bool inTransaction_ = false;

  // Connections for Read that nobody uses now: a thread takes one and gives it back.
  mutable std::mutex mutex_;
  mutable std::vector<std::unique_ptr<Database>> readers_;
};

}  // namespace vela::indexer
