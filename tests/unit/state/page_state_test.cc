#include "indexer/state/page_state.h"

#include <gtest/gtest.h>

#include <map>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

constexpr int64_t kTime = 1000000000;

// A source whose items are in memory; counts how often each was read.
class Pages final : public Source {
 public:
  SiteListing List() override {
    SiteListing listing;
    for (const auto& [path, page] : pages) {
      listing.items.Add({.path = path, .address = "https://x.example/" + path});
    }
    return listing;
  }
  Reason Read(const SourceItem& item, FileContent& content) const override {
    ++reads[item.path];
    const auto& page = pages.at(item.path);
    content = {.bytes = page.bytes, .size = page.bytes.size(), .modifiedTime = page.time};
    return page.reason;
  }
  std::string Version(const SourceItem& item) const override { return pages.at(item.path).version; }

  struct Entry {
    std::string bytes;
    std::string version;
    int64_t time = kTime;
    Reason reason = Reason::kNone;
  };
  std::map<std::string, Entry> pages;
  mutable std::map<std::string, int> reads;
};

class PageStateTest : public testing::Test {
 protected:
  PageStateTest() {
    source_.pages["a.html"] = {"<p>a", "a1"};
    source_.pages["b.html"] = {"<p>b", "b1"};
    source_.pages["c.html"] = {"noindex", "c1"};
  }

  // What a run does, reading a block's title from the bytes. Returns the paths of the pages that it
  // had to make anew.
  std::string Run(bool fresh = false, bool needsAnchors = false) {
    source_.reads.clear();
    const SiteListing listing = source_.List();
    PageState state(File(), version_, fresh, dates_);
    state.Compare(source_, listing.items, needsAnchors);
    wasUnchanged_ = state.isUnchanged();
    std::string made;
    for (size_t i = 0; i < listing.items.size(); ++i) {
      ItemOutcome outcome;
      if (!state.Take(i, outcome)) {
        const SourceItem& item = listing.items[i];
        ItemContent content = {.version = source_.Version(item), .bytes = {}};
        FileContent file;
        outcome = ItemOutcome();
        outcome.reason = source_.Read(item, file);
        content.bytes = ContentFingerprint(file);
        content.modifiedTime = file.modifiedTime;
        if (!state.TakeEqual(i, content, outcome)) {
          made += item.path[0];
          outcome = Made(item, file);
          state.Keep(i, content, outcome);
        }
      }
      titles_[listing.items[i].path] =
          outcome.reason == Reason::kNone ? outcome.block.facts.title : "-";
      times_[listing.items[i].path] = outcome.block.facts.time;
      anchors_[listing.items[i].path] = outcome.anchors;
    }
    findings_ = state.Finish();
    return made;
  }

  ItemOutcome Made(const SourceItem& item, const FileContent& file) const {
    ItemOutcome outcome;
    if (file.bytes == "noindex") outcome.reason = Reason::kNoindex;
    if (file.bytes == "slow") outcome.reason = Reason::kMarkupTooSlow;
    if (outcome.reason != Reason::kNone) return outcome;
    PageFacts& facts = outcome.block.facts;
    facts.path = item.path;
    facts.address = item.address;
    facts.title = file.bytes;
    facts.time = ownTime_ == 0 ? file.modifiedTime : ownTime_;
    facts.ownTime = ownTime_;
    facts.fileTime = file.modifiedTime;
    outcome.block.addresses.push_back({.address = item.address, .words = {}});
    outcome.anchors = "anchors of " + item.path;
    return outcome;
  }

  std::filesystem::path File() const { return scratch_.path() / "pages.db"; }
  Database Open() const {
    return Database(File(), true, {.holds = "a test", .afterLoss = "do it again"});
  }

  support::ScratchDirectory scratch_;
  Pages source_;
  Fingerprint version_ = FingerprintOf("version");
  std::vector<DateSource> dates_ = {DateSource::kMeta, DateSource::kFile};
  int64_t ownTime_ = 0;
  bool wasUnchanged_ = false;
  std::map<std::string, std::string> titles_;
  std::map<std::string, int64_t> times_;
  std::map<std::string, std::string> anchors_;
  std::vector<Finding> findings_;
};

TEST_F(PageStateTest, WhatHasNotChangedIsNotRead) {
  EXPECT_EQ(Run(), "abc");
  EXPECT_FALSE(wasUnchanged_);
  EXPECT_EQ(Run(), "");
  EXPECT_TRUE(wasUnchanged_);
  EXPECT_TRUE(source_.reads.empty());
  EXPECT_EQ(titles_["a.html"], "<p>a");
  EXPECT_EQ(titles_["c.html"], "-");
  EXPECT_TRUE(findings_.empty());
}

TEST_F(PageStateTest, WhatHasChangedIsMadeAnew) {
  Run();
  source_.pages["b.html"] = {"<p>new", "b2"};
  source_.pages["a1.html"] = {"<p>more", "d1"};
  EXPECT_EQ(Run(), "ab");  // a1.html and b.html
  EXPECT_FALSE(wasUnchanged_);
  EXPECT_EQ(titles_["b.html"], "<p>new");
  EXPECT_EQ(source_.reads.count("a.html"), 0u);
  EXPECT_EQ(Run(), "");
  EXPECT_EQ(titles_["b.html"], "<p>new");
}

