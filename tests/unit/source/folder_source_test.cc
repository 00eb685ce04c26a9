#include "indexer/source/folder_source.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

struct Walk {
  std::vector<std::string> paths;
  LeftOut leftOut;
  LeftOut otherKinds;
  std::vector<Finding> unused;
};

SiteFolder SiteAt(const fs::path& folder) {
  return {.folder = folder,
          .base = "https://x.example/docs/",
          .excluded = {},
          .excludedFolder = {},
          .endings = DefaultFileEndings(),
          .fileLimit = 4};
}

ItemList ItemsOf(const fs::path& folder) { return FolderSource(SiteAt(folder)).List().items; }

Walk WalkOf(const TestSite& site, const std::vector<std::string>& excluded = {},
            const fs::path& excludedFolder = {}, bool followLinks = false) {
  SiteFolder wanted = SiteAt(site.folder);
  wanted.excluded = excluded;
  wanted.excludedFolder = excludedFolder;
  wanted.followLinks = followLinks;
  SiteListing listing = FolderSource(wanted).List();
  Walk walk{.paths = {},
            .leftOut = std::move(listing.leftOut),
            .otherKinds = std::move(listing.otherKinds),
            .unused = std::move(listing.unused)};
  for (const SourceItem& item : listing.items) {
    const auto type = static_cast<size_t>(item.type);
    walk.paths.push_back(item.path + " " + std::string(kFileTypeEndings[type].key));
  }
  return walk;
}

TEST(FolderSource, TakesPagesInByteOrderOfTheirPaths) {
  const TestSite site;
  for (const char* path : {"b.html", "a/z.HTM", "a.html", "B.xhtml", "a/b/notes.txt", "read.md",
                           "a.PDF", "picture.png", "style.css", "noextension", "page.html.bak"}) {
    site.Add(path, "x");
  }
  const Walk walk = WalkOf(site);
  // "." sorts before "/", capital letters before small ones.
  const std::vector<std::string> expected = {"B.xhtml html",       "a.PDF pdf",    "a.html html",
                                             "a/b/notes.txt text", "a/z.HTM html", "b.html html",
                                             "read.md markdown"};
  EXPECT_EQ(walk.paths, expected);
  EXPECT_EQ(walk.leftOut.total, 0u);
}

TEST(FolderSource, KnowsTypesByTheirMedia) {
  EXPECT_EQ(TypeOfMedia("text/html"), FileType::kHtml);
  EXPECT_EQ(TypeOfMedia("application/xhtml+xml"), FileType::kHtml);
  EXPECT_EQ(TypeOfMedia("application/pdf"), FileType::kPdf);
  EXPECT_EQ(TypeOfMedia("application/vnd.ms-excel"), FileType::kOldSheets);
  EXPECT_EQ(TypeOfMedia("image/png"), std::nullopt);
  EXPECT_EQ(TypeOfMedia(""), std::nullopt);
}

TEST(FolderSource, LeavesOutHiddenAndExcludedNames) {
  const TestSite site;
  for (const char* path : {".git/a.html", ".hidden.html", "_sources/a.txt", "drafts/a.html",
                           "sub/drafts/b.html", "old-1.html", "keep.html", "sub/keep.html"}) {
    site.Add(path, "x");
  }
  const Walk walk = WalkOf(site, {"drafts", "old-*.html", "sub/keep.html"});
  EXPECT_EQ(walk.paths, std::vector<std::string>{"keep.html html"});
  const Walk slashed = WalkOf(site, {"drafts/", "old-*.html", "sub/"});
  EXPECT_EQ(slashed.paths, std::vector<std::string>{"keep.html html"});
}

TEST(FolderSource, FollowsNoSymbolicLink) {
  const TestSite site;
  site.Add("a.html", "x");
  WriteFile(site.scratch.path() / "secret.html", "x");
  fs::create_symlink(site.scratch.path() / "secret.html", site.folder / "out.html");
  fs::create_symlink("a.html", site.folder / "again.html");
  fs::create_directory_symlink(".", site.folder / "loop");
  fs::create_symlink("nowhere", site.folder / "dangling.html");
  fs::create_symlink("nowhere", site.folder / "dangling.png");
  const Walk walk = WalkOf(site);
  EXPECT_EQ(walk.paths, std::vector<std::string>{"a.html html"});
  EXPECT_EQ(walk.leftOut.groups.at({"", Reason::kSymbolicLink}).count, 4u);
}

