#include "indexer/crawl/password_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "indexer/report/index_error.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(PasswordFile, HasALineForEachServer) {
  const Passwords passwords =
      ReadPasswords("# who\n\nX.example:443  me:se cret:1 \r\ny.example u:\n", "f");
  EXPECT_EQ(passwords, (Passwords{{"x.example:443", "me:se cret:1"}, {"y.example", "u:"}}));
}

TEST(PasswordFile, NamesTheLineAndNotItsContent) {
  for (const char* text : {"\nx.example secret", "\nhttp://x.example/ a:secret", "\nx.example"}) {
    try {
      ReadPasswords(text, "f");
      FAIL();
    } catch (const IndexError& error) {
      EXPECT_EQ(error.status, ExitStatus::kUsage);
      EXPECT_NE(std::string(error.what()).find("f, line 2"), std::string::npos);
      EXPECT_EQ(std::string(error.what()).find("a:secret"), std::string::npos);
    }
  }
}

TEST(PasswordFile, IsForItsOwnerAlone) {
  const TestSite site;
  const std::filesystem::path file = site.scratch.path() / "passwords";
  WriteFile(file, "x.example a:b\n");
  chmod(file.c_str(), 0640);
  EXPECT_THROW(ReadPasswordFile(file), IndexError);
  chmod(file.c_str(), 0600);
  EXPECT_EQ(ReadPasswordFile(file).size(), 1u);
}

}  // namespace
}  // namespace vela::indexer