TEST_F(PageStateTest, WhatIsGoneIsForgotten) {
  Run();
  const Pages::Entry a = source_.pages["a.html"];
  source_.pages.erase("a.html");
  EXPECT_EQ(Run(), "");
  EXPECT_FALSE(wasUnchanged_);
  EXPECT_EQ(Run(), "");
  EXPECT_TRUE(wasUnchanged_);
  source_.pages["a.html"] = a;
  EXPECT_EQ(Run(), "a");
}

TEST_F(PageStateTest, TheSameBytesAreNotMadeAnew) {
  Run();
  source_.pages["a.html"].version = "a2";
  EXPECT_EQ(Run(), "");
  EXPECT_TRUE(wasUnchanged_);
  EXPECT_EQ(source_.reads["a.html"], 1);
  EXPECT_EQ(Run(), "");
  EXPECT_EQ(source_.reads.count("a.html"), 0u);  // the new version is known
}

TEST_F(PageStateTest, WithoutAVersionTheBytesAreLookedAt) {
  for (auto& [path, page] : source_.pages) page.version.clear();
  Run();
  EXPECT_EQ(Run(), "");
  EXPECT_TRUE(wasUnchanged_);
  source_.pages["b.html"].bytes = "<p>B";
  EXPECT_EQ(Run(), "b");
}

TEST_F(PageStateTest, ANewTimeIsTheDateWhereThatFollowsFromTheFile) {
  const struct {
    const char* what;
    std::vector<DateSource> dates;
    int64_t ownTime;
    const char* made;
    int64_t time;
  } cases[] = {
      {"no date of its own", {DateSource::kMeta, DateSource::kFile}, 0, "", kTime + 5},
      {"a date of its own", {DateSource::kMeta, DateSource::kFile}, 77, "", 77},
      {"files do not count", {DateSource::kMeta}, 77, "", 77},
      {"both are the same second", {DateSource::kMeta, DateSource::kFile}, kTime, "a", kTime},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    dates_ = c.dates;
    ownTime_ = c.ownTime;
    source_.pages["a.html"] = {"<p>a", "a1"};
    Run(true);
    source_.pages["a.html"].version = "a2";
    source_.pages["a.html"].time = kTime + 5;
    EXPECT_EQ(Run(), c.made);
    EXPECT_FALSE(wasUnchanged_);
    EXPECT_EQ(times_["a.html"], c.time);
    Run();
    EXPECT_TRUE(wasUnchanged_);
    EXPECT_EQ(times_["a.html"], c.time);
  }
}

TEST_F(PageStateTest, WhatMayPassIsTriedAgain) {
  source_.pages["b.html"].bytes = "slow";
  Run();
  EXPECT_EQ(Run(), "b");
  EXPECT_FALSE(wasUnchanged_);
}

TEST_F(PageStateTest, WhatCannotBeReadIsAskedForAgain) {
  source_.pages["b.html"].reason = Reason::kNoPermission;
  const SiteListing listing = source_.List();
  for (const bool expected : {false, true}) {
    PageState state(File(), version_, false, dates_);
    state.Compare(source_, listing.items, false);
    EXPECT_EQ(state.isUnchanged(), expected);
    for (size_t i = 0; i < listing.items.size(); ++i) {
      ItemOutcome outcome;
      if (state.Take(i, outcome)) continue;
      FileContent file;
      outcome = ItemOutcome();
      outcome.reason = source_.Read(listing.items[i], file);
      if (outcome.reason == Reason::kNone) outcome = Made(listing.items[i], file);
      const ItemContent content = {"v", ContentFingerprint(file), file.modifiedTime};
      state.Keep(i, outcome.reason == Reason::kNoPermission ? ItemContent() : content, outcome);
    }
    for (auto& [path, page] : source_.pages) page.version = "v";
    state.Finish();
  }
  source_.pages["b.html"].reason = Reason::kNone;
  EXPECT_EQ(Run(), "b");
}

TEST_F(PageStateTest, OtherWishesAndFreshRunsReadAll) {
  Run();
  version_ = FingerprintOf("another");
  EXPECT_EQ(Run(), "abc");
  EXPECT_EQ(Run(true), "abc");
  EXPECT_EQ(Run(), "");
}

TEST_F(PageStateTest, AnchorsAreKeptWhereTheyAreAskedFor) {
  Run();
  EXPECT_EQ(Run(false, true), "abc");
  EXPECT_EQ(anchors_["a.html"], "anchors of a.html");
  EXPECT_EQ(Run(false, true), "");
  EXPECT_EQ(anchors_["a.html"], "anchors of a.html");
  EXPECT_EQ(Run(), "");
}

