#include "indexer/publish/search_program.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "indexer/publish/index_folder.h"
#include "indexer/report/index_error.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

TEST(InstallProgram, TakesThePlaceOfTheFormerProgram) {
  const support::ScratchDirectory scratch;
  const fs::path index = scratch.path() / "index";
  const std::string program = "new " + std::string(200000, 'x');
  WriteFile(scratch.path() / "program", program);
  fs::permissions(scratch.path() / "program", fs::perms::owner_read);
  fs::create_symlink("program", scratch.path() / "link");
  WriteFile(index / kSearchProgramName, "old");
  // Somebody runs the former one: nothing may be written to that file.
  fs::create_hard_link(index / kSearchProgramName, scratch.path() / "running");
  {
    IndexFolder folder(index);
    InstallProgram(scratch.path() / "link", folder.fresh());
    EXPECT_EQ(ReadFile(index / kSearchProgramName), "old");
    folder.Commit();
  }
  EXPECT_EQ(ReadFile(index / kSearchProgramName), program);
  EXPECT_EQ(fs::status(index / kSearchProgramName).permissions(), fs::perms(0755));
  EXPECT_EQ(ReadFile(scratch.path() / "running"), "old");
}

TEST(InstallProgram, RefusesWhatIsNoProgram) {
  const support::ScratchDirectory scratch;
  WriteFile(scratch.path() / "empty", "");
  ASSERT_EQ(mkfifo((scratch.path() / "pipe").c_str(), 0600), 0);
  const struct {
    const char* name;
    const char* why;
  } cases[] = {
      {"missing", "No such file or directory"},
      {"empty", "it is empty"},
      {"pipe", "it is no file"},
      {".", "it is no file"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string file = (scratch.path() / c.name).string();
    try {
      InstallProgram(file, scratch.path());
      ADD_FAILURE() << "installed";
    } catch (const IndexError& error) {
      EXPECT_EQ(std::string(error.what()),
                "Cannot use " + file + " for --program: " + c.why + ". Check the path.");
      EXPECT_EQ(error.status, ExitStatus::kFailed);
    }
    EXPECT_FALSE(fs::exists(scratch.path() / kSearchProgramName));
  }
}

}  // namespace
}  // namespace vela::indexer
