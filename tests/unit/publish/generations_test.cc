// generations_test.cc: an index folder that cannot be replaced as a whole.
#include "indexer/publish/generations.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "format/index_directory.h"
#include "indexer/publish/index_folder.h"
#include "settings/index_directory.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

constexpr std::time_t kFormerSeconds = 60;  // that an index without readable settings is kept
using Names = std::vector<std::string>;

Names NamesIn(const fs::path& folder) {
  Names names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

struct Volume {
  support::ScratchDirectory scratch;
  fs::path index = scratch.path() / "index";
  std::time_t later = 0;

  Volume() { fs::create_directory(index); }

  // One run of the indexer that writes the named files with `content`, on a file system without
  // exchange. It stops short of the last step when `commits` is false.
  void Run(const Names& files, const std::string& content, bool commits = true) const {
    PublishSystem system;
    system.exchange = [](const fs::path&, const fs::path&) { return EINVAL; };
    system.now = [this] { return std::time(nullptr) + later; };
    IndexFolder folder(index, system);
    for (const std::string& name : files) WriteFile(folder.fresh() / name, content + " " + name);
    folder.Need("logs");
    if (commits) folder.Commit();
  }
  // What a search that begins now reads.
  std::string Searched(const char* name) const {
    IndexDirectory directory;
    OpenIndexDirectory(directory, index.string());
    FileImage file;
    return file.Open(directory, name, false) ? std::string(file.bytes()) : "(none)";
  }
  // What a web server delivers.
  std::string Delivered(const std::string& name) const { return ReadFile(index / name); }
  std::string Current() const { return fs::read_symlink(index / kCurrentGeneration).string(); }
};

TEST(Generations, AppearInAnEmptyFolder) {
  const Volume volume;
  EXPECT_FALSE(Generations::AreIn(volume.index));
  volume.Run({"settings.vdat", "style.css"}, "1");
  EXPECT_TRUE(Generations::AreIn(volume.index));
  EXPECT_EQ(NamesIn(volume.index), (Names{".generations", "logs", "settings.vdat", "style.css"}));
  EXPECT_EQ(NamesIn(volume.index / kGenerations), (Names{"1", "current"}));
  EXPECT_EQ(NamesIn(volume.scratch.path()), Names{"index"});
  EXPECT_EQ(volume.Current(), "1");
  EXPECT_EQ(volume.Searched("settings.vdat"), "1 settings.vdat");
  EXPECT_EQ(volume.Delivered("style.css"), "1 style.css");
}

TEST(Generations, ChangeAllFilesAtOnce) {
  const Volume volume;
  volume.Run({"settings.vdat", "vela_spelling.vdat", "a.css", "b.css"}, "1");
  volume.Run({"settings.vdat", "vela_recommended.vdat", "a.css"}, "2");
  EXPECT_EQ(NamesIn(volume.index), (Names{".generations", "a.css", "b.css", "logs", "settings.vdat",
                                          "vela_recommended.vdat"}));
  EXPECT_EQ(volume.Current(), "2");
  EXPECT_EQ(volume.Searched("settings.vdat"), "2 settings.vdat");
  EXPECT_EQ(volume.Searched("vela_spelling.vdat"), "(none)");
  EXPECT_EQ(volume.Delivered("a.css"), "2 a.css");
  EXPECT_EQ(volume.Delivered("b.css"), "1 b.css");  // carried over, as everything is that is there
}

TEST(Generations, FormerOnesGoAfterTheirTime) {
  Volume volume;
  for (int i = 0; i < 3; ++i) volume.Run({"settings.vdat"}, "x");
  EXPECT_EQ(NamesIn(volume.index / kGenerations), (Names{"1", "2", "3", "current"}));
  fs::create_directory(volume.index / kGenerations / "new-aB3dE6");  // of a killed run
  volume.later = kFormerSeconds + 1;
  volume.Run({"settings.vdat"}, "x");
  EXPECT_EQ(NamesIn(volume.index / kGenerations), (Names{"3", "4", "current"}));
}

TEST(Generations, AreKeptToWhereFoldersCanBeExchanged) {
  const Volume volume;
  volume.Run({"settings.vdat"}, "1");
  {
    IndexFolder folder(volume.index);
    WriteFile(folder.fresh() / "settings.vdat", "2");
    folder.Commit();
  }
  EXPECT_EQ(volume.Current(), "2");
  EXPECT_EQ(NamesIn(volume.scratch.path()), Names{"index"});
}

TEST(Generations, LeaveNothingWhenTheFirstRunFails) {
  const Volume volume;
  volume.Run({"settings.vdat"}, "1", false);
  EXPECT_EQ(NamesIn(volume.index), Names{});
}

// The owner's files stay where they are, and what replaces them counts at once.
TEST(Generations, TheOwnersFilesStayTheOwners) {
  const Volume volume;
  WriteFile(volume.index / "search.cgi", "program");
  WriteFile(volume.index / "logs/searchwords.log", "log");
  WriteFile(volume.index / "search_template.html", "template");
  for (int i = 0; i < 2; ++i) volume.Run({"settings.vdat"}, "x");
  EXPECT_EQ(volume.Searched("search_template.html"), "template");
  WriteFile(volume.index / "edited", "edited");
  fs::rename(volume.index / "edited", volume.index / "search_template.html");
  EXPECT_EQ(volume.Searched("search_template.html"), "edited");
  fs::remove(volume.index / "search.cgi");
  volume.Run({"settings.vdat"}, "x");
  EXPECT_EQ(NamesIn(volume.index),
            (Names{".generations", "logs", "search_template.html", "settings.vdat"}));
  EXPECT_FALSE(fs::is_symlink(volume.index / "search_template.html"));
  EXPECT_EQ(volume.Searched("logs/searchwords.log"), "log");
}

TEST(Generations, WhatARunWroteOrASearchMadeComesAlong) {
  const Volume volume;
  volume.Run({"settings.vdat", "search_template.html"}, "1");
  WriteFile(volume.index / "search_template.html", "edited in place");
  WriteFile(volume.index / kGenerations / "1/search.log", "a search");
  volume.Run({"settings.vdat"}, "2");
  EXPECT_EQ(volume.Searched("search_template.html"), "edited in place");
  EXPECT_EQ(volume.Searched("search.log"), "a search");
  EXPECT_EQ(volume.Delivered("search.log"), "a search");
  // One that the owner puts in its place wins from the next run on.
  fs::remove(volume.index / "search_template.html");
  WriteFile(volume.index / "search_template.html", "replaced");
  volume.Run({"settings.vdat"}, "3");
  EXPECT_EQ(volume.Searched("search_template.html"), "replaced");
}

TEST(Generations, ASearchUnderWaySeesTheOwnersFileThatWasReplaced) {
  const Volume volume;
  WriteFile(volume.index / "real.html", "linked");
  fs::create_symlink("real.html", volume.index / "linked.html");
  WriteFile(volume.index / "search_template.html", "owner's");
  volume.Run({"settings.vdat"}, "1");
  IndexDirectory search;
  OpenIndexDirectory(search, volume.index.string());
  volume.Run({"settings.vdat", "search_template.html", "linked.html"}, "2");
  FileImage file;
  ASSERT_TRUE(file.Open(search, "search_template.html", false));
  EXPECT_EQ(file.bytes(), "owner's");
  ASSERT_TRUE(file.Open(search, "linked.html", false));
  EXPECT_EQ(file.bytes(), "linked");
  EXPECT_EQ(volume.Searched("search_template.html"), "2 search_template.html");
  EXPECT_EQ(volume.Delivered("search_template.html"), "2 search_template.html");
}

TEST(Generations, TakeInTheIndexThatIsThere) {
  Volume volume;
  for (const char* name :
       {"settings.vdat", "vela_spelling.vdat", "vela_opensearch.xml", "style.css", "search.cgi"}) {
    WriteFile(volume.index / name, std::string("plain ") + name);
  }
  IndexDirectory search;  // one that began before there were generations
  OpenIndexDirectory(search, volume.index.string());
  volume.Run({"settings.vdat", "style.css"}, "2");
  EXPECT_EQ(volume.Current(), "2");
  EXPECT_EQ(volume.Searched("settings.vdat"), "2 settings.vdat");
  EXPECT_EQ(volume.Searched("vela_spelling.vdat"), "(none)");
  EXPECT_EQ(volume.Searched("search.cgi"), "plain search.cgi");
  EXPECT_EQ(volume.Delivered("style.css"), "2 style.css");
  EXPECT_FALSE(fs::exists(volume.index / "vela_opensearch.xml"));
  volume.Run({"settings.vdat", "style.css"}, "3");
  for (const char* name : {"settings.vdat", "vela_spelling.vdat"}) {
    FileImage file;
    ASSERT_TRUE(file.Open(search, name, false)) << name;
    EXPECT_EQ(file.bytes(), std::string("plain ") + name);
  }
  volume.later = kFormerSeconds + 1;
  volume.Run({"settings.vdat", "style.css"}, "4");
  EXPECT_EQ(volume.Delivered("settings.vdat"), "4 settings.vdat");
  EXPECT_EQ(NamesIn(volume.index),
            (Names{".generations", "logs", "search.cgi", "settings.vdat", "style.css"}));
}

TEST(Generations, ThePlainIndexStaysAsLongAsItsOwnSearchesMayTake) {
  Volume volume;
  const std::string plain = SettingsFileWith("MaxSearchTime = 100");
  WriteFile(volume.index / "settings.vdat", plain);
  volume.Run({"settings.vdat"}, "2");
  volume.later = 100;
  volume.Run({"settings.vdat"}, "3");
  EXPECT_EQ(volume.Delivered("settings.vdat"), plain);
  volume.later = 111;
  volume.Run({"settings.vdat"}, "4");
  EXPECT_EQ(volume.Delivered("settings.vdat"), "4 settings.vdat");
}

TEST(Generations, BeginAnewWhenSomebodyRemovedThem) {
  const Volume volume;
  WriteFile(volume.index / "search.cgi", "program");
  volume.Run({"settings.vdat", "style.css"}, "1");
  fs::remove_all(volume.index / kGenerations / "1");
  volume.Run({"settings.vdat", "style.css"}, "2");
  EXPECT_EQ(volume.Current(), "1");
  EXPECT_EQ(volume.Searched("settings.vdat"), "2 settings.vdat");
  fs::remove_all(volume.index / kGenerations);
  volume.Run({"settings.vdat"}, "3");
  EXPECT_EQ(volume.Searched("settings.vdat"), "3 settings.vdat");
  EXPECT_EQ(volume.Searched("search.cgi"), "program");
  EXPECT_EQ(NamesIn(volume.index), (Names{".generations", "logs", "search.cgi", "settings.vdat"}));
}

TEST(Generations, HaveTheOwnerAndPermissionsOfTheFolder) {
  const Volume volume;
  const uid_t owner = geteuid() == 0 ? 33 : geteuid();
  ASSERT_EQ(chown(volume.index.c_str(), owner, static_cast<gid_t>(-1)), 0);
  ASSERT_EQ(chmod(volume.index.c_str(), 0751), 0);
  volume.Run({"settings.vdat"}, "1");
  for (const char* folder : {".", ".generations", ".generations/1"}) {
    SCOPED_TRACE(folder);
    struct stat info = {};
    ASSERT_EQ(stat((volume.index / folder).c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, owner);
    EXPECT_EQ(info.st_mode & 07777, 0751u);
  }
}

// The parent of a volume is often another's.
TEST(Generations, NeedNothingBesideTheFolder) {
  const Volume volume;
  const uid_t user = geteuid();
  const uid_t other = user == 0 ? 65534 : user;
  ASSERT_EQ(chown(volume.index.c_str(), other, static_cast<gid_t>(-1)), 0);
  ASSERT_EQ(chmod(volume.scratch.path().c_str(), 0555), 0);
  ASSERT_EQ(seteuid(other), 0);
  std::string message;
  try {
    IndexFolder folder(volume.index);
    WriteFile(folder.fresh() / "settings.vdat", "1");
    folder.Commit();
  } catch (const std::exception& error) {
    message = error.what();
  }
  ASSERT_EQ(seteuid(user), 0);
  ASSERT_EQ(chmod(volume.scratch.path().c_str(), 0755), 0);
  EXPECT_EQ(message, "");
  EXPECT_EQ(volume.Searched("settings.vdat"), "1");
}

}  // namespace
}  // namespace vela::indexer
