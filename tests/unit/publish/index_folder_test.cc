#include "indexer/publish/index_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "indexer/report/index_error.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(IndexFolder, AppearsOnlyWhenComplete) {
  const support::ScratchDirectory scratch;
  {
    IndexFolder folder(scratch.path() / "index");
    WriteFile(folder.fresh() / "settings.vdat", "new");
    EXPECT_FALSE(fs::exists(scratch.path() / "index"));
    folder.Commit();
  }
  EXPECT_EQ(NamesIn(scratch.path()), std::vector<std::string>{"index"});
  EXPECT_EQ(ReadFile(scratch.path() / "index/settings.vdat"), "new");
}

TEST(IndexFolder, LeavesNothingWhenItIsNotCommitted) {
  const support::ScratchDirectory scratch;
  WriteFile(scratch.path() / "index/settings.vdat", "old");
  {
    const IndexFolder folder(scratch.path() / "index");
    WriteFile(folder.fresh() / "settings.vdat", "new");
  }
  EXPECT_EQ(NamesIn(scratch.path()), std::vector<std::string>{"index"});
  EXPECT_EQ(ReadFile(scratch.path() / "index/settings.vdat"), "old");
}

TEST(IndexFolder, CarriesOverWhatIsNotOfTheIndex) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  for (const char* name :
       {"settings.vdat", "vela_dictionary.vdat", "vela_spelling.vdat", "vela_recommended.vdat",
        "search.cgi", "logs/searchwords.log", "search_template.html", "style.css"}) {
    WriteFile(index / name, std::string("old ") + name);
  }
  fs::create_symlink("search.cgi", index / "link.cgi");
  fs::permissions(index / "search.cgi", fs::perms::owner_all);
  fs::permissions(index, fs::perms::owner_all | fs::perms::group_exec);
  {
    IndexFolder folder(index);
    EXPECT_TRUE(folder.OldHas("search_template.html"));
    EXPECT_FALSE(folder.OldHas("other.html"));
    WriteFile(folder.fresh() / "settings.vdat", "new");
    WriteFile(folder.fresh() / "style.css", "new");
    folder.Commit();
  }
  EXPECT_EQ(NamesIn(scratch.path()), std::vector<std::string>{"index"});
  // Files of the old index that the new one has no use for would not fit it.
  EXPECT_EQ(NamesIn(index),
            (std::vector<std::string>{"link.cgi", "logs", "search.cgi", "search_template.html",
                                      "settings.vdat", "style.css"}));
  EXPECT_EQ(ReadFile(index / "settings.vdat"), "new");
  EXPECT_EQ(ReadFile(index / "style.css"), "new");
  EXPECT_EQ(ReadFile(index / "search_template.html"), "old search_template.html");
  EXPECT_EQ(ReadFile(index / "logs/searchwords.log"), "old logs/searchwords.log");
  EXPECT_EQ(fs::read_symlink(index / "link.cgi"), "search.cgi");
  EXPECT_EQ(fs::status(index / "search.cgi").permissions(), fs::perms::owner_all);
  EXPECT_EQ(fs::status(index).permissions(), fs::perms::owner_all | fs::perms::group_exec);
}

TEST(IndexFolder, ALogGoesOnInTheNewFolder) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  WriteFile(index / "search.log", "before\n");
  std::ofstream log(index / "search.log", std::ios::app);
  {
    IndexFolder folder(index);
    folder.Commit();
  }
  log << "after\n" << std::flush;
  EXPECT_EQ(ReadFile(index / "search.log"), "before\nafter\n");
}

// Otherwise the web server could begin no new log after the next run of the indexer.
TEST(IndexFolder, FoldersKeepOwnerAndPermissions) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  fs::create_directories(index / "logs");
  // Only root may give something away; 33 is another user.
  const uid_t owner = geteuid() == 0 ? 33 : geteuid();
  const gid_t group = geteuid() == 0 ? 33 : getegid();
  for (const fs::path& folder : {index, index / "logs"}) {
    ASSERT_EQ(chown(folder.c_str(), owner, group), 0);
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);  // more than the usual mask leaves
  }
  {
    IndexFolder folder(index);
    folder.Commit();
  }
  for (const fs::path& folder : {index, index / "logs"}) {
    struct stat info = {};
    ASSERT_EQ(stat(folder.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, owner) << folder;
    EXPECT_EQ(info.st_gid, group) << folder;
    EXPECT_EQ(info.st_mode & 07777, 0777u) << folder;
  }
}

