#include "output/search_log.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "support/loaded_site.h"
#include "support/recipe.h"

namespace vela {
namespace {

using support::CapturedResponse;
using support::DefineCategories;
using support::OpenDirectory;
using support::ReadWholeFile;
using support::Repeat;

// 5 March 2026, 09:04:07 UTC.
constexpr double kMoment = 1772701447.75;

// One log in a directory of its own, and the search of the example line.
struct Log {
  OpenDirectory site;
  Settings settings;
  SearchRequest request;
  SearchLogEntry entry;

  Log() {
    setenv("TZ", "UTC0", 1);
    tzset();
    Set(settings.LogFileName, "search.log");
    entry.endTime = kMoment;
    entry.seconds = 0.0421;
    entry.remoteAddress = "10.0.0.1";
    entry.query = "say \"hi\"";
    entry.matches = 3;
  }
  // What the page gets to show.
  std::string Write(bool xml = false) {
    CapturedResponse captured(xml);
    WriteSearchLog(captured.response, site.directory, settings, request, entry);
    return captured.Text();
  }
  std::string Text() const { return ReadWholeFile(site.scratch.path() / "search.log"); }
  std::string Line() {
    EXPECT_EQ(Write(), "");
    return Text();
  }
  bool Exists() const { return std::filesystem::exists(site.scratch.path() / "search.log"); }
};

constexpr char kStart[] = "2026-03-05, 09:04:07, 10.0.0.1, \"say \"\"hi\"\"\", Matches = 3";

TEST(SearchLog, ExampleLine) {
  Log log;
  EXPECT_EQ(log.Line(), std::string(kStart) +
                            ", OR, PerPage = 10, PageNum = 0, No cats, Time = 0.042, Rec = 0\r\n");
}

TEST(SearchLog, EveryChoice) {
  Log log;
  log.request.andMode = 1;
  log.request.perPage = 25;
  log.entry.page = 4;
  log.entry.recommended = 2;
  log.entry.seconds = 1.9996;
  EXPECT_EQ(log.Line(), std::string(kStart) +
                            ", AND, PerPage = 25, PageNum = 4, No cats, Time = 2.000, Rec = 2\r\n");
}

TEST(SearchLog, MatchAllIsTheFlagOfOne) {
  for (int32_t mode : {0, 2, -1}) {
    Log log;
    log.request.andMode = mode;
    EXPECT_NE(log.Line().find("Matches = 3, OR, "), std::string::npos);
  }
}

TEST(SearchLog, CategoriesTable) {
  const struct {
    const char* what;
    int32_t useCats;
    std::vector<int32_t> selected;
    const char* expected;
  } cases[] = {
      {"not in use", 0, {0}, ", No cats"},
      {"all", 1, {-1}, ", \"Cat = All\""},
      {"all comes first", 1, {-1, 2}, ", \"Cat = All\""},
      {"one", 1, {1}, ", \"Cat = He said \"no\"\""},  // quotes in names are not doubled
      {"in the order of the request", 1, {2, 0}, ", \"Cat = News; Help\""},
      {"any value but 0 is in use", 2, {0}, ", \"Cat = Help\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Log log;
    DefineCategories(log.settings, {"Help", "He said \"no\"", "News"});
    log.settings.UseCats = c.useCats;
    log.request.categories = c.selected;
    EXPECT_NE(log.Line().find(", PageNum = 0" + std::string(c.expected) + ", Time = 0.042"),
              std::string::npos)
        << log.Text();
  }
}

TEST(SearchLog, NamesOfManyCategoriesStandInFull) {
  Log log;
  const std::string name(94, 'n');
  DefineCategories(log.settings, std::vector<std::string>(200, name));
  log.settings.UseCats = 1;
  std::vector<int32_t> selected;
  std::string names;
  for (int32_t category = 0; category < 200; ++category) {
    selected.push_back(category);
    names += (category > 0 ? "; " : "") + name;
  }
  log.request.categories = selected;
  const std::string line = log.Line();
  const std::string expected = ", \"Cat = " + names + "\", Time = 0.042, Rec = 0\r\n";
  ASSERT_GT(line.size(), expected.size());
  EXPECT_EQ(line.substr(line.size() - expected.size()), expected);
}

TEST(SearchLog, LocalTime) {
  Log log;
  setenv("TZ", "EST5", 1);
  tzset();
  EXPECT_TRUE(log.Line().starts_with("2026-03-05, 04:04:07, "));
}

TEST(SearchLog, QueryWithItsQuotesDoubledTakesAtMost2084Bytes) {
  const struct {
    const char* what;
    size_t letters;
    size_t quotes;
    bool isLogged;
  } cases[] = {
      {"no quotes, full", 2084, 0, true},
      {"no quotes, one over", 2085, 0, false},
      {"one quote, full", 2082, 1, true},
      {"one quote, one over", 2083, 1, false},
      {"all quotes, full", 0, 1042, true},
      {"all quotes, over", 0, 1043, false},
      {"empty", 0, 0, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Log log;
    const std::string query = Repeat("a", c.letters) + Repeat("\"", c.quotes);
    log.entry.query = query;
    EXPECT_EQ(log.Write(), "");
    ASSERT_EQ(log.Exists(), c.isLogged);
    if (!c.isLogged) continue;
    EXPECT_EQ(log.Text(), "2026-03-05, 09:04:07, 10.0.0.1, \"" + Repeat("a", c.letters) +
                              Repeat("\"\"", c.quotes) +
                              "\", Matches = 3, OR, PerPage = 10, PageNum = 0, No cats, "
                              "Time = 0.042, Rec = 0\r\n");
  }
}

TEST(SearchLog, OneSearchIsOneLine) {
  Log log;
  log.entry.query = "a\r\nb\tc\x01\x7F\u00E9";
  EXPECT_EQ(log.Line(),
            "2026-03-05, 09:04:07, 10.0.0.1, \"a  b c  \u00E9\", Matches = 3, OR, PerPage = 10, "
            "PageNum = 0, No cats, Time = 0.042, Rec = 0\r\n");
}

TEST(SearchLog, LinesAreAppended) {
  Log log;
  log.site.Write("search.log", "older\r\n");
  EXPECT_EQ(log.Write(), "");
  EXPECT_EQ(log.Write(), "");
  const std::string line =
      std::string(kStart) + ", OR, PerPage = 10, PageNum = 0, No cats, Time = 0.042, Rec = 0\r\n";
  EXPECT_EQ(log.Text(), "older\r\n" + line + line);
}

TEST(SearchLog, NameStandsBelowTheIndexDirectory) {
  Log log;
  std::filesystem::create_directory(log.site.scratch.path() / "logs");
  Set(log.settings.LogFileName, "//logs//search.log");
  EXPECT_EQ(log.Write(), "");
  EXPECT_TRUE(std::filesystem::exists(log.site.scratch.path() / "logs" / "search.log"));
}

std::string NotFound(const std::string& cause, const std::string& name) {
  return cause + "Log filename and path not found (" + name +
         "). Check that you specified the correct log filename in your Indexer settings.<br />";
}

TEST(SearchLog, FileThatCannotBeOpened) {
  const struct {
    const char* what;
    const char* name;
    const char* cause;
  } cases[] = {
      {"no such folder", "none/search.log", "No such file or directory. "},
      {"a folder", "folder", "Unknown file error: 21. "},
      {"a file in a folder's place", "file/search.log", "Unknown file error: 20. "},
      {"a pipe that nobody reads", "pipe", "Unknown file error: 6. "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Log log;
    std::filesystem::create_directory(log.site.scratch.path() / "folder");
    log.site.Write("file", "");
    ASSERT_EQ(mkfifo((log.site.scratch.path() / "pipe").c_str(), 0600), 0);
    Set(log.settings.LogFileName, c.name);
    EXPECT_EQ(log.Write(), NotFound(c.cause, c.name));
    EXPECT_EQ(log.Write(true), "<vela:error>" + NotFound(c.cause, c.name) + "</vela:error>\n");
  }
}

TEST(SystemErrorMessage, Table) {
  const struct {
    int number;
    const char* expected;
  } cases[] = {
      {2, "No such file or directory. "},
      {9, "Bad file number. "},
      {12, "Not enough memory for operation. "},
      {13, "Permission denied. "},
      {17, "File exists. "},
      {18, "Cross device link. "},
      {22, "Invalid argument. "},
      {24, "Too many open files. "},
      {28, "No space left on device. "},
      {35, "Resource deadlock. "},
      {1, "Unknown file error: 1. "},
      {21, "Unknown file error: 21. "},
      {0, "Unknown file error: 0. "},
      {-1, "Unknown file error: -1. "},
      {INT32_MAX, "Unknown file error: 2147483647. "},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(View(SystemErrorMessage(c.number)), c.expected);
  }
}

}  // namespace
}  // namespace vela
