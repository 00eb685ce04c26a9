#include "indexer/publish/index_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "format/index_directory.h"
#include "indexer/report/index_error.h"
#include "settings/index_directory.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

constexpr std::time_t kFormerSeconds = 60;  // that an index without readable settings is kept

// The random end of a name is shown as XXXXXX.
std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    std::string name = entry.path().filename().string();
    const size_t dash = name.rfind('-');
    if (name.starts_with('.') && dash != name.npos) name.replace(dash + 1, 6, "XXXXXX");
    names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

using Names = std::vector<std::string>;

// As the system is, but `seconds` later.
PublishSystem Later(std::time_t seconds) {
  PublishSystem system;
  system.now = [seconds] { return std::time(nullptr) + seconds; };
  return system;
}

// As on a file system that cannot exchange folders.
PublishSystem WithoutExchange(std::time_t seconds = 0) {
  PublishSystem system = Later(seconds);
  system.exchange = [](const fs::path&, const fs::path&) { return EINVAL; };
  return system;
}

std::string ReadFrom(const IndexDirectory& directory, const char* name) {
  FileImage file;
  return file.Open(directory, name, false) ? std::string(file.bytes()) : "(none)";
}

// One run of the indexer that writes settings.vdat.
void Publish(const fs::path& index, std::string_view content, const PublishSystem& system = {}) {
  IndexFolder folder(index, system);
  WriteFile(folder.fresh() / "settings.vdat", content);
  folder.Commit();
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
  EXPECT_EQ(NamesIn(scratch.path()), (Names{".index.old-XXXXXX", "index"}));
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
  EXPECT_EQ(NamesIn(scratch.path()), (Names{".index.old-XXXXXX", ".index.old-XXXXXX", "index"}));
  EXPECT_EQ(ReadFile(index / "pictures/old/a.png"), "picture");
  EXPECT_EQ(fs::status(index / "pictures/old").permissions(), fs::perms(0555));
  // The next run after a while removes read-only folders, too.
  { const IndexFolder folder(index, Later(kFormerSeconds)); }
  EXPECT_EQ(NamesIn(scratch.path()), Names{"index"});
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

// A search opens the files one after the other, through a handle that it took before.
TEST(IndexFolder, ASearchGoesOnInTheFormerFolder) {
  for (const PublishSystem& system : {PublishSystem(), WithoutExchange()}) {
    const support::ScratchDirectory scratch;
    const fs::path index = scratch.path() / "index";
    Publish(index, "old", system);
    for (int i = 0; i < 3; ++i) {
      IndexDirectory search;
      OpenIndexDirectory(search, index.string());
      const std::string before = ReadFrom(search, "settings.vdat");
      Publish(index, "newer " + std::to_string(i), system);
      Publish(index, "new " + std::to_string(i), system);
      EXPECT_EQ(ReadFrom(search, "settings.vdat"), before);
      OpenIndexDirectory(search, index.string());
      EXPECT_EQ(ReadFrom(search, "settings.vdat"), "new " + std::to_string(i));
    }
  }
}

TEST(IndexFolder, AFormerFolderGoesWithTheFirstRunAfterItsTime) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  Publish(index, "1");
  Publish(index, "2");
  Publish(index, "3", Later(kFormerSeconds - 30));
  EXPECT_EQ(NamesIn(scratch.path()), (Names{".index.old-XXXXXX", ".index.old-XXXXXX", "index"}));
  Publish(index, "4", Later(kFormerSeconds + 1));
  EXPECT_EQ(NamesIn(scratch.path()), (Names{".index.old-XXXXXX", "index"}));
  EXPECT_EQ(ReadFile(index / "settings.vdat"), "4");
}

TEST(IndexFolder, AFormerFolderStaysAsLongAsItsOwnSearchesMayTake) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  Publish(index, SettingsFileWith("MaxSearchTime = 100"));
  Publish(index, SettingsFileWith("MaxSearchTime = 10"));
  Publish(index, SettingsFileWith("MaxSearchTime = 10"), Later(100));
  EXPECT_EQ(NamesIn(scratch.path()), (Names{".index.old-XXXXXX", ".index.old-XXXXXX", "index"}));
  Publish(index, SettingsFileWith("MaxSearchTime = 10"),
          Later(111));  // the one of 100 seconds, and the next
  EXPECT_EQ(NamesIn(scratch.path()), (Names{".index.old-XXXXXX", "index"}));
}

