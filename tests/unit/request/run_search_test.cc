#include "request/run_search.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "request/search_context.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CaptureFile;
using support::IndexBuilder;
using support::NewPage;
using support::Repeat;
using support::ScratchDirectory;

// One whole search; the page shows the summary, then "title score;" for every result, then "end".
struct Search {
  ScratchDirectory scratch;
  CaptureFile file;
  SearchContext ctx;

  explicit Search(const IndexBuilder& builder) {
    builder.WriteTo(scratch.path());
    InitSearchContext(ctx);
    ctx.response.descriptor = file.descriptor();
    OpenIndexDirectory(ctx.directory, scratch.path().string());
    EXPECT_EQ(ReadSettingsFile(ctx.settings, ctx.directory), SettingsStatus::kOk);
    ctx.settings.VelaInfo = 0;
    EXPECT_TRUE(AllocateSections(ctx.output, 10));
    EXPECT_EQ(OpenIndexFiles(ctx.index, ctx.directory, ctx.settings).status, LoadStatus::kOk);
    EXPECT_EQ(ctx.dictionary.Load(ctx.directory, ctx.settings, ctx.index.lookup).status,
              DictionaryStatus::kOk);
  }
  std::string Run(const std::string& typed) {
    Set(ctx.query.typed, typed);
    EXPECT_TRUE(ParseQuery(ctx.query, ctx.settings));
    EXPECT_EQ(RunSearch(ctx), 0);
    EXPECT_TRUE(ctx.ended);
    return file.Text();
  }
};

std::string Found(const std::string& response) {
  std::string found;
  size_t at = 0;
  while ((at = response.find("\" >", at)) != response.npos) {
    at += 3;
    if (!found.empty()) found += " ";
    found += response.substr(at, response.find("</a>", at) - at);
    const size_t score = response.find("Score: ", at) + 7;
    found += "=" + response.substr(score, response.find('<', score) - score);
  }
  return found;
}

std::string SummaryOf(const std::string& response) {
  const size_t start = response.find("<div class=\"summary\">\n") + 22;
  return response.substr(start, response.find("<br />\n</div>", start) - start);
}

// Pages "A" to "D". red: A B C; oak: B C D; elm: A; tree: all but D; word 0 is reserved.
IndexBuilder Garden() {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4")
      .Set("DictReservedLimit", "0")
      .Set("MaxMatches", "1000")
      .Set("DisplayTitle", "1")
      .Set("DisplayScore", "1")
      .Set("ToLowerSearchWords", "1")
      .File("search_template.html", "<!--VELA_SHOW_SUMMARY--><!--VELA_SHOW_RESULTS-->end");
  for (const char* title : {"A", "B", "C", "D"}) {
    builder.Page(NewPage("http://a.example/" + std::string(title) + ".html", title));
  }
  builder.Word("&", {{0, 1, 0, 0}})
      .Word("red", {{0, 10, 0, 0}, {1, 20, 0, 0}, {2, 30, 0, 0}})
      .Word("oak", {{1, 10, 0, 0}, {2, 10, 0, 0}, {3, 40, 0, 0}})
      .Word("elm", {{0, 5, 0, 0}})
      .WordWithOffset("ash", "-1")
      .Word("tree", {{0, 8, 0, 0}, {1, 8, 0, 0}, {2, 8, 0, 0}});
  return builder;
}

using Keys = std::vector<std::pair<const char*, const char*>>;

