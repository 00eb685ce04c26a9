#include "indexer/publish/rollback.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "indexer/publish/index_folder.h"
#include "indexer/report/index_error.h"
#include "settings/index_directory.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

constexpr std::time_t kFormerSeconds = 61;  // after which no search reads a former index

using Files = std::map<std::string, std::string>;

// An index folder, of either kind, and the runs that are made in it.
struct Place {
  support::ScratchDirectory scratch;
  fs::path index = scratch.path() / "index";
  bool exchanges = true;
  bool keepsLast = true;
  std::time_t later = 0;

  explicit Place(bool canExchange) : exchanges(canExchange) {}

  PublishSystem System() const {
    PublishSystem system;
    if (!exchanges) system.exchange = [](const fs::path&, const fs::path&) { return EINVAL; };
    system.now = [this] { return std::time(nullptr) + later; };
    system.keepsLast = keepsLast;
    return system;
  }
  // A run whose index has that many pages, and whatever else it writes.
  void Run(int pages, const Files& files = {}) const {
    IndexFolder folder(index, System());
    WriteFile(folder.fresh() / "settings.vdat",
              SettingsFileWith("NumPages = " + std::to_string(pages)));
    for (const auto& [name, content] : files) WriteFile(folder.fresh() / name, content);
    folder.Commit();
  }
  int RollBackPages() const { return RollBack(index, System()).pages; }
  // What a search that begins now finds; -1: no index.
  int Pages() const {
    IndexDirectory directory;
    OpenIndexDirectory(directory, index.string());
    FileImage file;
    if (!file.Open(directory, "settings.vdat", false)) return -1;
    const std::string_view key = "NumPages = ";
    const size_t at = file.bytes().find(key);
    return at == std::string_view::npos
               ? -1
               : std::stoi(std::string(file.bytes().substr(at + key.size())));
  }
  std::string Read(const std::string& name) const { return ReadFile(index / name); }
  // How many whole indexes there are.
  size_t Indexes() const {
    size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(scratch.path())) {
      if (entry.is_symlink() || !entry.is_regular_file()) continue;
      if (entry.path().filename() == "settings.vdat") ++count;
    }
    return count;
  }
};

class Rollback : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(BothKinds, Rollback, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "Exchanged" : "Generations"; });

TEST_P(Rollback, GoesBackAndForth) {
  Place place(GetParam());
  place.Run(1);
  place.Run(2);
  EXPECT_EQ(place.RollBackPages(), 1);
  EXPECT_EQ(place.Pages(), 1);
  EXPECT_EQ(place.RollBackPages(), 2);
  EXPECT_EQ(place.Pages(), 2);
  place.later = kFormerSeconds;  // the same when no search reads what was before
  EXPECT_EQ(place.RollBackPages(), 1);
  EXPECT_EQ(place.RollBackPages(), 2);
  EXPECT_EQ(place.Pages(), 2);
}

TEST_P(Rollback, OneIndexIsKeptHoweverLong) {
  Place place(GetParam());
  for (int run = 1; run <= 4; ++run) place.Run(run);
  place.later = 30 * 24 * 3600;
  place.Run(5);
  EXPECT_EQ(place.RollBackPages(), 4);
  place.Run(6);
  EXPECT_EQ(place.Indexes(), 2u);
  EXPECT_EQ(place.RollBackPages(), 4);  // that of the rollback, the last in place before
}

TEST_P(Rollback, WithoutKeepingThereIsNoneAfterAWhile) {
  Place place(GetParam());
  place.keepsLast = false;
  fs::create_directory(place.index);
  place.Run(1);
  place.Run(2);
  EXPECT_EQ(place.RollBackPages(), 1);  // a search may still read it, so it is there
  place.later = kFormerSeconds;
  { const IndexFolder folder(place.index, place.System()); }  // a run that fails
  EXPECT_EQ(place.Indexes(), 1u);
  EXPECT_THROW(place.RollBackPages(), IndexError);
  EXPECT_EQ(place.Pages(), 1);
}

TEST_P(Rollback, SaysThatThereIsNoLastIndex) {
  const Place place(GetParam());
  fs::create_directory(place.index);
  WriteFile(place.index / "search.cgi", "program");
  for (int run = 0; run < 2; ++run) {
    try {
      place.RollBackPages();
      ADD_FAILURE() << "it found one";
    } catch (const IndexError& error) {
      EXPECT_EQ(error.status, ExitStatus::kNothing);
      EXPECT_NE(std::string(error.what()).find("keep_last"), std::string::npos);
    }
    EXPECT_EQ(place.Read("search.cgi"), "program");
    place.Run(1);  // what is before the first index is none
  }
}

