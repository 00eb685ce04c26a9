#include "indexer/source/page_store.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <thread>

#include "indexer/report/index_error.h"
#include "indexer/source/store_source.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

FoundAddress Found(const std::string& path, uint32_t depth = 0) {
  return {.address = "https://x.example" + path, .origin = "https://x.example", .depth = depth};
}

PageAnswer Html(const std::string& bytes) {
  PageAnswer answer;
  answer.bytes = bytes;
  answer.mediaType = "text/html";
  answer.charset = "utf-8";
  answer.etag = "\"1\"";
  answer.modifiedTime = 7;
  return answer;
}

struct PageStoreTest : testing::Test {
  TestSite site;
  fs::path file = site.scratch.path() / "pages.db";
};

TEST_F(PageStoreTest, KeepsPagesInTheOrderOfTheirAddresses) {
  PageStore store(file);
  store.BeginPass("rules");
  for (const char* path : {"/b", "/a/", "/B", "/\xC3\xBC", "/a"}) {
    store.SettlePage(store.AddFound(Found(path))->id, Html(path));
  }
  store.FinishPass();
  std::vector<std::string> addresses;
  for (const StoredPage& page : store.List()) addresses.push_back(page.address);
  EXPECT_EQ(addresses, (std::vector<std::string>{"https://x.example/B", "https://x.example/a",
                                                 "https://x.example/a/", "https://x.example/b",
                                                 "https://x.example/\xC3\xBC"}));
  FileContent content;
  EXPECT_EQ(store.Read("https://x.example/a/", 10, content), Reason::kNone);
  EXPECT_EQ(content.bytes, "/a/");
  EXPECT_EQ(content.size, 3u);
  EXPECT_EQ(content.modifiedTime, 7);
  EXPECT_EQ(content.charset, "utf-8");
  EXPECT_EQ(store.Read("https://x.example/a/", 2, content), Reason::kFileTooLarge);
  EXPECT_EQ(store.Read("https://x.example/c", 10, content), Reason::kFileNotFound);
}

TEST_F(PageStoreTest, GoesOnWhereAKilledRunStopped) {
  {
    PageStore store(file);
    EXPECT_FALSE(store.BeginPass("rules"));
    store.SettlePage(store.AddFound(Found("/a"))->id, Html("a"));
    store.AddFound(Found("/c", 1));
    store.AddFound(Found("/b", 1));
    store.Commit();
    store.SettlePage(store.AddFound(Found("/lost"))->id, Html("lost"));
  }
  PageStore store(file);
  EXPECT_TRUE(store.BeginPass("rules"));
  EXPECT_EQ(store.settledCount(), 1u);
  const std::vector<WaitingAddress> waiting = store.Waiting();
  ASSERT_EQ(waiting.size(), 2u);
  EXPECT_EQ(waiting[0].found.address, "https://x.example/b");
  EXPECT_EQ(waiting[0].found.depth, 1u);
  EXPECT_FALSE(store.AddFound(Found("/a")).has_value());
  EXPECT_FALSE(store.AddFound(Found("/b")).has_value());
  EXPECT_TRUE(store.AddFound(Found("/lost")).has_value());
}

TEST_F(PageStoreTest, OtherRulesBeginAnew) {
  PageStore store(file);
  store.BeginPass("rules");
  store.SettlePage(store.AddFound(Found("/a"))->id, Html("a"));
  store.AddFound(Found("/b"));
  EXPECT_FALSE(store.BeginPass("other rules"));
  EXPECT_TRUE(store.Waiting().empty());
  const std::optional<WaitingAddress> again = store.AddFound(Found("/a"));
  ASSERT_TRUE(again.has_value());
  EXPECT_EQ(again->etag, "\"1\"");
}

TEST_F(PageStoreTest, ASecondPassKeepsWhatItFindsUnchanged) {
  PageStore store(file);
  store.BeginPass("rules");
  for (const char* path : {"/same", "/new", "/gone", "/moved", "/unlinked"}) {
    store.SettlePage(store.AddFound(Found(path))->id, Html(path));
  }
  store.FinishPass();
  EXPECT_FALSE(store.BeginPass("rules"));
  PageAnswer former;
  EXPECT_TRUE(store.SettleUnchanged(store.AddFound(Found("/same"))->id, former));
  EXPECT_EQ(former.bytes, "/same");
  EXPECT_EQ(former.mediaType, "text/html");
  store.SettlePage(store.AddFound(Found("/new"))->id, Html("changed"));
  store.SettleLeftOut(store.AddFound(Found("/gone"))->id, Reason::kPageGone);
  store.SettleRedirect(store.AddFound(Found("/moved"))->id);
  EXPECT_FALSE(store.SettleUnchanged(store.AddFound(Found("/never"))->id, former));
  store.FinishPass();
  StoreSource source(std::make_unique<PageStore>(file), file,
                     {.endings = DefaultFileEndings(), .pageLimit = 100});
  const SiteListing listing = source.List();
  ASSERT_EQ(listing.items.size(), 2u);
  EXPECT_EQ(listing.items[0].address, "https://x.example/new");
  EXPECT_EQ(listing.items[0].mediaType, "text/html");
  EXPECT_EQ(listing.items[1].address, "https://x.example/same");
  EXPECT_EQ(listing.leftOut.total, 1u);
  EXPECT_TRUE(listing.leftOut.groups.contains({"", Reason::kPageGone}));
  FileContent content;
  EXPECT_EQ(source.Read(listing.items[0], content), Reason::kNone);
  EXPECT_EQ(content.bytes, "changed");
}

