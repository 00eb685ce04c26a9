// Runs that keep what they made of the pages: their index is that of a run from nothing, whatever
// has become of the site, the wishes and the state since the run before.
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <map>

#include "indexer/build_index.h"
#include "indexer/report/index_error.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

using Files = std::map<std::string, std::string>;

Files FilesOf(const fs::path& folder) {
  Files files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) {
      files[entry.path().lexically_relative(folder).string()] = ReadFile(entry.path());
    }
  }
  return files;
}

struct KeptSite : TestSite {
  KeptSite() {
    options.state = (scratch.path() / "state").string();
    const std::string same = "<title>Same</title><p>" + std::string(300, 'x') + " the same words";
    Add("index.html", "<title>Home</title><a href=b.html>the beta page</a> <a href=sub/>sub</a>");
    Add("b.html", "<html lang=en><title>Beta</title><meta name=author content=Ann><h2 id=x>X</h2>");
    Add("sub/index.html",
        "<title>Sub</title><p>Ünïcode words (and signs) <a href=../no.html>no</a>");
    Add("sub/c.html", "<title>C</title><link rel=canonical href=../b.html><p>a copy");
    Add("sub/d.html", same);
    Add("sub/e.html", same, 1000000500);
    Add("hidden.html", "<meta name=robots content=noindex><title>H</title>h");
    Add("empty.html", "");
    Add("plain.txt", "A plain text\n\nwith words of its own.");
    options.config.trustsFileDates = false;
  }
  fs::path State() const { return fs::path(options.state) / "vela_pages.db"; }
  IndexSummary BuildFromNothing(const fs::path& out) const {
    Options other = options;
    other.state.clear();
    other.out = out.string();
    Progress progress(false);
    const volatile std::sig_atomic_t stop = 0;
    return BuildIndex(other, progress, stop);
  }
  // Builds, and compares the index with that of a run from nothing.
  IndexSummary BuildAndCompare() const {
    IndexSummary summary = Build();
    const support::ScratchDirectory other;
    const IndexSummary expected = BuildFromNothing(other.path() / "index");
    EXPECT_EQ(FilesOf(index), FilesOf(other.path() / "index"));
    if (!summary.isUnchanged) {
      EXPECT_EQ(summary.pages, expected.pages);
      EXPECT_EQ(summary.files.total, expected.files.total);
      EXPECT_EQ(summary.links.found.size(), expected.links.found.size());
      EXPECT_EQ(summary.links.checked, expected.links.checked);
    }
    return summary;
  }
};