TEST(FolderSource, FollowsLinksInTheSiteOnRequest) {
  const TestSite site;
  site.Add("a.html", "x");
  site.Add("sub/b.html", "x");
  site.Add("releases/5/c.html", "x");
  site.Add("releases/5/deep/d.html", "x");
  site.Add("hidden/e.html", "x");
  WriteFile(site.scratch.path() / "beside/secret.html", "x");
  fs::create_directory_symlink("releases/5", site.folder / "current");
  fs::create_directory_symlink("releases", site.folder / "z");   // 5 is read by then
  fs::create_directory_symlink("..", site.folder / "sub/loop");  // the site itself
  fs::create_directory_symlink("../..", site.folder / "releases/5/up");
  fs::create_symlink("hidden/e.html", site.folder / "found.html");
  fs::create_symlink("hidden/e.html", site.folder / "twice.html");
  fs::create_symlink("a.html", site.folder / "again.html");
  fs::create_directory_symlink(site.scratch.path() / "beside", site.folder / "out");
  fs::create_symlink(site.scratch.path() / "beside/secret.html", site.folder / "out.html");
  fs::create_symlink("nowhere", site.folder / "dangling.html");
  const Walk walk = WalkOf(site, {"releases", "hidden"}, {}, true);
  const std::vector<std::string> expected = {"a.html html", "current/c.html html",
                                             "current/deep/d.html html", "found.html html",
                                             "sub/b.html html"};
  EXPECT_EQ(walk.paths, expected);
  EXPECT_EQ(walk.leftOut.groups.at({"", Reason::kLinkOutside}).count, 3u);
  EXPECT_TRUE(walk.leftOut.groups.contains({"", Reason::kLinkNotFollowed}));
}

TEST(FolderSource, ReadsTheFileThatALinkLeadsTo) {
  const TestSite site;
  site.Add("releases/5/c.html", "x");
  fs::create_directory_symlink("releases/5", site.folder / "current");
  SiteFolder wanted = SiteAt(site.folder);
  wanted.excluded = {"releases"};
  wanted.followLinks = true;
  FolderSource source(wanted);
  const ItemList items = source.List().items;
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].address, "https://x.example/docs/current/c.html");
  FileContent content;
  EXPECT_EQ(source.Read(items[0], content), Reason::kNone);
  EXPECT_EQ(content.bytes, "x");
}

TEST(FolderSource, CountsFilesOfOtherKindsByTheirEnding) {
  const TestSite site;
  for (const char* path : {"a.dwg", "b/c.DWG", "d.tar.gz", "LICENCE", "style.css", "e.png"}) {
    site.Add(path, "x");
  }
  const Walk walk = WalkOf(site);
  EXPECT_EQ(walk.otherKinds.total, 4u);
  EXPECT_EQ(walk.otherKinds.groups.at({".dwg", Reason::kOtherKind}).count, 2u);
  EXPECT_EQ(walk.otherKinds.groups.at({".gz", Reason::kOtherKind}).count, 1u);
  EXPECT_EQ(walk.otherKinds.groups.at({"", Reason::kOtherKind}).count, 1u);
}

TEST(FolderSource, TheRulesForRobotsAreNoPage) {
  const TestSite site;
  site.Add("robots.txt", "x");
  site.Add("sub/robots.txt", "x");
  const Walk walk = WalkOf(site);
  EXPECT_EQ(walk.paths, std::vector<std::string>{"sub/robots.txt text"});
  EXPECT_TRUE(walk.leftOut.groups.contains({"", Reason::kForRobots}));
}