TEST(RunSearch, SearchesTable) {
  // Without blocks in common the factor is 1.3 for one record and 1.3 for two; the relevance key
  // of a page with n records is (n - 1) * the largest score + its score.
  const struct {
    const char* what;
    const char* query;
    int32_t andMode;
    Keys settings;
    const char* found;
    const char* summary;
  } cases[] = {
      {"one word", "red", 0, {}, "C=39 B=26 A=13", "3 pages found. "},
      {"a word in upper case", "RED", 0, {}, "C=39 B=26 A=13", "3 pages found. "},
      {"no such word", "yew", 0, {}, "", "Found nothing."},
      {"no terms", "  ", 0, {}, "", "Found nothing."},
      // Scores A 10, B 30, C 40, D 40; the largest is 40: A 10, B 70, C 80, D 40.
      {"any of two words",
       "red oak",
       0,
       {},
       "C=104 B=91 D=52 A=13",
       "2 pages with all words. 2 pages with some words. "},
      {"both words", "red oak", 1, {}, "C=104 B=91", "2 pages with all words. "},
      {"an excluded word", "red -elm", 0, {}, "C=39 B=26", "2 pages with all words. "},
      // Exclusions are searched last.
      {"the excluded word first", "-elm red", 0, {}, "C=39 B=26", "2 pages with all words. "},
      // Scores B 28, C 38, the largest 38: keys B 66, C 76.
      {"an excluded word in AND mode",
       "-elm red tree",
       1,
       {},
       "C=99 B=86",
       "2 pages with all words. "},
      // Kept: "oak" stands on three pages, which counts the three of "red" down to none.
      {"an excluded word that counts everything down", "red -oak", 0, {}, "", "Found nothing."},
      {"only an excluded word", "-oak", 0, {}, "", "Found nothing."},
      {"an excluded word that is unknown", "elm -yew", 0, {}, "A=6", "1 page with all words. "},
      {"a word on no page is skipped",
       "ash",
       0,
       {},
       "",
       "Skipped: \"ash\"<br /><br />Found nothing."},
      {"a reserved word is not found", "&", 0, {{"WordJoinChars", "\"&\""}}, "", "Found nothing."},
      {"a short word is skipped",
       "red of",
       0,
       {{"MinWordLen", "3"}},
       "C=39 B=26 A=13",
       "Skipped: \"of\"<br /><br />3 pages with all words. "},
      {"a wildcard", "?ak", 0, {}, "D=52 B=13 C=13", "3 pages found. "},
      {"a restriction alone lists with score 1",
       "site:b.html",
       0,
       {{"WordJoinChars", "\".\""}},
       "B=1",
       "1 page found. "},
      {"a restriction that fits none", "url:nowhere", 0, {}, "", "Found nothing."},
      {"a restriction and a word",
       "oak site:d.html",
       0,
       {{"WordJoinChars", "\".\""}},
       "D=52",
       "1 page with all words. "},
      {"an excluded restriction restricts, too",
       "-site:b.html",
       0,
       {{"WordJoinChars", "\".\""}},
       "B=1",
       "1 page found. "},
      {"a restriction in AND mode",
       "site:c.html red oak",
       1,
       {{"WordJoinChars", "\".\""}},
       "C=104",
       "1 page with all words. "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    IndexBuilder builder = Garden();
    for (const auto& [key, value] : c.settings) builder.Set(key, value);
    Search search(builder);
    search.ctx.search.andMode = c.andMode;
    const std::string response = search.Run(c.query);
    EXPECT_EQ(Found(response), c.found);
    EXPECT_EQ(SummaryOf(response), c.summary);
    EXPECT_TRUE(response.ends_with("</div>\nend")) << response;
    EXPECT_EQ(search.ctx.exitStatus, 0);
  }
}

TEST(RunSearch, AndModeListsPagesWithAllWordsButTheSkippedOnes) {
  for (const char* query : {"of red oak", "red of oak", "red oak of"}) {
    SCOPED_TRACE(query);
    IndexBuilder builder = Garden();
    builder.Set("MinWordLen", "3");
    Search search(builder);
    search.ctx.search.andMode = 1;
    const std::string response = search.Run(query);
    EXPECT_EQ(Found(response), "C=104 B=91");
    EXPECT_EQ(SummaryOf(response), "Skipped: \"of\"<br /><br />2 pages with all words. ");
  }
}

TEST(RunSearch, QueryOfShortWordsNamesThem) {
  IndexBuilder builder = Garden();
  builder.Set("MinWordLen", "5");
  Search search(builder);
  const std::string response = search.Run("red -oak <b>");
  EXPECT_EQ(Found(response), "");
  EXPECT_EQ(SummaryOf(response),
            "Skipped: \"red\", \"&#60;b&#62;\", \"-oak\"<br /><br />Found nothing.");
}

TEST(RunSearch, WordWithoutPagesIsAskedForInAndMode) {
  Search search(Garden());
  search.ctx.search.andMode = 1;
  const std::string response = search.Run("red ash");
  EXPECT_EQ(Found(response), "");
  EXPECT_EQ(SummaryOf(response), "Skipped: \"ash\"<br /><br />Found nothing.");
}

TEST(RunSearch, SearchStoppedByItsLimitShowsTheWarning) {
  IndexBuilder builder = Garden();
  builder.Set("MaxMatches", "1");
  Search search(builder);
  const std::string response = search.Run("*r*");  // red, then tree is one too many
  EXPECT_EQ(Found(response), "C=39 B=26 A=13");
  EXPECT_EQ(SummaryOf(response), "Stopped early.<br /><br />Over 3 pages found. ");
}

TEST(RunSearch, SubstringSearch) {
  IndexBuilder builder = Garden();
  builder.Set("SearchAsSubstring", "1");
  Search search(builder);
  const std::string response = search.Run("lm");
  EXPECT_EQ(Found(response), "A=6");
}

TEST(RunSearch, DamagedWordMapEndsTheRequest) {
  const struct {
    const char* what;
    IndexBuilder builder;
    bool xml;
    const char* message;
  } cases[] = {
      {"a list behind the end", Garden().WordWithOffset("bad", "99999"), false,
       "Error in wordmap file: expected data not found."},
      {"a list behind the end, in xml", Garden().WordWithOffset("bad", "99999"), true,
       "<vela:error>Error in wordmap file: expected data not found.</vela:error>\n"},
      {"a page that is not there", Garden().Word("bad", {{4, 1, 0, 0}}), false,
       "Error in wordmap: page number is invalid."},
      {"a page that is not there, in xml", Garden().Word("bad", {{5, 1, 0, 0}}), true,
       "<vela:error>Error in wordmap: page number is invalid.</vela:error>\n"},
      {"a failed seek", Garden().WordWithOffset("bad", "-2"), false,
       "Error seeking in file. This CGI build does not support files larger than 2GB in size. "
       "Please contact Brantel for help."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Search search(c.builder);
    search.ctx.response.xml = c.xml;
    const std::string response = search.Run("bad");
    const std::string ending = c.xml ? "</channel>\n</rss>" : "<div class=\"results\">\nend";
    EXPECT_TRUE(response.ends_with(c.message + ending)) << response;
    EXPECT_EQ(search.ctx.exitStatus, 0);
  }
}

TEST(RunSearch, CategoryBeyondThePagesBytesEndsWithStatus1) {
  for (bool xml : {false, true}) {
    Search search(Garden());
    support::DefineCategories(search.ctx.settings, std::vector<std::string>(9, "name"));
    search.ctx.settings.NumCatBytes = 1;
    const int32_t selected[] = {8};
    search.ctx.search.categories = selected;
    search.ctx.response.xml = xml;
    const std::string response = search.Run("red");
    const std::string message = "Error: Category number is invalid. Incorrect settings file used?";
    EXPECT_NE(response.find(xml ? "<vela:error>" + message + "</vela:error>\n" : message),
              std::string::npos);
    EXPECT_EQ(search.ctx.exitStatus, 1);
  }
}

TEST(RunSearch, StemmingAlgorithm16EndsTheRequest) {
  IndexBuilder builder = Garden();
  builder.Set("UseStemming", "1").Set("StemmingAlgo", "16");
  Search search(builder);
  EXPECT_EQ(search.Run("red"), "Invalid stemming algorithm specified in settings file.<br />\nend");
}

// "new york" on pages A and D, "york new" on B, "new, york" on C; words 0 to 2 are reserved, and 0
// ends the text of a page.
IndexBuilder Cities(const char* maxContextSeeks) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4")
      .Set("DictReservedLimit", "2")
      .Set("MaxMatches", "1000")
      .Set("MaxContextSeeks", maxContextSeeks)
      .Set("AllowExactPhrase", "1")
      .Set("DisplayTitle", "1")
      .Set("DisplayScore", "1")
      .File("search_template.html", "<!--VELA_SHOW_SUMMARY--><!--VELA_SHOW_RESULTS-->end");
  for (const char* title : {"A", "B", "C", "D"}) {
    builder.Page(NewPage("http://a.example/" + std::string(title) + ".html", title));
  }
  builder.Word("&").Word("&").Word(",");
  builder.Word("new", {{0, 10, 0x80, 0}, {1, 10, 0x80, 16}, {2, 20, 0x80, 24}, {3, 30, 0x80, 40}});
  builder.Word("york", {{0, 5, 0x80, 4}, {1, 5, 0x80, 12}, {2, 5, 0x80, 32}, {3, 5, 0x80, 44}});
  builder.Tokens({{3}, {4}, {0}, {4}, {3}, {0}, {3}, {2}, {4}, {0}, {3}, {4}, {0}});
  return builder;
}

TEST(RunSearch, PhraseSearch) {
  Search search(Cities("10"));
  const std::string response = search.Run("\"new york\"");
  // The scores of both words: 35, 25 and 15, times 128 / 255 * 1.7 + 1.3.
  EXPECT_EQ(Found(response), "D=75 C=54 A=32");
  EXPECT_EQ(SummaryOf(response), "3 pages found. ");
}

TEST(RunSearch, PhraseSearchStoppedByItsSeeksShowsThePagesVerified) {
  Search search(Cities("2"));
  const std::string response = search.Run("\"new york\"");
  EXPECT_EQ(Found(response), "A=32");
  EXPECT_EQ(SummaryOf(response), "Stopped early.<br /><br />1 page found. ");
}

TEST(RunSearch, NoSeeksStopAtTheFirstCandidate) {
  Search search(Cities("0"));
  const std::string response = search.Run("\"new york\"");
  EXPECT_EQ(Found(response), "");
  EXPECT_EQ(SummaryOf(response), "Stopped early.<br /><br />Found nothing.");
}

TEST(RunSearch, PhraseWithAnUnknownWordFindsNothing) {
  Search search(Cities("10"));
  const std::string response = search.Run("\"new paris\"");
  EXPECT_EQ(Found(response), "");
  EXPECT_EQ(SummaryOf(response), "Found nothing.");
}

TEST(RunSearch, MetaFieldsAlone) {
  IndexBuilder builder = Garden();
  Search search(builder);
  support::DefineMetaFields(search.ctx.settings, {{"size", kMetaNumeric, "Size", 2}});
  search.ctx.search.metaOnly = true;
  const std::vector<MetaValue> values(1);
  search.ctx.search.metaValues = values;
  const std::string response = search.Run("");
  EXPECT_EQ(Found(response), "");  // a request that constrains nothing finds nothing
  EXPECT_EQ(SummaryOf(response), "Found nothing.");
}

TEST(RunSearch, LongestQuery) {
  Search search(Garden());
  const std::string response = search.Run(Repeat("red ", 521) + "x");
  // 521 times the three pages; every record beyond a score of 10000 would add 1.
  EXPECT_TRUE(response.ends_with("</div>\nend"));
  EXPECT_NE(response.find(">C</a>"), std::string::npos);
}

}  // namespace
}  // namespace vela
