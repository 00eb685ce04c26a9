#include "indexer/config/options.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

ParsedOptions Parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "vela_index");
  return ParseOptions(static_cast<int>(arguments.size()), arguments.data());
}

TEST(Options, ReadsAll) {
  const ParsedOptions parsed =
      Parse({"--site",     "s",         "--base-url", "/",      "--out",           "o",
             "--template", "t",         "--language", "german", "--exclude",       "a",
             "--exclude",  "b*",        "--memory",   "8",      "--max-file-size", "3",
             "--quiet",    "--program", "p",          "--wait"});
  ASSERT_FALSE(parsed.exitStatus.has_value());
  EXPECT_EQ(parsed.options.site, "s");
  EXPECT_EQ(parsed.options.baseUrl, "/");
  EXPECT_EQ(parsed.options.out, "o");
  EXPECT_EQ(parsed.options.templateName, "t");
  EXPECT_EQ(parsed.options.language, "german");
  EXPECT_EQ(parsed.options.exclude, (std::vector<std::string>{"a", "b*"}));
  EXPECT_EQ(parsed.options.memoryMegabytes, 8u);
  EXPECT_EQ(parsed.options.maxFileMegabytes, 3u);
  EXPECT_TRUE(parsed.options.quiet);
  EXPECT_EQ(parsed.options.program, "p");
  EXPECT_TRUE(parsed.options.wait);
}

TEST(Options, ARollbackNeedsTheIndexAlone) {
  const ParsedOptions parsed = Parse({"--rollback", "--out", "o"});
  ASSERT_FALSE(parsed.exitStatus.has_value());
  EXPECT_TRUE(parsed.options.rollback);
  testing::internal::CaptureStderr();
  EXPECT_EQ(Parse({"--rollback"}).exitStatus, 2);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("Give the folder for the index"),
            std::string::npos);
}

TEST(Options, LinksAreCheckedWithAndWithoutAMode) {
  const struct {
    std::vector<const char*> given;
    const char* mode;
  } kCases[] = {{{}, ""},
                {{"--check-links"}, "tell"},
                {{"--check-links", "--quiet"}, "tell"},
                {{"--check-links=tell"}, "tell"},
                {{"--check-links=fail"}, "fail"}};
  for (const auto& c : kCases) {
    std::vector<const char*> arguments = {"--site", "s", "--base-url", "/", "--out", "o"};
    arguments.insert(arguments.end(), c.given.begin(), c.given.end());
    const ParsedOptions parsed = Parse(arguments);
    ASSERT_FALSE(parsed.exitStatus.has_value());
    EXPECT_EQ(parsed.options.checkLinks, c.mode);
  }
}

TEST(Options, TheFormOfAReportIsThatOfItsNameUnlessItIsGiven) {
  Options options;
  EXPECT_FALSE(WantsJsonReport(options));
  options.report = "a.jsonl";
  EXPECT_FALSE(WantsJsonReport(options));
  options.report = "a.json";
  EXPECT_TRUE(WantsJsonReport(options));
  options.reportFormat = "lines";
  EXPECT_FALSE(WantsJsonReport(options));
  options.report = "a.jsonl";
  options.reportFormat = "json";
  EXPECT_TRUE(WantsJsonReport(options));
}

TEST(Options, WhatIsGivenWinsOverTheConfigurationFile) {
  const support::ScratchDirectory scratch;
  const std::string file = (scratch.path() / "c.toml").string();
  WriteFile(file,
            "[site]\nfolder = \"/s\"\nbase_url = \"/\"\nout = \"/o\"\n"
            "exclude = [\"a\", \"b\"]\n[index]\nmemory = 8\nmax_file_size = 3\n");
  const ParsedOptions parsed =
      Parse({"--out", "given", "--config", file.c_str(), "--exclude", "c", "--memory", "9"});
  ASSERT_FALSE(parsed.exitStatus.has_value());
  EXPECT_EQ(parsed.options.site, "/s");
  EXPECT_EQ(parsed.options.out, "given");
  EXPECT_EQ(parsed.options.exclude, std::vector<std::string>{"c"});
  EXPECT_EQ(parsed.options.memoryMegabytes, 9u);
  EXPECT_EQ(parsed.options.maxFileMegabytes, 3u);
  EXPECT_EQ(parsed.options.language, "english");
}

