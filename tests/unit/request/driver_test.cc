// driver_test.cc: the run of one request, in one process with its tests.

#include "request/driver.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "request/search_context.h"
#include "support/failing_allocation.h"
#include "support/scratch_directory.h"
#include "unit/request/fake_request.h"
#include "unit/settings/language_lines.h"

namespace vela {
namespace {

class DriverTest : public testing::Test {
 protected:
  void SetUp() override { signal(SIGPIPE, SIG_IGN); }
  void TearDown() override { g_failAllocationNumber = 0; }

  void WriteFile(const std::string& name, const std::string& bytes) {
    std::ofstream(index_.path() / name, std::ios::binary) << bytes;
  }
  void WriteSettings(const std::string& more = "") {
    WriteFile("settings.vdat", LanguageLines() + more);
  }
  std::string programPath() const { return (index_.path() / "search.cgi").string(); }

  // Answers the request; `arguments` are those behind the program's path.
  int Run(const FakeRequest& request, std::vector<std::string> arguments = {},
          std::string program = "") {
    if (program.empty()) program = programPath();
    std::vector<const char*> all = {program.c_str()};
    for (const std::string& argument : arguments) all.push_back(argument.c_str());
    ctx_ = std::make_unique<SearchContext>();
    FILE* output = tmpfile();
    ctx_->response.descriptor = fileno(output);
    const int status = RunRequest(*ctx_, all, request.source());
    written_.clear();
    rewind(output);
    char piece[4096];
    for (size_t got; (got = fread(piece, 1, sizeof piece, output)) > 0;)
      written_.append(piece, got);
    fclose(output);
    return status;
  }

  static std::string CannotOpen(const std::string& directory) {
    return "Content-type: text/html\n\nUnable to open " + directory +
           "/settings.vdat.<br />Check file permissions and that file exists";
  }

