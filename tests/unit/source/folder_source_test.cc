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
};

FolderSource SourceOf(const fs::path& folder) {
  FolderSource source;
  source.folder = folder;
  source.base = "https://x.example/docs/";
  source.htmlEndings = SiteConfig().htmlEndings;
  source.textEndings = SiteConfig().textEndings;
  source.fileLimit = 4;
  return source;
}

Walk WalkOf(const TestSite& site, const std::vector<std::string>& excluded = {},
            const fs::path& excludedFolder = {}) {
  FolderSource source = SourceOf(site.folder);
  source.excluded = excluded;
  source.excludedFolder = excludedFolder;
  Walk walk;
  for (const SourceItem& item : ListItems(source, walk.leftOut)) {
    walk.paths.push_back(item.path + (item.type == FileType::kHtml ? " html" : " text"));
  }
  return walk;
}

TEST(FolderSource, TakesPagesInByteOrderOfTheirPaths) {
  const TestSite site;
  for (const char* path : {"b.html", "a/z.HTM", "a.html", "B.xhtml", "a/b/notes.txt", "read.md",
                           "picture.png", "style.css", "noextension", "page.html.bak"}) {
    site.Add(path, "x");
  }
  const Walk walk = WalkOf(site);
  // "." sorts before "/", capital letters before small ones.
  const std::vector<std::string> expected = {"B.xhtml html", "a.html html", "a/b/notes.txt text",
                                             "a/z.HTM html", "b.html html", "read.md text"};
  EXPECT_EQ(walk.paths, expected);
  EXPECT_EQ(walk.leftOut.total, 0u);
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
  LeftOut leftOut;
  try {
    ListItems(SourceOf("/nonexistent/site"), leftOut);
    FAIL();
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kFailed);
    EXPECT_NE(std::string(error.what()).find("--site"), std::string::npos);
  }
}

TEST(FolderSource, ItemsHaveAddressesAndAreRead) {
  const TestSite site;
  site.Add("a b.html", "<p>x", 1000000001);
  const FolderSource source = SourceOf(site.folder);
  LeftOut leftOut;
  const std::vector<SourceItem> items = ListItems(source, leftOut);
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].address, "https://x.example/docs/a%20b.html");
  FileContent content;
  EXPECT_EQ(ReadItem(source, items[0], content), Reason::kNone);
  EXPECT_EQ(content.bytes, "<p>x");
  EXPECT_EQ(content.size, 4u);
  EXPECT_EQ(content.modifiedTime, 1000000001);
  site.Add("a b.html", "<p>xy");
  EXPECT_EQ(ReadItem(source, items[0], content), Reason::kFileTooLarge);
  fs::remove(site.folder / "a b.html");
  EXPECT_EQ(ReadItem(source, items[0], content), Reason::kFileNotOpened);
  fs::create_symlink("/dev/null", site.folder / "a b.html");
  EXPECT_EQ(ReadItem(source, items[0], content), Reason::kFileNotOpened);
}

}  // namespace
}  // namespace vela::indexer