TEST(Options, WhatIsMissingIsNamedWithItsKey) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(Parse({"--site", "s"}).exitStatus, 2);
  EXPECT_EQ(
      testing::internal::GetCapturedStderr(),
      "vela_index: Give the site's address: --base-url URL, or base_url in [site] of the file "
      "that --config names. Run with --help for more.\n");
}

TEST(Options, PagesComeFromOnePlace) {
  const struct {
    const char* what;
    std::vector<const char*> arguments;
    bool isGood;
    const char* baseUrl;
  } kCases[] = {
      {"a folder", {"--site", "s", "--base-url", "/"}, true, "/"},
      {"a crawl has its own address",
       {"--crawl", "HTTPS://X.example:8/a?b"},
       true,
       "https://x.example:8"},
      {"unless another is given", {"--crawl", "http://x.example", "--base-url", "/"}, true, "/"},
      {"a sitemap", {"--sitemap", "http://x.example/m.xml"}, true, "http://x.example"},
      {"both",
       {"--crawl", "http://x.example/", "--sitemap", "http://y.example/"},
       true,
       "http://x.example"},
      {"a list of files", {"--list", "-", "--site", "s", "--base-url", "/"}, true, "/"},
      {"a list of addresses", {"--list", "f", "--base-url", "/"}, true, "/"},
      {"archives",
       {"--warc", "a", "--warc", "b", "--base-url", "http://x.example/"},
       true,
       "http://x.example/"},
      {"nothing", {"--base-url", "/"}, false, ""},
      {"a list without the site's address", {"--list", "f"}, false, ""},
      {"a folder and a crawl", {"--site", "s", "--crawl", "http://x.example/"}, false, ""},
      {"a crawl and a list", {"--list", "f", "--crawl", "http://x.example/"}, false, ""},
      {"a crawl and an archive", {"--warc", "f", "--crawl", "http://x.example/"}, false, ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::vector<const char*> arguments = c.arguments;
    arguments.insert(arguments.end(), {"--out", "o"});
    testing::internal::CaptureStderr();
    const ParsedOptions parsed = Parse(arguments);
    EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), c.isGood);
    EXPECT_EQ(parsed.exitStatus.value_or(0), c.isGood ? 0 : 2);
    if (c.isGood) {
      EXPECT_EQ(parsed.options.baseUrl, c.baseUrl);
    }
  }
}

TEST(Options, WrongArgumentsEndWithStatus2) {
  const struct {
    const char* what;
    std::vector<const char*> arguments;
  } kCases[] = {
      {"nothing", {}},
      {"no base", {"--site", "s", "--out", "o"}},
      {"unknown option", {"--site", "s", "--base-url", "/", "--out", "o", "--wrong"}},
      {"no number", {"--site", "s", "--base-url", "/", "--out", "o", "--memory", "much"}},
      {"out of range", {"--site", "s", "--base-url", "/", "--out", "o", "--memory", "0"}},
      {"word without an option", {"--site", "s", "--base-url", "/", "--out", "o", "word"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    testing::internal::CaptureStderr();
    EXPECT_EQ(Parse(c.arguments).exitStatus, 2);
    EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("vela_index: "));
  }
}

TEST(Options, InitTakesNoOtherOption) {
  const support::ScratchDirectory scratch;
  const std::string file = (scratch.path() / "new.toml").string();
  testing::internal::CaptureStderr();
  EXPECT_EQ(Parse({"--init", file.c_str(), "--config", "x"}).exitStatus, 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "vela_index: --init writes an example and ends: it does not go with --config. Give "
            "--init alone, then change the file.\n");
  EXPECT_FALSE(std::filesystem::exists(file));
  testing::internal::CaptureStdout();
  EXPECT_EQ(Parse({"--init", file.c_str()}).exitStatus, 0);
  testing::internal::GetCapturedStdout();
  EXPECT_TRUE(std::filesystem::exists(file));
}

TEST(Options, HelpAndVersionEndWithStatus0) {
  for (const char* option : {"--help", "--version"}) {
    SCOPED_TRACE(option);
    testing::internal::CaptureStdout();
    EXPECT_EQ(Parse({option}).exitStatus, 0);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("vela_index"), std::string::npos);
  }
}

}  // namespace
}  // namespace vela::indexer