TEST_F(PageStoreTest, AnAddressMayBeAPageAndASitemap) {
  PageStore store(file);
  store.BeginPass("rules");
  FoundAddress sitemap = Found("/");
  sitemap.kind = StoredKind::kSitemap;
  const std::optional<WaitingAddress> asSitemap = store.AddFound(sitemap);
  const std::optional<WaitingAddress> asPage = store.AddFound(Found("/"));
  ASSERT_TRUE(asSitemap.has_value());
  ASSERT_TRUE(asPage.has_value());
  store.SettlePage(asPage->id, Html("home"));
  store.SettleSitemap(asSitemap->id, Html("<urlset>"));
  store.FinishPass();
  ASSERT_EQ(store.List().size(), 1u);
  FileContent content;
  EXPECT_EQ(store.Read("https://x.example/", 10, content), Reason::kNone);
  EXPECT_EQ(content.bytes, "home");
}

TEST_F(PageStoreTest, TakesOverWhatWasKeptInTheFormerForm) {
  {
    PageStore store(file);
    store.BeginPass("rules");
    store.SettlePage(store.AddFound(Found("/a"))->id, Html("a"));
    store.FinishPass();
  }
  sqlite3* handle = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &handle), SQLITE_OK);
  // The table as it was: an address once.
  EXPECT_EQ(sqlite3_exec(handle,
                         "DROP INDEX waiting; ALTER TABLE page RENAME TO now;"
                         "CREATE TABLE page (id INTEGER PRIMARY KEY, address TEXT NOT NULL UNIQUE,"
                         " origin TEXT NOT NULL, kind INTEGER NOT NULL, depth INTEGER NOT NULL,"
                         " hops INTEGER NOT NULL, found INTEGER NOT NULL,"
                         " settled INTEGER NOT NULL DEFAULT 0, outcome INTEGER NOT NULL DEFAULT 0,"
                         " reason TEXT NOT NULL DEFAULT '', media_type TEXT NOT NULL DEFAULT '',"
                         " charset TEXT NOT NULL DEFAULT '', etag TEXT NOT NULL DEFAULT '',"
                         " last_modified TEXT NOT NULL DEFAULT '',"
                         " modified INTEGER NOT NULL DEFAULT 0,"
                         " no_follow INTEGER NOT NULL DEFAULT 0);"
                         "CREATE INDEX waiting ON page (depth, address) WHERE settled < found;"
                         "INSERT INTO page SELECT * FROM now; DROP TABLE now;"
                         "UPDATE state SET value = 1 WHERE name = 'format'",
                         nullptr, nullptr, nullptr),
            SQLITE_OK)
      << sqlite3_errmsg(handle);
  sqlite3_close(handle);
  for (int run = 0; run < 2; ++run) {
    PageStore store(file);
    ASSERT_EQ(store.List().size(), 1u);
    FileContent content;
    EXPECT_EQ(store.Read("https://x.example/a", 10, content), Reason::kNone);
    EXPECT_EQ(content.bytes, "a");
    store.BeginPass("rules");
    EXPECT_EQ(store.AddFound(Found("/a"))->etag, "\"1\"");
    PageAnswer answer;
    EXPECT_TRUE(store.SettleUnchanged(1, answer));
    store.FinishPass();
  }
}

TEST_F(PageStoreTest, IsReadByManyThreads) {
  PageStore store(file);
  store.BeginPass("rules");
  for (int i = 0; i < 50; ++i) {
    const std::string path = "/" + std::to_string(i);
    store.SettlePage(store.AddFound(Found(path))->id, Html(path));
  }
  store.Commit();
  std::vector<std::thread> threads;
  std::vector<int> good(4);
  for (int& count : good) {
    threads.emplace_back([&store, &count] {
      for (int i = 0; i < 50; ++i) {
        FileContent content;
        const std::string path = "/" + std::to_string(i);
        if (store.Read("https://x.example" + path, 10, content) == Reason::kNone &&
            content.bytes == path) {
          ++count;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, (std::vector<int>{50, 50, 50, 50}));
}

TEST_F(PageStoreTest, IsForItsOwnerAlone) {
  const PageStore store(file);
  struct stat info = {};
  ASSERT_EQ(stat(file.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(PageStoreTest, SaysWhenTheFileIsNone) {
  WriteFile(file, std::string(5000, 'x'));
  try {
    const PageStore store(file);
    FAIL();
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kFailed);
    EXPECT_NE(std::string(error.what()).find("Remove the file"), std::string::npos);
  }
  EXPECT_THROW(PageStore(site.scratch.path() / "no/such/folder.db"), IndexError);
}

TEST_F(PageStoreTest, ATemporaryStoreGoesWithItsSource) {
  {
    const StoreSource source(std::make_unique<PageStore>(file), file,
                             {.endings = DefaultFileEndings(), .isTemporary = true});
    EXPECT_TRUE(fs::exists(file));
  }
  EXPECT_FALSE(fs::exists(file));
}

}  // namespace
}  // namespace vela::indexer