// The program and the template that a run brought belong to its index; those that the owner put
// there belong to the place.
TEST_P(Rollback, BringsBackWhatTheRunWroteAndLeavesWhatTheOwnerDid) {
  Place place(GetParam());
  fs::create_directory(place.index);
  WriteFile(place.index / "logs/searches.log", "a\n");
  WriteFile(place.index / "pictures.png", "old picture");
  WriteFile(place.index / "gone.html", "to be removed");
  place.Run(1, {{"search.cgi", "program 1"}, {"template.html", "1"}, {"style.css", "1"}});
  fs::permissions(place.index / "search.cgi", fs::perms(0755));
  place.Run(2, {{"search.cgi", "program 2"}, {"template.html", "2"}, {"new.css", "2"}});
  // The owner's changes since.
  fs::remove(place.index / "gone.html");
  WriteFile(place.index / "logs/searches.log", "a\nb\n");
  WriteFile(place.index / "logs/searches.log.1", "rotated");
  WriteFile(place.scratch.path() / "replacement", "the owner's");
  fs::rename(place.scratch.path() / "replacement", place.index / "template.html");
  WriteFile(place.scratch.path() / "replacement", "new picture");
  fs::rename(place.scratch.path() / "replacement", place.index / "pictures.png");

  for (const int pages : {1, 2, 1}) {
    SCOPED_TRACE(pages);
    EXPECT_EQ(place.RollBackPages(), pages);
    EXPECT_EQ(place.Pages(), pages);
    EXPECT_EQ(place.Read("search.cgi"), "program " + std::to_string(pages));
    EXPECT_EQ(place.Read("style.css"), "1");  // no run has replaced it
    EXPECT_EQ(place.Read("template.html"), "the owner's");
    EXPECT_EQ(place.Read("pictures.png"), "new picture");
    EXPECT_EQ(place.Read("logs/searches.log"), "a\nb\n");
    EXPECT_EQ(place.Read("logs/searches.log.1"), "rotated");
    EXPECT_FALSE(fs::exists(place.index / "gone.html"));
    if (pages == 1) {
      EXPECT_EQ(fs::status(place.index / "search.cgi").permissions(), fs::perms(0755));
    }
    place.later += kFormerSeconds;
  }
}

TEST_P(Rollback, ASearchThatHasBegunKeepsItsIndex) {
  const Place place(GetParam());
  place.Run(1);
  place.Run(2);
  IndexDirectory directory;
  OpenIndexDirectory(directory, place.index.string());
  place.RollBackPages();
  FileImage file;
  ASSERT_TRUE(file.Open(directory, "settings.vdat", false));
  EXPECT_NE(file.bytes().find("NumPages = 2"), std::string_view::npos);
}

TEST_P(Rollback, WaitsForNoOtherRun) {
  const Place place(GetParam());
  place.Run(1);
  place.Run(2);
  const IndexFolder running(place.index, place.System());
  try {
    place.RollBackPages();
    ADD_FAILURE() << "it did not see the other run";
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kBusy);
  }
  EXPECT_EQ(place.Pages(), 2);
}

TEST(RollbackOfAnExchangedFolder, BringsAnIndexBackThatWasRemoved) {
  const Place place(true);
  place.Run(1, {{"search.cgi", "program"}});
  place.Run(2);
  fs::remove_all(place.index);
  EXPECT_EQ(place.RollBackPages(), 1);
  EXPECT_EQ(place.Pages(), 1);
  EXPECT_EQ(place.Read("search.cgi"), "program");
}

// A run that is killed just before the last step leaves its index under the name of a former one.
TEST(RollbackOfAnExchangedFolder, PassesOverAnIndexThatWasNeverInPlace) {
  const Place place(true);
  place.Run(1);
  place.Run(2);
  PublishSystem system = place.System();
  fs::path left;
  system.exchange = [&](const fs::path& one, const fs::path&) {
    if (!fs::exists(one / "settings.vdat")) return 0;  // when it is tried whether it can be
    left = one;
    fs::copy(one, place.scratch.path() / "copy");
    return EIO;
  };
  try {
    IndexFolder folder(place.index, system);
    WriteFile(folder.fresh() / "settings.vdat", SettingsFileWith("NumPages = 3"));
    folder.Commit();
    ADD_FAILURE() << "it was put into place";
  } catch (const IndexError&) {
    // As the killed run would have left it.
    ASSERT_NE(left, fs::path());
    fs::rename(place.scratch.path() / "copy", left);
    SetTime(left, 0);
  }
  EXPECT_EQ(place.RollBackPages(), 1);
}

// Whether an index has been in place is told by its time, so that of the present one is a usual
// one.
TEST_P(Rollback, AnIndexInPlaceHasTheTimeOfThat) {
  const Place place(GetParam());
  place.Run(1);
  place.Run(2);
  const fs::path folder =
      GetParam() ? place.index : fs::canonical(place.index / ".generations/current");
  EXPECT_GT(fs::last_write_time(folder), fs::file_time_type::clock::now() - std::chrono::hours(1));
}

TEST(RollbackOfGenerations, PassesOverAnIndexThatWasNeverInPlace) {
  const Place place(false);
  fs::create_directory(place.index);
  place.Run(1);
  place.Run(2);
  WriteFile(place.index / ".generations/3/settings.vdat", SettingsFileWith("NumPages = 3"));
  SetTime(place.index / ".generations/3", 0);
  EXPECT_EQ(place.RollBackPages(), 1);
  EXPECT_EQ(place.RollBackPages(), 2);
}

}  // namespace
}  // namespace vela::indexer