TEST_F(PageStateTest, TheFileIsForItsOwnerAlone) {
  Run();
  struct stat info = {};
  ASSERT_EQ(stat(File().c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);
}

// Every row and block is what this program wrote for that page, or counts as not there.
TEST_F(PageStateTest, ChangedRowsAndBlocksCountAsNotThere) {
  const struct {
    const char* what;
    const char* sql;
    const char* made;
  } cases[] = {
      {"blocks of other pages",
       "UPDATE page SET block = (SELECT sum(block) FROM page WHERE path IN (x'612E68746D6C',"
       " x'622E68746D6C')) - block WHERE path IN (x'612E68746D6C', x'622E68746D6C')",
       "ab"},
      {"bytes of other blocks", "UPDATE block SET bytes = (SELECT bytes FROM block LIMIT 1)", "bc"},
      {"no bytes", "UPDATE block SET bytes = x''", "ab"},
      {"a text in the place of bytes", "UPDATE block SET bytes = 'text', anchors = 5", "abc"},
      {"no blocks", "DELETE FROM block", "abc"},
      {"another version", "UPDATE page SET version = 'b2' WHERE version = 'b1'", "b"},
      {"another reason", "UPDATE page SET reason = '' WHERE reason = 'noindex'", "c"},
      {"a reason that there is not", "UPDATE page SET reason = 'x' WHERE reason = 'noindex'", "c"},
      {"texts in the place of numbers", "UPDATE page SET modified = 'x', packed = 'y'", "abc"},
      {"another path", "UPDATE page SET path = 'aa.html' WHERE version = 'a1'", "a"},
      {"no table", "DROP TABLE page", "abc"},
      {"another table", "DROP TABLE block; CREATE TABLE block (x)", "abc"},
      {"another form", "UPDATE state SET value = '0 0'", "abc"},
      {"no form", "DELETE FROM state", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Run(true);
    Open().Run(c.sql);
    EXPECT_EQ(Run(), c.made);
    EXPECT_EQ(titles_["a.html"], "<p>a");
    EXPECT_EQ(titles_["b.html"], "<p>b");
    EXPECT_EQ(titles_["c.html"], "-");
    EXPECT_EQ(Run(), findings_.empty() ? "" : "abc");
  }
}

TEST_F(PageStateTest, ADamagedFileIsMadeAnew) {
  Run();
  const std::string whole = ReadFile(File());
  for (size_t i = 0; i < 60; ++i) {
    SCOPED_TRACE(i);
    std::string damaged = whole;
    if (i < 20) {
      damaged.resize(whole.size() * i / 20);
    } else {
      for (size_t k = 0; k < 40; ++k) {
        damaged[(i * 7919 + k * 104729) % damaged.size()] = static_cast<char>(i * 31 + k * 17);
      }
    }
    WriteFile(File(), damaged);
    Run();
    EXPECT_EQ(titles_["a.html"], "<p>a");
    EXPECT_EQ(titles_["b.html"], "<p>b");
    EXPECT_EQ(titles_["c.html"], "-");
  }
}

TEST_F(PageStateTest, AFileThatCannotBeUsedIsAFinding) {
  std::filesystem::create_directories(File() / "inside");
  EXPECT_EQ(Run(), "abc");
  ASSERT_EQ(findings_.size(), 1u);
  EXPECT_EQ(findings_[0].reason, Reason::kStateNotKept);
  EXPECT_NE(findings_[0].subject.find(File().string()), std::string::npos);
}

TEST_F(PageStateTest, TheIndexThatIsThereIsKnownByItsFiles) {
  const std::filesystem::path index = scratch_.path() / "index";
  WriteFile(index / "a.vdat", "a");
  WriteFile(index / "b.vdat", "b");
  const Fingerprint wishes = FingerprintOf("wishes");
  const SiteListing listing = source_.List();
  Run();
  const auto note = [&] {
    PageState state(File(), version_, false, dates_);
    state.Compare(source_, listing.items, false);
    state.NotePublished(wishes, index, {"a.vdat", "b.vdat"});
    EXPECT_TRUE(state.Finish().empty());
  };
  const auto isThere = [&](const Fingerprint& asked) {
    PageState state(File(), version_, false, dates_);
    state.Compare(source_, listing.items, false);
    const bool is = state.IsPublished(asked, index);
    state.Finish();
    return is;
  };
  EXPECT_FALSE(isThere(wishes));
  note();
  EXPECT_TRUE(isThere(wishes));
  EXPECT_FALSE(isThere(FingerprintOf("others")));
  WriteFile(index / "b.vdat", "c");
  EXPECT_FALSE(isThere(wishes));
  note();
  std::filesystem::remove(index / "a.vdat");
  EXPECT_FALSE(isThere(wishes));
  WriteFile(index / "a.vdat", "a");
  note();
  EXPECT_TRUE(isThere(wishes));
  source_.pages["b.html"] = {"<p>new", "b2"};
  EXPECT_EQ(Run(), "b");  // the pages are no longer those of the index
  EXPECT_FALSE(isThere(wishes));
}

}  // namespace
}  // namespace vela::indexer