  support::ScratchDirectory index_;
  std::unique_ptr<SearchContext> ctx_;
  std::string written_;
};

TEST_F(DriverTest, WithoutSettingsNoRequestIsRead) {
  const FakeRequest undecodable;  // has no method
  EXPECT_EQ(Run(undecodable), 0);
  EXPECT_EQ(written_, CannotOpen(index_.path().string()));
}

TEST_F(DriverTest, AnUndecodableRequestEndsWithOne) {
  WriteSettings();
  const FakeRequest request;
  EXPECT_EQ(Run(request), 1);
  EXPECT_EQ(written_, "Content-type: text/html\n\n<H3>Request method error</H3>\n");
}

TEST_F(DriverTest, AProgramPathWithoutSeparatorUsesTheWorkingDirectory) {
  const FakeRequest request("");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(index_.path());
  const std::string here = std::filesystem::current_path().string();
  EXPECT_EQ(Run(request, {}, "search.cgi"), 0);
  std::filesystem::current_path(before);
  EXPECT_EQ(written_, CannotOpen(here));
}

TEST_F(DriverTest, AProgramPathIsSplitAtTheLastBackslash) {
  const FakeRequest request("");
  EXPECT_EQ(Run(request, {}, "/nowhere\\b/search.cgi"), 0);
  EXPECT_EQ(written_, CannotOpen("/nowhere"));
}

TEST_F(DriverTest, TheSwitchNamesTheIndexDirectory) {
  const FakeRequest request("");
  EXPECT_EQ(Run(request, {"/I", "/nowhere/else"}), 0);
  EXPECT_EQ(written_, CannotOpen("/nowhere/else"));
  EXPECT_EQ(Run(request, {"/i", "/nowhere/else"}), 0);
  EXPECT_EQ(written_, CannotOpen("/nowhere/else"));
  EXPECT_EQ(Run(request, {"/I", std::string(260, 'd')}), 0);
  EXPECT_EQ(written_, CannotOpen(index_.path().string()));
}

TEST_F(DriverTest, AVisitorCannotChooseTheIndexDirectory) {
  for (const char* queryString : {"/I+/nowhere/else", "%2Fi+%2Fnowhere%2Felse"}) {
    SCOPED_TRACE(queryString);
    const FakeRequest request(queryString);
    const std::string letter = queryString[0] == '/' ? "/I" : "/i";
    EXPECT_EQ(Run(request, {letter, "/nowhere/else"}), 0);
    EXPECT_EQ(written_, CannotOpen(index_.path().string()));
  }
  // Not made of the query string: the site owner's.
  const FakeRequest request("a+b");
  EXPECT_EQ(Run(request, {"/I", "/nowhere/else"}), 0);
  EXPECT_EQ(written_, CannotOpen("/nowhere/else"));
}

TEST_F(DriverTest, SettingsThatMissATextEndTheRequest) {
  WriteFile("settings.vdat", LanguageLines(48));
  const FakeRequest request("vela_query=x&vela_xml=1");
  EXPECT_EQ(Run(request), 0);
  EXPECT_EQ(written_,
            "Error: Missing text in the settings.vdat file. Check that your VLANG file is valid if "
            "you have modified it.<br />\nContent-type: text/html\n\nUnable to load settings.vdat "
            "file.<br />The file appears to be invalid and may have been corrupted.");
}

TEST_F(DriverTest, TheLinkBackAddressIsTheProgramUnlessTheSettingsNameOne) {
  const FakeRequest request("");
  WriteSettings();
  EXPECT_EQ(Run(request), 0);
  EXPECT_EQ(View(ctx_->settings.LinkBackURL), "search.cgi");
  WriteSettings("LinkBackURL = \"page.html\"\n");
  EXPECT_EQ(Run(request), 0);
  EXPECT_EQ(View(ctx_->settings.LinkBackURL), "page.html");
}

TEST_F(DriverTest, TheOrderOfTheSettingsIsTheRequestsUnlessItNamesOne) {
  WriteSettings("DefaultSort = 2\n");
  EXPECT_EQ(Run(FakeRequest("vela_page=1")), 0);
  EXPECT_EQ(ctx_->request.sort, 2);
  EXPECT_EQ(Run(FakeRequest("vela_sort=1")), 0);
  EXPECT_EQ(ctx_->request.sort, 1);
}

TEST_F(DriverTest, ARequestIsReadFromABody) {
  WriteSettings();
  FakeRequest request;
  request.Post("vela_page=4&vela_per_page=20&z=");
  request.Set("SCRIPT_NAME", "/search/search.cgi");
  EXPECT_EQ(Run(request), 0);
  EXPECT_EQ(ctx_->request.page, 4);
  EXPECT_EQ(ctx_->request.perPage, 20);
  EXPECT_EQ(View(ctx_->paths.scriptUrl), "/search/search.cgi");
}

TEST_F(DriverTest, RequestDataIsReleasedAtTheEnd) {
  WriteSettings("UseCats = 1\nNumCats = 2\ncatnames\nA\nB\n");
  EXPECT_EQ(Run(FakeRequest("vela_cat=1&z=")), 0);
  EXPECT_TRUE(ctx_->request.catList.empty());
  EXPECT_EQ(ctx_->request.form.pairCount, 0);
}

TEST_F(DriverTest, ARequestForSuggestionsNeedsTheAutocompleteFileOnly) {
  WriteSettings("MaxKeyWordLineLen = 64\nToLowerSearchWords = 1\n");
  WriteFile("vela_autocomplete.vdat", "story time\nStorage\nother\n");
  EXPECT_EQ(Run(FakeRequest("vela_ac=1&vela_query=stor&z=")), 0);
  EXPECT_NE(written_.find("<a class=\"vela_ac_item\" href=\"#\" target=\"_self\">story time</a>"),
            std::string::npos);
  EXPECT_NE(written_.find("target=\"_self\">Storage</a>"), std::string::npos);
  EXPECT_EQ(written_.find("other"), std::string::npos);
  EXPECT_EQ(written_.find("Unable to open"), std::string::npos);
}

TEST_F(DriverTest, EveryFailedAllocationEndsTheRequestInOrder) {
  WriteSettings(
      "UseCats = 1\nNumCats = 2\ncatnames\nA\nB\nUseMetaFields = 1\nNumMetaFields = 1\n"
      "metafields\n2\nn\nl\ne\n0\n1\nv\n");
  WriteFile("search_template.html", "<html><!--VELA_SHOW_SEARCHBOX--></html>");
  const FakeRequest request("vela_query=a+%22b+c%22+-d&vela_cat=1&z=");
  for (int32_t failing = 1;; ++failing) {
    SCOPED_TRACE(failing);
    ASSERT_LT(failing, 10000);
    g_failAllocationNumber = failing;
    const int status = Run(request);
    const bool failed = g_failAllocationNumber == 0;
    EXPECT_EQ(written_.substr(0, 13), "Content-type:");
    // Only a form that cannot be decoded ends with 1.
    EXPECT_EQ(status, written_.find("<H3>Out-of-memory error</H3>") == std::string::npos ? 0 : 1);
    if (!failed) break;
  }
}

}  // namespace
}  // namespace vela