TEST(FolderSource, ReadsOnlyWhatIsListed) {
  const TestSite site;
  for (const char* path : {"a.html", "b.html", "sub/c.html", "drafts/d.html", "e.zip", "f.zip"}) {
    site.Add(path, "x");
  }
  SiteFolder wanted = SiteAt(site.folder);
  wanted.excluded = {"drafts"};
  wanted.only = {"./a.html",
                 "sub/../sub/c.html",
                 (site.folder / "b.html").string(),
                 "e.zip",
                 "../a.html",
                 "drafts/d.html",
                 "none.html",
                 "a.html"};
  const SiteListing listing = FolderSource(wanted).List();
  std::vector<std::string> paths;
  for (const SourceItem& item : listing.items) paths.push_back(item.path);
  EXPECT_EQ(paths, (std::vector<std::string>{"a.html", "b.html", "sub/c.html"}));
  EXPECT_EQ(listing.otherKinds.total, 1u);
  EXPECT_EQ(listing.leftOut.groups.at({"", Reason::kFileNotFound}).examples,
            (std::vector<std::string>{"../a.html", "drafts/d.html", "none.html"}));
}

TEST(FolderSource, NamesPatternsThatLeaveNothingOut) {
  const TestSite site;
  site.Add("drafts/a.html", "x");
  site.Add(".git/a.html", "x");
  const Walk walk = WalkOf(site, {"drafts/", "draft", "*.git", "drafts"});
  ASSERT_EQ(walk.unused.size(), 1u);
  EXPECT_EQ(walk.unused[0].reason, Reason::kUnusedExclude);
  EXPECT_EQ(walk.unused[0].subject, "draft");
}

TEST(FolderSource, TakesOnlyRegularFiles) {
  const TestSite site;
  ASSERT_EQ(mkfifo((site.folder / "pipe.html").c_str(), 0600), 0);
  site.Add("folder.html/inside.html", "x");
  const Walk walk = WalkOf(site);
  EXPECT_EQ(walk.paths, std::vector<std::string>{"folder.html/inside.html html"});
  EXPECT_EQ(walk.leftOut.groups.at({"", Reason::kNotRegular}).examples,
            std::vector<std::string>{"pipe.html"});
}

TEST(FolderSource, LeavesOutTheIndexInsideTheSite) {
  const TestSite site;
  site.Add("a.html", "x");
  site.Add("search/search_template.html", "x");
  const Walk walk = WalkOf(site, {}, site.folder / "search");
  EXPECT_EQ(walk.paths, std::vector<std::string>{"a.html html"});
}

TEST(FolderSource, SaysWhenTheSiteCannotBeRead) {
  try {
    ItemsOf("/nonexistent/site");
    FAIL();
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kFailed);
    EXPECT_NE(std::string(error.what()).find("--site"), std::string::npos);
  }
}

TEST(FolderSource, KnowsWhatIsSentAsXml) {
  const TestSite site;
  for (const char* name : {"1.html", "2.XHTML", "3.xht", "4.xhtml.txt"}) site.Add(name, "x");
  const ItemList items = ItemsOf(site.folder);
  ASSERT_EQ(items.size(), 4u);
  EXPECT_FALSE(items[0].isXml);
  EXPECT_TRUE(items[1].isXml);
  EXPECT_TRUE(items[2].isXml);
  EXPECT_FALSE(items[3].isXml);
}

TEST(FolderSource, ItemsHaveAddressesAndAreRead) {
  const TestSite site;
  site.Add("a b.html", "<p>x", 1000000001);
  FolderSource source(SiteAt(site.folder));
  const ItemList items = source.List().items;
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].address, "https://x.example/docs/a%20b.html");
  FileContent content;
  EXPECT_EQ(source.Read(items[0], content), Reason::kNone);
  EXPECT_EQ(content.bytes, "<p>x");
  EXPECT_EQ(content.size, 4u);
  EXPECT_EQ(content.modifiedTime, 1000000001);
  site.Add("a b.html", "<p>xy");
  EXPECT_EQ(source.Read(items[0], content), Reason::kFileTooLarge);
  fs::remove(site.folder / "a b.html");
  EXPECT_EQ(source.Read(items[0], content), Reason::kFileNotOpened);
  fs::create_symlink("/dev/null", site.folder / "a b.html");
  EXPECT_EQ(source.Read(items[0], content), Reason::kFileNotOpened);
}

}  // namespace
}  // namespace vela::indexer