TEST(IndexFolder, WhatKilledRunsLeftGoes) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  Publish(index, "old");
  WriteFile(scratch.path() / ".index.new-aB3dE6/pagetext.tmp", "half");
  WriteFile(scratch.path() / ".index.new-aB3dE6.old/settings.vdat", "aside");
  WriteFile(scratch.path() / ".index.lock", "");
  const Names others = {".index.new-12345", ".index.new-1234567", ".index.new-12_456",
                        ".other.new-aB3dE6"};
  for (const std::string& name : others) WriteFile(scratch.path() / name / "file", "x");
  WriteFile(scratch.path() / ".index.new-filexx", "no folder");
  { const IndexFolder folder(index); }
  std::vector<std::string> left;
  for (const auto& entry : fs::directory_iterator(scratch.path())) {
    left.push_back(entry.path().filename().string());
  }
  std::sort(left.begin(), left.end());
  Names expected = others;
  expected.insert(expected.end(), {".index.new-filexx", "index"});
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(left, expected);
}

// Earlier versions renamed twice where folders cannot be exchanged, and could be killed between.
TEST(IndexFolder, AnIndexThatWasPutAsideComesBack) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  WriteFile(scratch.path() / ".index.new-aB3dE6.old/search.cgi", "program");
  WriteFile(scratch.path() / ".index.new-aB3dE6.old/settings.vdat", "old");
  WriteFile(scratch.path() / ".index.new-aB3dE6/settings.vdat", "never seen");
  Publish(index, "new");
  EXPECT_EQ(NamesIn(scratch.path()), (Names{".index.old-XXXXXX", "index"}));
  EXPECT_EQ(ReadFile(index / "search.cgi"), "program");
  EXPECT_EQ(ReadFile(index / "settings.vdat"), "new");
}

TEST(IndexFolder, IsForOneRunAtATime) {
  for (const PublishSystem& system : {PublishSystem(), WithoutExchange()}) {
    const support::ScratchDirectory scratch;
    const fs::path index = scratch.path() / "index";
    Publish(index, "old", system);
    auto first = std::make_unique<IndexFolder>(index, system);
    try {
      const IndexFolder second(index, system);
      FAIL() << "two runs at once";
    } catch (const IndexError& error) {
      EXPECT_EQ(error.status, ExitStatus::kBusy);
      EXPECT_EQ(std::string(error.what()), "Another run of vela_index is writing " +
                                               index.string() +
                                               ". Wait until it has ended, or give --wait.");
    }
    PublishSystem waiting = system;
    int asked = 0;
    waiting.whenBusy = [&] {
      if (++asked == 3) first.reset();
    };
    Publish(index, "new", waiting);
    EXPECT_EQ(asked, 3);
    IndexDirectory search;
    OpenIndexDirectory(search, index.string());
    EXPECT_EQ(ReadFrom(search, "settings.vdat"), "new");
  }
}

TEST(IndexFolder, WhatCannotBeExchangedIsFoundOutBeforeTheWork) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  WriteFile(index / "settings.vdat", "old");
  {
    const IndexFolder folder(index, WithoutExchange());
    EXPECT_EQ(folder.fresh().parent_path(), index / kGenerations);
    EXPECT_EQ(NamesIn(scratch.path()), Names{"index"});
  }
  EXPECT_EQ(NamesIn(index), Names{"settings.vdat"});
}

TEST(IndexFolder, NothingChangesWhenTheExchangeFailsAfterAll) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  WriteFile(index / "settings.vdat", "old");
  WriteFile(index / "search.cgi", "program");
  PublishSystem system;
  system.exchange = [](const fs::path& one, const fs::path&) {
    return one.filename() == "one" ? 0 : EBUSY;
  };
  EXPECT_THROW(Publish(index, "new", system), IndexError);
  EXPECT_EQ(NamesIn(scratch.path()), Names{"index"});
  EXPECT_EQ(ReadFile(index / "settings.vdat"), "old");
  EXPECT_EQ(ReadFile(index / "search.cgi"), "program");
}

TEST(IndexFolder, LeavesFoldersOfAnotherUserWhereTheyAre) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  WriteFile(index / "logs/searchwords.log", "one\n");
  PublishSystem system;
  system.user = [] { return geteuid() + 1; };
  const auto inode = [&] {
    struct stat info = {};
    stat((index / "logs").c_str(), &info);
    return info.st_ino;
  };
  const ino_t before = inode();
  {
    IndexFolder folder(index, system);
    WriteFile(folder.fresh() / "settings.vdat", "new");
    folder.Need("logs");
    folder.Commit();
  }
  EXPECT_EQ(inode(), before);
  EXPECT_EQ(ReadFile(index / "logs/searchwords.log"), "one\n");
  EXPECT_EQ(ReadFile(index / "settings.vdat"), "new");
}

}  // namespace
}  // namespace vela::indexer