// As root every folder is writable: the test is another user then.
TEST(IndexFolder, AReadOnlyFolderIsCarriedOverAgainAndAgain) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  WriteFile(index / "pictures/old/a.png", "picture");
  const uid_t user = geteuid();
  const uid_t other = user == 0 ? 65534 : user;
  for (const fs::path& path : {scratch.path(), index, index / "pictures", index / "pictures/old",
                               index / "pictures/old/a.png"}) {
    ASSERT_EQ(chown(path.c_str(), other, static_cast<gid_t>(-1)), 0);
  }
  ASSERT_EQ(chmod((index / "pictures/old").c_str(), 0555), 0);
  ASSERT_EQ(chmod((index / "pictures").c_str(), 0555), 0);
  ASSERT_EQ(seteuid(other), 0);
  std::string message;
  try {
    for (int run = 0; run < 2; ++run) {
      IndexFolder folder(index);
      folder.Commit();
    }
  } catch (const std::exception& error) {
    message = error.what();
  }
  ASSERT_EQ(seteuid(user), 0);
  EXPECT_EQ(message, "");
  EXPECT_EQ(NamesIn(scratch.path()), std::vector<std::string>{"index"});
  EXPECT_EQ(ReadFile(index / "pictures/old/a.png"), "picture");
  EXPECT_EQ(fs::status(index / "pictures/old").permissions(), fs::perms(0555));
  // So that the scratch directory can be removed.
  for (const char* name : {"pictures", "pictures/old"}) {
    ASSERT_EQ(chmod((index / name).c_str(), 0755), 0);
  }
}

TEST(IndexFolder, GoesWhereALinkLeads) {
  const support::ScratchDirectory scratch;
  fs::create_directory(scratch.path() / "real");
  fs::create_directory_symlink("real", scratch.path() / "index");
  {
    IndexFolder folder(scratch.path() / "index/");
    EXPECT_EQ(folder.target().filename(), "real");
    WriteFile(folder.fresh() / "settings.vdat", "new");
    folder.Commit();
  }
  EXPECT_TRUE(fs::is_symlink(scratch.path() / "index"));
  EXPECT_EQ(ReadFile(scratch.path() / "real/settings.vdat"), "new");
}

TEST(IndexFolder, RefusesWhatItCannotReplace) {
  const support::ScratchDirectory scratch;
  WriteFile(scratch.path() / "file", "x");
  EXPECT_THROW(IndexFolder(scratch.path() / "file"), IndexError);
  EXPECT_THROW(IndexFolder(scratch.path() / "none/index"), IndexError);
  EXPECT_EQ(NamesIn(scratch.path()), std::vector<std::string>{"file"});
}

TEST(IndexFolder, SaysWhereItMustBeAbleToWrite) {
  const support::ScratchDirectory scratch;
  ASSERT_EQ(chmod(scratch.path().c_str(), 0555), 0);
  const uid_t user = geteuid();
  // Root may write anywhere.
  ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0);
  std::string message;
  try {
    const IndexFolder folder(scratch.path() / "index");
  } catch (const IndexError& error) {
    message = error.what();
  }
  ASSERT_EQ(seteuid(user), 0);
  ASSERT_EQ(chmod(scratch.path().c_str(), 0700), 0);
  EXPECT_EQ(message, "Cannot make a folder in " + scratch.path().string() +
                         ": Permission denied. The new index is made beside " +
                         (scratch.path() / "index").string() +
                         " and then takes its place: let the user who runs vela_index write "
                         "there.");
}

}  // namespace
}  // namespace vela::indexer