TEST(Incremental, AnUnchangedSiteLeavesTheIndexAlone) {
  KeptSite site;
  const IndexSummary first = site.BuildAndCompare();
  EXPECT_FALSE(first.isUnchanged);
  EXPECT_EQ(first.keptPages, 0u);
  struct stat before = {};
  struct stat after = {};
  ASSERT_EQ(stat((site.index / "settings.vdat").c_str(), &before), 0);
  const IndexSummary second = site.BuildAndCompare();
  EXPECT_TRUE(second.isUnchanged);
  EXPECT_EQ(second.pages, first.pages);
  EXPECT_EQ(SummaryText(second, "x", 0.26),
            "Nothing has changed: the index with 5 pages stays in x (0.3 seconds).\n");
  ASSERT_EQ(stat((site.index / "settings.vdat").c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST(Incremental, EveryChangeOfTheSiteGivesTheIndexOfARunFromNothing) {
  const struct {
    const char* what;
    std::function<void(KeptSite&)> change;
    uint64_t read;  // items that are made anew
  } cases[] = {
      {"a page more", [](KeptSite& s) { s.Add("a.html", "<title>A</title>first"); }, 1},
      {"the last page", [](KeptSite& s) { s.Add("z.html", "<title>Z</title>last"); }, 1},
      {"a page less", [](KeptSite& s) { fs::remove(s.folder / "b.html"); }, 0},
      {"another text", [](KeptSite& s) { s.Add("b.html", "<title>Beta</title>other"); }, 1},
      {"as long a text", [](KeptSite& s) { s.Add("plain.txt", "A plain text\n\nwith"); }, 1},
      {"another name", [](KeptSite& s) { fs::rename(s.folder / "b.html", s.folder / "b2.html"); },
       1},
      {"names exchanged",
       [](KeptSite& s) {
         fs::rename(s.folder / "b.html", s.folder / "x");
         fs::rename(s.folder / "index.html", s.folder / "b.html");
         fs::rename(s.folder / "x", s.folder / "index.html");
       },
       2},
      {"another folder", [](KeptSite& s) { fs::rename(s.folder / "sub", s.folder / "sup"); }, 4},
      {"another time", [](KeptSite& s) { SetTime(s.folder / "b.html", 1100000000); }, 0},
      {"other times for all",
       [](KeptSite& s) {
         int64_t time = 1100000000;
         for (const auto& entry : fs::recursive_directory_iterator(s.folder)) {
           if (entry.is_regular_file()) SetTime(entry.path(), time += 100000);
         }
       },
       0},
      {"a page that is shown again", [](KeptSite& s) { s.Add("hidden.html", "<title>H</title>h"); },
       1},
      {"a page that is hidden",
       [](KeptSite& s) { s.Add("b.html", "<meta name=robots content=noindex>"); }, 1},
      {"no copy any more", [](KeptSite& s) { s.Add("sub/c.html", "<title>C</title><p>a copy"); },
       1},
      {"the original of equal pages goes", [](KeptSite& s) { fs::remove(s.folder / "sub/d.html"); },
       0},
      {"another type", [](KeptSite& s) { fs::rename(s.folder / "b.html", s.folder / "b.txt"); }, 1},
      {"a link in the place of a page",
       [](KeptSite& s) {
         fs::remove(s.folder / "b.html");
         fs::create_symlink(s.folder / "plain.txt", s.folder / "b.html");
       },
       0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KeptSite site;
    site.Build();
    c.change(site);
    const size_t items = 9;
    const IndexSummary changed = site.BuildAndCompare();
    EXPECT_FALSE(changed.isUnchanged);
    EXPECT_GE(changed.keptPages + c.read + 1, items);
    EXPECT_LE(changed.keptPages + c.read, items + 1);
    EXPECT_TRUE(site.BuildAndCompare().isUnchanged);
  }
}

TEST(Incremental, EveryChangeOfTheWishesGivesTheIndexOfARunFromNothing) {
  const struct {
    const char* what;
    std::function<void(Options&)> change;
    bool keeps;  // what was made of the pages
  } cases[] = {
      {"charset", [](Options& o) { o.config.charset = "iso-8859-1"; }, false},
      {"stemming", [](Options& o) { o.config.stemming = 0; }, false},
      {"stemming by the pages", [](Options& o) { o.config.stemming = kStemmingByPages; }, false},
      {"no extensions", [](Options& o) { o.config.extensions = false; }, false},
      {"no link texts", [](Options& o) { o.config.linkTexts = false; }, false},
      {"no dates of files", [](Options& o) { o.config.dates = {DateSource::kMeta}; }, false},
      {"a field",
       [](Options& o) {
         o.config.fields = {{"by", "author", "By", kMetaText, 0, {}}};
       },
       false},
      {"no suggestions", [](Options& o) { o.config.suggestions = false; }, false},
      {"sections as pages", [](Options& o) { o.config.content.sectionWords = 10; }, false},
      {"another address", [](Options& o) { o.baseUrl = "https://y.example/"; }, false},
      {"smaller pages", [](Options& o) { o.maxFileMegabytes = 1; }, false},
      {"fresh", [](Options& o) { o.fresh = true; }, false},
      {"a category",
       [](Options& o) {
         o.config.categories = {{"Sub", {"sub/*"}}};
       },
       true},
      {"a boost",
       [](Options& o) {
         o.config.boosts = {{{"b.html"}, 20, ""}};
       },
       true},
      {"synonyms",
       [](Options& o) {
         o.config.synonyms = {{{"beta", "second"}}};
       },
       true},
      {"no spelling", [](Options& o) { o.config.spelling = false; }, true},
      {"files trusted", [](Options& o) { o.config.trustsFileDates = true; }, true},
      {"another language", [](Options& o) { o.language = "german"; }, true},
      {"another template", [](Options& o) { o.templateName = "minimal"; }, true},
      {"fewer pages", [](Options& o) { o.exclude = {"sub"}; }, true},
      {"two threads", [](Options& o) { o.jobs = 2; }, true},
      {"five threads", [](Options& o) { o.jobs = 5; }, true},
      {"links are checked", [](Options& o) { o.checkLinks = "tell"; }, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KeptSite site;
    site.options.jobs = 1;
    site.Build();
    c.change(site.options);
    // Something else changes as well, so that the run has something to do.
    site.Add("new.html", "<title>New</title>new");
    const IndexSummary changed = site.BuildAndCompare();
    EXPECT_FALSE(changed.isUnchanged);
    EXPECT_EQ(changed.keptPages != 0, c.keeps);
    site.options.fresh = false;
    site.BuildAndCompare();
  }
}

TEST(Incremental, WishesForTheIndexAloneAreNoticed) {
  KeptSite site;
  site.Build();
  site.options.config.boosts = {{{"b.html"}, 20, ""}};
  const IndexSummary changed = site.BuildAndCompare();
  EXPECT_FALSE(changed.isUnchanged);
  EXPECT_EQ(changed.keptPages, 9u);
  EXPECT_TRUE(site.BuildAndCompare().isUnchanged);
  site.options.language = "german";
  EXPECT_FALSE(site.BuildAndCompare().isUnchanged);
}

TEST(Incremental, AnIndexThatIsNotAsItWasIsWrittenAnew) {
  KeptSite site;
  site.Build();
  const std::string words = site.Read("vela_dictionary.vdat");
  WriteFile(site.index / "vela_dictionary.vdat", "damaged");
  EXPECT_FALSE(site.BuildAndCompare().isUnchanged);
  EXPECT_EQ(site.Read("vela_dictionary.vdat"), words);
  fs::remove(site.index / "vela_lookup.vdat");
  EXPECT_FALSE(site.BuildAndCompare().isUnchanged);
  fs::remove_all(site.index);
  EXPECT_FALSE(site.BuildAndCompare().isUnchanged);
  EXPECT_TRUE(site.BuildAndCompare().isUnchanged);
}

// What a dry run made of the pages is used by the next run, which has still to publish it.
TEST(Incremental, ADryRunPublishesNothing) {
  KeptSite site;
  site.Build();
  site.Add("b.html", "<title>Beta</title>other");
  site.options.dryRun = true;
  EXPECT_FALSE(site.Build().isUnchanged);
  site.options.dryRun = false;
  const IndexSummary summary = site.BuildAndCompare();
  EXPECT_FALSE(summary.isUnchanged);
  EXPECT_EQ(summary.keptPages, 9u);
}

TEST(Incremental, ARunThatFailsLeavesNothingWrong) {
  KeptSite site;
  site.Build();
  site.options.missingPercentLimit = 10;
  fs::remove_all(site.folder / "sub");
  EXPECT_THROW(site.Build(), IndexError);
  EXPECT_THROW(site.Build(), IndexError);
  site.options.acceptFewer = true;
  EXPECT_FALSE(site.BuildAndCompare().isUnchanged);
}

TEST(Incremental, LinksAreCheckedFromWhatIsKept) {
  KeptSite site;
  site.options.checkLinks = "tell";
  EXPECT_EQ(site.BuildAndCompare().links.found.size(), 1u);
  const IndexSummary second = site.BuildAndCompare();
  EXPECT_FALSE(second.isUnchanged);
  EXPECT_EQ(second.keptPages, 9u);
  ASSERT_EQ(second.links.found.size(), 1u);
  EXPECT_EQ(second.links.found[0].address, "https://x.example/no.html");
  fs::remove(site.folder / "b.html");
  fs::remove(site.folder / "sub/c.html");  // which would take its address
  EXPECT_EQ(site.BuildAndCompare().links.found.size(), 2u);
}

TEST(Incremental, ADamagedStateGivesNoOtherIndex) {
  KeptSite site;
  site.Build();
  const std::string whole = ReadFile(site.State());
  for (size_t i = 0; i < 16; ++i) {
    SCOPED_TRACE(i);
    std::string damaged = whole;
    if (i < 6) {
      damaged.resize(whole.size() * i / 6);
    } else {
      for (size_t k = 0; k < 200; ++k) {
        damaged[(i * 15485863 + k * 32452843) % damaged.size()] = static_cast<char>(i + k * 17);
      }
    }
    WriteFile(site.State(), damaged);
    site.options.config.spelling = i % 2 == 0;  // something to do
    site.BuildAndCompare();
  }
}

TEST(Incremental, TheStateLiesWhereNobodyElseReads) {
  KeptSite site;
  site.options.state = (site.index / "state").string();
  EXPECT_THROW(site.Build(), IndexError);
  site.options.state = (site.folder / "state").string();
  EXPECT_THROW(site.Build(), IndexError);
}

}  // namespace
}  // namespace vela::indexer
