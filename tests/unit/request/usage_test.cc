// usage_test.cc: what the program says to a person, and never to a web server.

#include "request/usage.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace vela {
namespace {

const char* Nothing(const char*) { return nullptr; }
const char* AsCgi(const char* name) {
  return std::string_view(name) == "GATEWAY_INTERFACE" ? "CGI/1.1" : nullptr;
}
const char* AsRequest(const char* name) {
  return std::string_view(name) == "REQUEST_METHOD" ? "GET" : nullptr;
}

std::string_view TextFor(const std::vector<const char*>& arguments,
                         const char* (*environment)(const char*)) {
  return UsageText(arguments, {environment, 0});
}

TEST(Usage, HelpSaysWhatTheProgramIs) {
  const std::string_view text = TextFor({"search.cgi", "--help"}, Nothing);
  EXPECT_TRUE(text.starts_with("This is the search program of Vela Search."));
  EXPECT_TRUE(text.ends_with("\n"));
}

TEST(Usage, VersionIsOneLine) {
  const std::string_view text = TextFor({"search.cgi", "--version"}, Nothing);
  EXPECT_TRUE(text.starts_with("vela_search "));
  EXPECT_EQ(text.find('\n'), text.size() - 1);
}

TEST(Usage, ARequestNeverGetsIt) {
  for (const char* argument : {"--help", "--version"}) {
    EXPECT_EQ(TextFor({"search.cgi", argument}, AsCgi), "");
    EXPECT_EQ(TextFor({"search.cgi", argument}, AsRequest), "");
  }
}

TEST(Usage, OtherArgumentsAreTheSearchs) {
  EXPECT_EQ(TextFor({}, Nothing), "");
  EXPECT_EQ(TextFor({"search.cgi"}, Nothing), "");
  EXPECT_EQ(TextFor({"search.cgi", "/I"}, Nothing), "");
  EXPECT_EQ(TextFor({"search.cgi", "/I", "--help"}, Nothing), "");
  EXPECT_EQ(TextFor({"search.cgi", "--helpme"}, Nothing), "");
}

}  // namespace
}  // namespace vela
