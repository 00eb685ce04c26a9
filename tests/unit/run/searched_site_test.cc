// The search program's answers from indexes that the indexer wrote.
#include <gtest/gtest.h>

#include "indexer/config/config_file.h"
#include "support/indexer_site.h"
#include "support/run_program.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

// The program that is built beside the tests.
fs::path SearchProgram() {
  return fs::read_symlink("/proc/self/exe").parent_path() / "vela_search";
}

struct SearchedSite : TestSite {
  // Adds what vela_index.toml would say.
  void Configure(std::string_view toml) {
    ReadConfigText(toml, (scratch.path() / "vela_index.toml").string(), options);
  }
  // The whole answer; `query` as in an address.
  std::string Ask(const std::string& query) const {
    const support::Outcome outcome =
        support::RunProgram(SearchProgram(), support::GetRequest(index, query));
    EXPECT_EQ(outcome.exitStatus, 0) << support::DescribeEnd(outcome);
    return outcome.output;
  }
  // The names of the pages found, in their order.
  std::string Found(const std::string& query) const {
    const std::string answer = Ask("vela_xml=1&vela_query=" + query);
    EXPECT_EQ(answer.find("<vela:error>"), std::string::npos) << answer;
    std::string names;
    size_t at = answer.find("<item>");
    while ((at = answer.find("<link>https://x.example/", at)) != std::string::npos) {
      at += sizeof "<link>https://x.example/" - 1;
      names += answer.substr(at, answer.find("</link>", at) - at) + " ";
    }
    return names;
  }
};

// A query as a form sends it.
std::string Encoded(std::string_view query) {
  std::string text;
  char code[4];
  for (const char c : query) {
    snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
    text += code;
  }
  return text;
}

bool Holds(const std::string& text, std::string_view part) { return text.find(part) != text.npos; }

TEST(SearchedSite, AMisspelledWordGetsItsSuggestion) {
  SearchedSite site;
  site.Add("a.html", "<title>Library</title>Books about the language of bees.");
  site.Build();
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_literal=1&vela_query=langauge"),
                    "<vela:spelling>language</vela:spelling>"));
  EXPECT_TRUE(Holds(site.Ask("vela_query=bees+-libary+%22the+langauge%22"),
                    "vela_query=bees+%22the+language%22+-libary&amp;"));
  EXPECT_TRUE(Holds(site.Ask("vela_query=bees+-libary+%22the+langauge%22"),
                    ">bees &#34;the language&#34; -libary</a>"));
  EXPECT_FALSE(Holds(site.Ask("vela_xml=1&vela_query=lankage"), "<vela:spelling>"));
  EXPECT_FALSE(Holds(site.Ask("vela_xml=1&vela_query=language"), "<vela:spelling>"));
  // With the first letters of a tag nothing is written that is one.
  EXPECT_FALSE(Holds(site.Ask("vela_query=langauge+%22%3Cb%3E%22"), "<b>\""));
}

TEST(SearchedSite, ResultsOfACertainCorrectionAreShown) {
  SearchedSite site;
  site.Add("a.html", "<title>Functions</title>every function of the language");
  site.Add("b.html", "<title>More</title>one function more");
  site.Build();
  const std::string answer = site.Ask("vela_query=fucntion&vela_per_page=1&vela_sort=0");
  EXPECT_TRUE(Holds(answer, "Search results for: fucntion"));
  EXPECT_TRUE(Holds(
      answer,
      "<div class=\"suggestion\"><br />Nothing was found as it was typed. These are the results for"
      " <b>function</b>. Search for what was typed: <a href=\"search.cgi?vela_query=fucntion"
      "&amp;vela_per_page=1&amp;vela_and=0&amp;vela_sort=0&amp;vela_literal=1\">fucntion</a></"
      "div>"));
  EXPECT_FALSE(Holds(answer, "Did you mean"));
  // Further pages and other orders are of the corrected query.
  EXPECT_TRUE(Holds(answer, "vela_query=function&amp;vela_page=2&amp;"));
  EXPECT_FALSE(Holds(answer, "vela_query=fucntion&amp;vela_page"));
  EXPECT_EQ(site.Found("fucntion"), site.Found("function"));
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=fucntion"),
                    "<vela:corrected>function</vela:corrected>\n"));
  EXPECT_FALSE(Holds(site.Ask("vela_xml=1&vela_query=function"), "vela:corrected"));

  // Asked for to the letter, nothing is found, and the correction is offered.
  const std::string literal = site.Ask("vela_query=fucntion&vela_literal=1&vela_and=1");
  EXPECT_TRUE(Holds(literal, "Did you mean <a href=\"search.cgi?vela_query=function&amp;"));
  EXPECT_FALSE(Holds(literal, "These are the results for"));
  EXPECT_EQ(site.Found("fucntion&vela_literal=1"), "");
  // Its links ask for that again.
  EXPECT_TRUE(Holds(site.Ask("vela_query=fucntion+zebra&vela_literal=1&vela_and=1"),
                    "vela_per_page=10&amp;vela_literal=1&amp;vela_xml=0&amp;vela_and=0"));

  // What is found stays, and so does what has several readings or none.
  EXPECT_TRUE(Holds(site.Ask("vela_query=fucntion+more"), "Did you mean <a"));
  EXPECT_EQ(site.Found("fucntion+more&vela_and=1"), "b.html ");
  EXPECT_EQ(site.Found("fucntion+zebra"), "");

  site.Configure("[settings]\nShowCorrected = 0\n");
  site.Build();
  EXPECT_EQ(site.Found("fucntion"), "");
  EXPECT_TRUE(Holds(site.Ask("vela_query=fucntion"), "Did you mean <a"));
}

TEST(SearchedSite, ACorrectionThatFindsNothingEitherIsOnlyOffered) {
  SearchedSite site;
  site.Add("a.html", "<title>Functions</title>every function of the language");
  site.Build();
  const std::string answer = site.Ask("vela_query=fucntion+site:elsewhere");
  EXPECT_FALSE(Holds(answer, "These are the results for"));
  EXPECT_TRUE(
      Holds(answer, "Did you mean <a href=\"search.cgi?vela_query=function+site%3Aelsewhere"));
}

TEST(SearchedSite, AnOfferIsAWordWithStemmingToo) {
  SearchedSite site;
  site.Configure("[index]\nstemming = \"english\"\n");
  site.Add("a.html", "<title>Git</title>git rebase onto a branch");
  site.Build();
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=git+rebsae+onto"),
                    "<vela:spelling>git rebase onto</vela:spelling>"));
  site.Configure("[settings]\nSpellingDistance = 0\n");
  site.Build();
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=git+rebass+onto"),
                    "<vela:spelling>git rebase onto</vela:spelling>"));
  site.Configure("[search]\nextensions = false\n");
  site.Build();
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=git+rebass+onto"),
                    "<vela:spelling>git rebas onto</vela:spelling>"));
}

TEST(SearchedSite, SynonymsFindEachOther) {
  SearchedSite site;
  site.Configure("[[synonym]]\nwords = [\"e-mail\", \"Mail\", \"electronic letter\", \"post\"]\n");
  site.Add("a.html", "<title>One</title>send an e-mail");
  site.Add("b.html", "<title>Two</title>send mail today");
  site.Add("c.html", "<title>Three</title>an electronic letter");
  site.Add("d.html", "<title>Four</title>a letter, electronic or not");
  site.Add("e.html", "<title>Five</title>mail and e-mail and mail");
  site.Build();
  for (const char* word : {"mail", "e-mail", "electronic+letter&vela_and=1", "post"}) {
    SCOPED_TRACE(word);
    const std::string found = site.Found(word);
    for (const char* page : {"a.html ", "b.html ", "c.html ", "e.html "}) {
      EXPECT_TRUE(Holds(found, page)) << page;
    }
  }
  EXPECT_FALSE(Holds(site.Found("mail"), "d.html"));
  // One term, whichever of its words a page has, and however many.
  EXPECT_EQ(site.Found("send+post&vela_and=1").size(), sizeof "a.html b.html " - 1);
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=post"), "totalResults>4<"));
  // Also behind a term that counts for no page.
  EXPECT_EQ(site.Found("site:b.html+post"), "b.html ");
  // To the letter in phrases, patterns and exclusions.
  EXPECT_EQ(site.Found("%22send+mail%22"), "b.html ");
  EXPECT_EQ(site.Found("post*"), "");
  EXPECT_EQ(site.Found("send+-post").size(), sizeof "a.html b.html " - 1);
  // What was found is marked.
  EXPECT_TRUE(Holds(site.Ask("vela_query=post"), "<span class=\"highlight\">e-mail</span>"));
  EXPECT_TRUE(
      Holds(site.Ask("vela_query=post"), "<span class=\"highlight\">electronic letter</span>"));
  // No other spelling is offered for a term that is found.
  EXPECT_FALSE(Holds(site.Ask("vela_query=post"), "class=\"suggestion\""));
}

// What visitors type, each once found to go wrong.
TEST(SearchedSite, WhatVisitorsTypeFindsWhatTheyMean) {
  const std::string start = "<meta charset=utf-8><title>T</title><p>";
  SearchedSite site;
  site.Configure(
      "[settings]\nStopWords = \"what is a\"\n");  // the site is too small to show its own
  site.Add("conflict.html", start + "A merge conflict in a branch. HEAD~2 is older.");
  site.Add("force.html", start + "git push --force-with-lease");
  site.Add("merger.html", start + "The merger took a year. A triple conflict.");
  site.Add("tuple.html", start + "A tuple holds values.");
  site.Add("password.html", start + "\u30D1\u30B9\u30EF\u30FC\u30C9\u306E\u6697\u53F7\u5316");
  site.Add("network.html", start +
                               "\u65B0\u3057\u3044\u30CD\u30C3\u30C8\u30EF\u30FC\u30AF"
                               "\u8A2D\u5B9A\u3067\u3059");
  site.Add("software.html", start + "\u5B89\u88DD\u8EDF\u9AD4\u5305");
  site.Build();
  const struct {
    const char *query, *found;
  } kCases[] = {
      {"\u201Cmerge\u201D", "conflict.html "},
      {"\u00ABmerge\u00BB", "conflict.html "},
      {"merge\u2026", "conflict.html "},
      {"\u201Cmerge conflict\u201D", "conflict.html "},
      {"merge\u2013conflict", "conflict.html merger.html "},
      {"<branch>", "conflict.html "},
      {"merge;", "conflict.html "},
      {"HEAD~", "conflict.html "},
      {"--force-with-lease", "force.html "},
      {"merge?", "conflict.html "},
      {"what is a tuple?", "tuple.html "},
      {"\u30D1\u30B9\u30EF\u30FC\u30C9", "password.html "},
      {"\u6697\u53F7\u5316", "password.html "},
      {"\u30CD\u30C3\u30C8\u30EF\u30FC\u30AF\u8A2D\u5B9A", "network.html "},
      {"\u8EDF\u9AD4", "software.html "},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.query);
    EXPECT_EQ(site.Found(Encoded(c.query)), c.found);
  }
}

TEST(SearchedSite, KernelmodulIsFoundWithAndWithoutItsHyphen) {
  SearchedSite site;
  site.options.language = "german";
  for (const char* page : {"a.html", "b.html"}) {
    site.Add(page, std::string("<title>") + page + "</title>Das Kernelmodul wird geladen.");
  }
  for (const char* page : {"c.html", "d.html"}) {
    site.Add(page, std::string("<title>") + page + "</title>Ein Kernel-Modul ist neu.");
  }
  site.Build();
  // On as many pages as each other, by the number of the page.
  EXPECT_EQ(site.Found("kernelmodul&vela_sort=0"), "a.html b.html c.html d.html ");
  EXPECT_EQ(site.Found("kernel-modul&vela_sort=0").size(), 4 * sizeof "a.html");
}

// Not where "a", too short to be asked for, stood ahead of the pattern.
TEST(SearchedSite, WordsOfAPatternCountOnce) {
  SearchedSite site;
  site.Configure("[settings]\nMinWordLen = 2\n");
  site.Add("cats.html", "<title>C</title>cart cat catalogue");
  site.Add("both.html", "<title>B</title>a cat and the omega");
  site.Build();
  EXPECT_EQ(site.Found("a+ca*+omega&vela_and=1"), "both.html ");
}

TEST(SearchedSite, PassagesKeepTheSignsBetweenWords) {
  SearchedSite site;
  site.Add("a.html", "<meta charset=utf-8><title>A</title>Call split ('~', '\u2026') twice.");
  site.Build();
  EXPECT_TRUE(
      Holds(site.Ask("vela_xml=1&vela_query=split"), "(&#39;~&#39;,&#32;&#39;\u2026&#39;) twice"));
}

TEST(SearchedSite, CompoundsAreFoundHoweverTheyAreWritten) {
  SearchedSite site;
  site.Add("a.html", "<title>One</title>the filename of it; an f-string; write an e-mail");
  site.Add("b.html", "<title>Two</title>its file name; many f-strings; the email");
  site.Add("c.html", "<title>Three</title>every file name; filename; e-mail, email");
  site.Add("d.html", "<title>Four</title>a file with a name; f-string and f-strings");
  site.Build();
  EXPECT_EQ(site.Found("filename&vela_sort=0").size(), sizeof "a.html b.html c.html " - 1);
  EXPECT_FALSE(Holds(site.Found("filename"), "d.html"));
  EXPECT_EQ(site.Found("file+name&vela_and=1").size(), sizeof "a.html b.html c.html d.html " - 1);
  EXPECT_EQ(site.Found("email").size(), sizeof "a.html b.html c.html " - 1);
  EXPECT_EQ(site.Found("f-string").size(), sizeof "a.html b.html d.html " - 1);
  EXPECT_EQ(site.Found("%22file+name%22").size(), sizeof "b.html c.html " - 1);
  site.Configure("[search]\nextensions = false\n");
  site.Build();
  EXPECT_EQ(site.Found("filename").size(), sizeof "a.html c.html " - 1);
  EXPECT_FALSE(fs::exists(site.index / "vela_synonyms.vdat"));
  EXPECT_FALSE(Holds(site.Read("settings.vdat"), "Synonyms"));
}

TEST(SearchedSite, PartsOfGermanCompoundsAreFound) {
  SearchedSite site;
  site.Add("a.html", "<title>Eins</title>Das Kernelmodul im Kernel");
  site.Add("b.html", "<title>Zwei</title>Ein Kernelmodul, ein Modul");
  site.Add("c.html", "<title>Drei</title>Der Kernel und das Modul");
  site.Build();
  EXPECT_FALSE(Holds(site.Found("Modul"), "a.html"));
  site.options.language = "german";
  site.Build();
  const std::string found = site.Found("Modul");
  EXPECT_EQ(found.size(), sizeof "a.html b.html c.html " - 1);
  EXPECT_TRUE(found.ends_with("a.html ")) << found;  // it weighs less than the word itself
}

TEST(SearchedSite, DamagedSideFilesEndNoRequest) {
  SearchedSite site;
  site.Configure("[[synonym]]\nwords = [\"mail\", \"file name\"]\n");
  site.Add("a.html", "<title>One</title>mail of a file name with a filename");
  site.Add("b.html", "<title>Two</title>file name, filename");
  site.Build();
  for (const char* name : {"vela_synonyms.vdat", "vela_corrections.vdat"}) {
    SCOPED_TRACE(name);
    const std::string whole = site.Read(name);
    ASSERT_GT(whole.size(), 100u);
    const auto ask = [&](const std::string& bytes) {
      WriteFile(site.index / name, bytes);
      const std::string answer = site.Ask("vela_xml=1&vela_query=mail+filename+naem");
      EXPECT_TRUE(Holds(answer, "</rss>"));
    };
    for (size_t i = 0; i < whole.size(); i += 3) ask(whole.substr(0, i));
    for (size_t i = 0; i < whole.size(); ++i) {
      std::string changed = whole;
      changed[i] = static_cast<char>(~changed[i]);
      ask(changed);
    }
    WriteFile(site.index / name, whole);
  }
}

TEST(SearchedSite, AMisspelledWordThatSoundsAlikeGetsItsSuggestion) {
  SearchedSite site;
  site.Configure("[settings]\nSpellingDistance = 0\n");
  site.Add("a.html", "<title>Library</title>Books about the language of bees.");
  site.Build();
  // "lankage" sounds as "language" does: L, N, K, J. "langwich" does not: L, N, K, W, X.
  EXPECT_FALSE(Holds(site.Ask("vela_xml=1&vela_query=langwich"), "<vela:spelling>"));
  EXPECT_TRUE(
      Holds(site.Ask("vela_xml=1&vela_query=lankage"), "<vela:spelling>language</vela:spelling>"));
  EXPECT_TRUE(Holds(site.Ask("vela_query=lankage"), "vela_query=language"));
  EXPECT_FALSE(Holds(site.Ask("vela_xml=1&vela_query=language"), "<vela:spelling>"));
}

TEST(SearchedSite, XmlIsFoundByWhatItSays) {
  const SearchedSite site;
  site.Add("a.xhtml",
           "<html xmlns='http://www.w3.org/1999/xhtml'><head><script src='a.js'/></head>"
           "<body><p>caf&eacute; <![CDATA[x<y]]></p></body></html>");
  site.Add("b.xhtml", "<p>na&iuml;ve<br>open");
  const IndexSummary summary = site.Build();
  EXPECT_EQ(site.Found("caf%C3%A9"), "a.xhtml ");
  EXPECT_EQ(site.Found("y"), "a.xhtml ");
  EXPECT_EQ(site.Found("na%C3%AFve"), "b.xhtml ");
  ASSERT_EQ(summary.remarks.entries.size(), 1u);
  EXPECT_EQ(summary.remarks.entries[0].path, "b.xhtml");
  EXPECT_EQ(summary.remarks.entries[0].reason, Reason::kNotWellFormed);
  EXPECT_EQ(summary.remarks.entries[0].value, "line 1: no element found");
}

TEST(SearchedSite, TheBoxIsCompleted) {
  SearchedSite site;
  site.Add("a.html", "<title>Opening hours</title><h1>When we are open</h1>x");
  site.Add("b.html", "<title>\u00C9cole & \"art\"</title>x");
  site.Build();
  EXPECT_EQ(site.Ask("vela_ac=1&vela_query=Open"),
            "Content-type: text/html; charset=utf-8\n\n"
            "<div class=\"vela_ac_item\" onclick=\"VelaAutoComplete_UseSuggestion(&quot;Opening "
            "hours&quot;);\"><a class=\"vela_ac_item\" href=\"#\" target=\"_self\">Opening hours"
            "</a></div>\n"
            "<div class=\"vela_ac_item\" onclick=\"VelaAutoComplete_UseSuggestion(&quot;When we "
            "are open&quot;);\"><a class=\"vela_ac_item\" href=\"#\" target=\"_self\">When we are "
            "open</a></div>\n");
  // "ecole" is the word without its accent.
  EXPECT_TRUE(Holds(site.Ask("vela_ac=1&vela_query=eco"), ">\u00C9cole &#38; art</a>"));
  EXPECT_TRUE(Holds(site.Ask("vela_ac=1&vela_query=%C3%A9c"), ">\u00C9cole &#38; art</a>"));
  EXPECT_TRUE(Holds(site.Read("settings.vdat"), "UseAutoComplete = 1\n"));
}

TEST(SearchedSite, RecommendedPagesAreShown) {
  SearchedSite site;
  site.Configure("[recommended.pages]\n\"opening hours, caf\u00E9\" = \"visit/\"\n");
  site.Add("visit/index.html", "<title>Visit us</title>x");
  site.Add("a.html", "<title>Coffee</title>cafe");
  site.Build();
  for (const char* query : {"Opening+hours", "cafe", "caf%C3%A9+coffee"}) {
    SCOPED_TRACE(query);
    const std::string answer = site.Ask(std::string("vela_query=") + query);
    EXPECT_TRUE(Holds(answer, "<div class=\"recommended\">"));
    EXPECT_TRUE(Holds(answer,
                      "<div class=\"recommend_title\"><a href="
                      "\"https://x.example/visit/index.html\" >Visit us</a></div>"));
  }
  EXPECT_FALSE(Holds(site.Ask("vela_query=coffee"), "<div class=\"recommended\">"));
}

TEST(SearchedSite, WhatIsRecommendedMayLieElsewhere) {
  SearchedSite site;
  site.Configure(R"([[recommended.page]]
keywords = "buy"
address = "https://shop.example/?a=1&b=2"
title = "Shop \"A & B\" <i>"
text = "Books | more"
[[recommended.page]]
keywords = "visit"
address = "visit/"
text = "When we are open"
)");
  site.Add("visit/index.html", "<title>Visit us</title>words of a visit");
  const IndexSummary summary = site.Build();
  EXPECT_EQ(summary.pages, 1u);
  EXPECT_TRUE(summary.warnings.empty());
  EXPECT_TRUE(Holds(site.Ask("vela_query=buy"),
                    "<div class=\"recommend_title\"><a href="
                    "\"https://shop.example/?a=1&amp;b=2\" >Shop &#34;A &#38; B&#34; "
                    "&#60;i&#62;</a></div>\n"
                    "<div class=\"recommend_description\">Books &#124; more</div>\n"
                    "<div class=\"recommend_infoline\">https://shop.example/?a=1&amp;b=2</div>"));
  EXPECT_TRUE(Holds(site.Ask("vela_query=buy&vela_xml=1"),
                    "<vela:recommended>\n"
                    "<title>Shop &#34;A &#38; B&#34; &#60;i&#62;</title>\n"
                    "<link>https://shop.example/?a=1&amp;b=2</link>\n"
                    "<description>Books &#124; more</description>\n"
                    "</vela:recommended>\n"));
  for (const char* query : {"buy", "books", "shop.example"}) EXPECT_EQ(site.Found(query), "");
  EXPECT_EQ(site.Found("*"), "visit/index.html ");
  EXPECT_TRUE(Holds(site.Ask("vela_query=visit"), "recommend_description\">When we are open<"));
  EXPECT_EQ(site.Found("visit"), "visit/index.html ");
}

TEST(SearchedSite, FilesOfOneDayDateNoPage) {
  SearchedSite site;
  site.Add("old.html", "words", 800000000);  // 9 May 1995
  site.Add("dated.html", "<meta name=date content=2001-05-06>words");
  site.Add("a.html", "words");  // 9 September 2001, as the one before
  site.Configure("[index]\nfile_dates = \"auto\"\n");
  const IndexSummary summary = site.Build();
  ASSERT_EQ(summary.warnings.size(), 1u);
  EXPECT_EQ(summary.warnings[0].reason, Reason::kFileDatesShared);
  EXPECT_EQ(summary.warnings[0].subject, "2001-09-09");
  const std::string answer = site.Ask("vela_query=words");
  EXPECT_TRUE(Holds(answer, "<div class=\"infoline\">06 May 2001&nbsp; - &nbsp;"));
  for (const char* date : {"09 Sep 2001", "09 May 1995"}) EXPECT_FALSE(Holds(answer, date));

  site.Configure("[index]\nfile_dates = \"always\"\n");
  EXPECT_TRUE(site.Build().warnings.empty());
  const std::string trusting = site.Ask("vela_query=words");
  for (const char* date : {"06 May 2001", "09 Sep 2001", "09 May 1995"}) {
    EXPECT_TRUE(Holds(trusting, date)) << date;
  }
  site.Configure("[index]\nfile_dates = \"auto\"\n");
  site.Add("b.html", "words", 900000000);  // 9 July 1998: now the first day has half of the files
  EXPECT_TRUE(site.Build().warnings.empty());
  EXPECT_TRUE(Holds(site.Ask("vela_query=words"), "09 Jul 1998"));
}

// An owner knows a page by any of its addresses.
TEST(SearchedSite, RulesThatNameACopyMeanThePageKept) {
  SearchedSite site;
  const std::string text = "<title>Visit us</title>" + std::string(200, 'x') + " words";
  site.Configure(
      "[recommended.pages]\n\"equal\" = \"z.html\"\n\"folder\" = \"copies/\"\n"
      "\"named\" = \"old.html\"\n"
      "[[category]]\nname = \"First\"\npages = [\"z.html\"]\n"
      "[[category]]\nname = \"Second\"\npages = [\"copies/\"]\n"
      "[[category]]\nname = \"Third\"\npages = [\"old.html\"]\n"
      "[[category]]\nname = \"Other\"\npages = [\"other.html\"]\n");
  site.Add("copies/index.html", "<link rel=canonical href=/visit/>short");
  site.Add("old.html", "<link rel=canonical href=/copies/>short");
  site.Add("other.html", "other");
  site.Add("visit/index.html", text);
  site.Add("z.html", text);
  const IndexSummary summary = site.Build();
  EXPECT_EQ(summary.pages, 2u);
  EXPECT_TRUE(summary.warnings.empty());
  for (const char* query : {"equal", "folder", "named"}) {
    EXPECT_TRUE(Holds(site.Ask(std::string("vela_query=") + query),
                      "<div class=\"recommend_title\"><a href="
                      "\"https://x.example/visit/index.html\" >Visit us</a></div>"))
        << query;
  }
  EXPECT_TRUE(Holds(site.Ask("vela_query=words"),
                    "<span class=\"category\"> [First] [Second] [Third]</span>"));
  EXPECT_EQ(site.Found("words&vela_cat=2"), "visit/index.html ");
}

TEST(SearchedSite, AWordWithASharpSIsFoundHoweverItIsTyped) {
  SearchedSite site;
  site.Add("a.html", "<meta charset=utf-8><title>T</title>Die Gr\u00F6\u00DFe.");
  site.Build();
  for (const char* query : {"gr%C3%B6%C3%9Fe", "GR%C3%96SSE", "gr%C3%B6sse", "groesse", "Grosse"}) {
    EXPECT_EQ(site.Found(query), "a.html ") << query;
  }
}

TEST(SearchedSite, APhraseIsFoundAsItStandsOnThePage) {
  const struct {
    const char *text, *query;
  } kCases[] = {
      {"Opening hours (2026): Monday \u2013 Friday", "Opening hours (2026): Monday \u2013 Friday"},
      {"see (a), [b]; {c}", "see (a), [b]; {c}"},
      {"\u0442.\u0435. \u0442\u0430\u043A", "\u0442.\u0435. \u0442\u0430\u043A"},
      {"What\u2019s New in it", "What's New"},
      {"What's New in it", "What\u2019s New"},
      {"What\u2019s New in it", "What\u2019s New"},
      {"It ends here.", "It ends here."},
      {"and so on... until", "so on... until"},
      {"one - two", "one - two"},
      {"a heading\u00B6", "a heading\u00B6"},
      {"set x=1; then", "set x=1; then"},
      {"the \uFB01rst \uFF26\uFF35\uFF2C\uFF2C line", "first full line"},
      {"\u1F41 \u03BB\u03CC\u03B3\u03BF\u03C2 \u03BA\u03B1\u03AF",
       "\u039B\u038C\u0393\u039F\u03A3 \u039A\u0391\u038A"},
      {"def delete(d, n): d.rotate(-n)", "delete(d, n): d.rotate(-n)"},
      {"an old class (__metaclass__ and more)", "old class (__metaclass__"},
      {"new in x.__mro__: more", "in x.__mro"},
      {"may be (re-)enabled", "be (re-)enabled"},
      {"samples of 1-, 2-byte", "of 1-, 2-byte"},
      {"f(first, second, third, fourth, fifth)", "f(first, second, third, fourth, fifth)"},
      {"go \u2192 on \u2B07 down", "go \u2192 on \u2B07 down"},
      {"go \U0001F600 on", "go \U0001F600 on"},
      {"an area of 5m\u00B2 only", "of 5m2 only"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.query);
    SearchedSite site;
    site.Add("a.html", std::string("<meta charset=utf-8><title>T</title>") + c.text);
    site.Build();
    EXPECT_EQ(site.Found("%22" + Encoded(c.query) + "%22"), "a.html ");
  }
}

TEST(SearchedSite, APhraseIsFoundBehindManyOfItsFirstWord) {
  SearchedSite site;
  std::string text;
  for (int i = 0; i < 300; ++i) text += "the end of the list ";
  site.Add("a.html", "<title>T</title>" + text + "the bottom");
  site.Build();
  EXPECT_EQ(site.Found("%22the+bottom%22"), "a.html ");
}

TEST(SearchedSite, SignsBesideAWordDoNotHideIt) {
  const struct {
    const char *text, *query;
  } kCases[] = {
      {"Download\u2B07", "download"},
      {"\u2192next", "next"},
      {"Star\u2605", "star"},
      {"Great\U0001F600", "great"},
      {"Great\U0001F600", "Great\U0001F600"},
      {"Great!\U0001F600", "\U0001F600"},
      {"so great \U0001F600", "\U0001F600"},
      {"go\u27A1\uFE0F", "go\u27A1\uFE0F"},
      {"hi\U0001F44B\U0001F3FD", "hi"},
      {"1\uFE0F\u20E3", "1"},
      {"1\uFE0F\u20E3", "1\uFE0F\u20E3"},
      {"Word\u2122", "word"},
      {"\u20B9500", "500"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(std::string(c.text) + " by " + c.query);
    SearchedSite site;
    site.Add("a.html", std::string("<meta charset=utf-8><title>T</title>word ") + c.text);
    site.Build();
    EXPECT_EQ(site.Found(Encoded(c.query)), "a.html ");
    EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=word"), c.text));
  }
}

TEST(SearchedSite, CharactersThatStandForOthersAreFoundByThose) {
  const struct {
    const char *text, *query;
  } kCases[] = {
      {"\uFF76\uFF9E\uFF97\uFF7D", "\u30AC\u30E9\u30B9"},  // half-width katakana with its mark
      {"\uFF76\uFF9E\uFF97\uFF7D", "\uFF76\uFF9E\uFF97\uFF7D"},
      {"\u2460", "1"},
      {"H\u2082O", "h2o"},
      {"10\u2074", "104"},
      {"20\u2103", "20"},
      {"\u3314", "\u30AD\u30ED"},  // a unit in one character
      {"Part \u2163", "iv"},
      {"Part \u2163", "\u2163"},
      {"o\uFB03ce", "office"},
      {"\uFE8D\uFEDF", "\u0627\u0644"},  // Arabic letters in the form that printers use
      {"\u0627\u0644", "\uFE8D\uFEDF"},
      {"\uFE8D\uFEDF \uFEFB", "\"\u0627\u0644 \u0644\u0627\""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(std::string(c.text) + " by " + c.query);
    SearchedSite site;
    site.Add("a.html", std::string("<meta charset=utf-8><title>T</title>word ") + c.text);
    site.Build();
    EXPECT_EQ(site.Found(Encoded(c.query)), "a.html ");
    EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=word"), c.text));
  }
}

// One sentence each, longer than a word may be.
TEST(SearchedSite, WordsThatNoBlanksPartAreFound) {
  const struct {
    const char *text, *query;
  } kCases[] = {
      {"\u6771\u4EAC\u56F3\u66F8\u9928\u306F\u958B\u3044\u3066\u3044\u307E\u3059",
       "\u56F3\u66F8\u9928"},
      {"\u6771\u4EAC\u56F3\u66F8\u9928\u306F\u958B\u3044\u3066\u3044\u307E\u3059", "\u6771\u4EAC"},
      {"\u6771\u4EAC\u56F3\u66F8\u9928\u306F\u958B\u3044\u3066\u3044\u307E\u3059",
       "\u6771\u4EAC\u56F3\u66F8\u9928"},
      {"\u0E01\u0E23\u0E38\u0E07\u0E40\u0E17\u0E1E\u0E40\u0E1B\u0E47\u0E19\u0E40\u0E21\u0E37\u0E2D"
       "\u0E07\u0E2B\u0E25\u0E27\u0E07\u0E02\u0E2D\u0E07\u0E1B\u0E23\u0E30\u0E40\u0E17\u0E28\u0E44"
       "\u0E17\u0E22",  // Bangkok is the capital of Thailand
       "\u0E40\u0E21\u0E37\u0E2D\u0E07\u0E2B\u0E25\u0E27\u0E07"},
      {"\u0E01\u0E23\u0E38\u0E07\u0E40\u0E17\u0E1E\u0E40\u0E1B\u0E47\u0E19\u0E40\u0E21\u0E37\u0E2D"
       "\u0E07\u0E2B\u0E25\u0E27\u0E07\u0E02\u0E2D\u0E07\u0E1B\u0E23\u0E30\u0E40\u0E17\u0E28\u0E44"
       "\u0E17\u0E22",
       "\u0E1B\u0E23\u0E30\u0E40\u0E17\u0E28\u0E44\u0E17\u0E22"},
  };
  for (const auto& c : kCases) {
    for (const int times :
         {1, 20}) {  // as a short stretch, and as one that is longer than any word
      SCOPED_TRACE(std::string(c.text) + " by " + c.query);
      std::string text;
      for (int i = 0; i < times; ++i) text += c.text;
      SearchedSite site;
      site.Add("a.html", "<meta charset=utf-8><title>T</title>word " + text);
      site.Build();
      EXPECT_EQ(site.Found(Encoded(c.query)), "a.html ");
      // The passage is the page's own but for places where a line may break.
      std::string answer = site.Ask("vela_xml=1&vela_query=word");
      const std::string_view kBreak = "\u200B";
      for (size_t at; (at = answer.find(kBreak)) != answer.npos;) answer.erase(at, kBreak.size());
      EXPECT_TRUE(Holds(answer, c.text));
      EXPECT_EQ(site.Found(Encoded(text)), "a.html ");
    }
  }
}

// Five pieces: three of the four neighbours stand side by side on a.html, all pieces on c.html, but
// two of the neighbours, and b.html has four of them alone.
TEST(SearchedSite, ARunThatStandsNowhereIsFoundByItsPieces) {
  const std::string data = "\u30C7\u30FC\u30BF";
  const std::string change = "\u5909\u63DB";
  for (const int ranking : {0, 1}) {
    SCOPED_TRACE(ranking);
    SearchedSite site;
    site.Configure("[settings]\nRanking = " + std::to_string(ranking) + "\n");
    const std::string start = "<meta charset=utf-8><title>T</title><p>";
    site.Add("a.html", start + "x " + data + "\u30FC" + change);
    site.Add("b.html", start + data + "\u5909");
    site.Add("c.html", start + data + " y \u5909 y \u63DB");
    site.Build();
    EXPECT_EQ(site.Found(Encoded(data + change)), "a.html ");
    EXPECT_EQ(site.Found(Encoded("\"" + data + change + "\"")), "");
    EXPECT_EQ(site.Found("x+-" + Encoded(data + change)), "a.html ");  // excludes nothing
    // Found as it is: nothing else is.
    site.Add("d.html", start + data + change);
    site.Build();
    EXPECT_EQ(site.Found(Encoded(data + change)), "d.html ");
    // Of two pieces it takes both side by side.
    EXPECT_EQ(site.Found(Encoded("\u63DB\u5909")), "");
  }
}

TEST(SearchedSite, MoreThanEightCategories) {
  SearchedSite site;
  std::string toml;
  for (char c = 'a'; c <= 'j'; ++c) {
    toml +=
        std::string("[[category]]\nname = \"Part ") + c + " & more\"\npages = [\"" + c + "/*\"]\n";
  }
  site.Configure(toml + "[settings]\nSearchMultiCats = 1\n");
  for (char c = 'a'; c <= 'j'; ++c) {
    site.Add(std::string(1, c) + "/p.html", "<title>Page</title>word");
  }
  site.Add("top.html", "<title>Page</title>word");
  site.Build();
  EXPECT_EQ(site.Found("word&vela_cat[]=0"), "a/p.html ");
  EXPECT_EQ(site.Found("word&vela_cat[]=8"), "i/p.html ");
  EXPECT_EQ(site.Found("word&vela_cat[]=7&vela_cat[]=9"), "h/p.html j/p.html ");
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=word"), "<opensearch:totalResults>11<"));
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=word&vela_cat[]=9"),
                    "<category>Part j &#38; more</category>"));
}

TEST(SearchedSite, MetaFieldsOfEveryKindFilterAndAreShown) {
  SearchedSite site;
  site.Configure(R"([[field]]
name = "author"
[[field]]
name = "pages"
kind = "number"
compare = "at_least"
[[field]]
name = "price"
kind = "money"
compare = "at_most"
[[field]]
name = "level"
kind = "choice"
values = ["Easy", "Hard"]
[[field]]
name = "topic"
meta = "dc.subject"
kind = "choices"
compare = "all"
values = ["Art", "Sport", "Music"]
)");
  site.Add("a.html",
           "<title>A</title><meta name=author content=\"Ann O'Brien\"><meta name=pages content=100>"
           "<meta name=price content='$4.50'><meta name=Level content=hard>"
           "<meta name=dc.subject content='Art, Music'>word");
  site.Add("b.html",
           "<title>B</title><meta name=author content=Bob><meta name=pages content=99>"
           "<meta name=price content=4.51><meta name=level content=easy>"
           "<meta name=DC.Subject content=Music>word");
  site.Add("c.html", "<title>C</title>word");
  site.Build();
  EXPECT_EQ(site.Found("word&author=o%27br"), "a.html ");
  EXPECT_EQ(site.Found("word&pages=100"), "a.html ");
  EXPECT_EQ(site.Found("word&price=4.50"), "a.html ");
  EXPECT_EQ(site.Found("word&level=1"), "a.html ");
  EXPECT_EQ(site.Found("word&level=0"), "b.html ");
  EXPECT_EQ(site.Found("word&topic[]=2"), "a.html b.html ");
  EXPECT_EQ(site.Found("word&topic[]=0&topic[]=2"), "a.html ");
  EXPECT_EQ(site.Found("&level=1"), "a.html ");  // without a word
  const std::string answer = site.Ask("vela_xml=1&vela_query=word&level=1");
  for (const char* element :
       {"<vela:author>Ann O'Brien</vela:author>", "<vela:pages>100</vela:pages>",
        "<vela:price>&#36;4.50</vela:price>", "<vela:level>Hard</vela:level>"}) {
    SCOPED_TRACE(element);
    EXPECT_TRUE(Holds(answer, element));
  }
}

TEST(SearchedSite, NamesAndValuesOfFieldsMayBeWrittenInManyWays) {
  SearchedSite site;
  site.Configure(
      "[[field]]\nname = \"size\"\nmeta = \"Gr\u00F6\u00DFe\"\nkind = \"choice\"\n"
      "values = [\"Gro\u00DF\", \"\u00DCberGross\"]\n");
  site.Add("a.html",
           "<meta charset=utf-8><title>A</title>"
           "<meta name='GR\u00D6\u00DFE' content='U\u0308bergross'>word");
  site.Build();
  EXPECT_EQ(site.Found("word&size=1"), "a.html ");
  EXPECT_EQ(site.Found("word&size=0"), "");
}

TEST(SearchedSite, StemmingFindsInflections) {
  const struct {
    const char* language;
    const char* text;
    std::vector<const char*> queries;
  } kCases[] = {
      {"english",
       "The librarian was Running.",
       {"run", "runs", "running", "%22librarians+were%22"}},
      {"german", "Die H\u00E4user der Stadt", {"haus", "H%C3%A4usern", "hauses"}},
      {"french", "Elle chantait bien", {"chanter", "CHANTAIT"}},
      {"russian",
       "\u043D\u043E\u0432\u044B\u0435 \u043A\u043D\u0438\u0433\u0438",
       {"%D0%BA%D0%BD%D0%B8%D0%B3%D1%83"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.language);
    SearchedSite site;
    site.Configure(std::string("[index]\nstemming = \"") + c.language + "\"\n");
    site.Add("a.html", std::string("<meta charset=utf-8><title>T</title>") + c.text);
    site.Build();
    for (const char* query : c.queries) {
      SCOPED_TRACE(query);
      const bool isPhrase = std::string_view(query).starts_with("%22");
      // "were" and "was" have no stem in common.
      EXPECT_EQ(site.Found(query), isPhrase ? "" : "a.html ");
    }
  }
}

TEST(SearchedSite, PatternsMeetWholeWordsOfAStemmedIndex) {
  SearchedSite site;
  site.Configure("[index]\nstemming = \"english\"\n");
  site.Add("a.html", "<meta charset=utf-8><title>T</title>caf\u00E9s, e-books, na\u00EFve");
  site.Build();
  for (const char* query :
       {"cafes*", "books*", "naive*", "caf%C3%A9s*", "e-books*", "cafe", "book"}) {
    EXPECT_EQ(site.Found(query), "a.html ") << query;
  }
}

TEST(SearchedSite, StemmedPhrasesAndContextShowThePage) {
  SearchedSite site;
  site.Configure("[index]\nstemming = \"english\"\n");
  site.Add("a.html", "<title>T</title>We like Running races and c++.");
  site.Build();
  EXPECT_EQ(site.Found("%22run+race%22"), "a.html ");
  EXPECT_EQ(site.Found("c%2B%2B"), "a.html ");
  EXPECT_TRUE(Holds(site.Ask("vela_xml=1&vela_query=runs"), "Running races and c++."));
}

TEST(SearchedSite, AOneByteIndexComesOutRight) {
  SearchedSite site;
  site.Configure("[index]\ncharset = \"iso-8859-2\"\n[site]\nlanguage = \"polish\"\n");
  site.Add("a.html",
           "<meta charset=utf-8><title>\u0141\u00F3d\u017A & okolice</title>"
           "Miasto \u0141\u00D3D\u0179 ma caf\u00E9 \u0416 \u2013 naprawd\u0119.");
  site.Build();
  // In iso-8859-2: L with stroke A3/B3, o with acute D3/F3, z with acute AC/BC, e with ogonek EA.
  const std::string answer = site.Ask("vela_query=%A3%D3D%AC");
  EXPECT_TRUE(answer.starts_with("Content-type: text/html; charset=iso-8859-2\n\n"));
  EXPECT_TRUE(Holds(answer, ">\xA3\xF3\x64\xBC &#38; okolice<"));
  EXPECT_TRUE(Holds(answer, "caf\xE9 &#1046;&#32;&#8211; naprawd\xEA."));
  EXPECT_EQ(site.Found("%B3%F3d%BC"), "a.html ");
  EXPECT_EQ(site.Found("lodz"), "a.html ");
  EXPECT_EQ(site.Found("naprawd%EA"), "a.html ");
  EXPECT_EQ(site.Found("%22miasto+%B3%F3d%BC%22"), "a.html ");
  EXPECT_FALSE(Holds(answer, "meta charset=\"utf-8\""));
}

TEST(SearchedSite, DatesImagesAndBoosts) {
  SearchedSite site;
  site.Configure(
      "[[boost]]\npages = [\"b.html\"]\nfactor = 3\n"
      "[settings]\nDateRangeSearch = 1\n");
  site.Add("a.html",
           "<title>First</title><meta name=date content=2026-03-05>"
           "<meta property=og:image content=/i/a.png>word");
  site.Add("b.html", "<title>Second</title>word");
  site.Build();
  EXPECT_EQ(site.Found("word"), "b.html a.html ");  // alike but for the factor
  EXPECT_EQ(site.Found("word&vela_datefrom=5/3/2026&vela_dateto=5/3/2026"), "a.html ");
  const std::string answer = site.Ask("vela_xml=1&vela_query=word");
  EXPECT_TRUE(Holds(answer, "<vela:imageURL>https://x.example/i/a.png</vela:imageURL>"));
  EXPECT_TRUE(Holds(answer, "<pubDate>Thu, 05 Mar 2026 12:00:00 UTC</pubDate>"));
}

TEST(SearchedSite, FeedsLogsAndEmptyParameters) {
  SearchedSite site;
  site.Configure(
      "[search]\naddress = \"https://x.example/s/search.cgi\"\nname = \"X & Y\"\n"
      "[log]\nuse = true\n");
  site.Add("a.html", "<title>T</title>word");
  site.Build();
  // What remains of vela_opensearch.xml's template when a browser leaves the optional values out.
  const std::string answer = site.Ask("vela_query=word&vela_xml=1&vela_per_page=&vela_page=");
  EXPECT_TRUE(Holds(answer, "<title>X &#38; Y</title>"));
  EXPECT_TRUE(Holds(answer,
                    "<opensearch:link rel=\"search\" "
                    "href=\"https://x.example/s/vela_opensearch.xml\""));
  EXPECT_TRUE(Holds(answer, "<opensearch:totalResults>1<"));
  EXPECT_TRUE(Holds(answer, "<link>https://x.example/a.html</link>"));
  EXPECT_TRUE(fs::exists(site.index / "vela_opensearch.xml"));
  const std::string log = site.Read("logs/searchwords.log");
  EXPECT_TRUE(Holds(log, "\"word\", Matches = 1"));
  // A new index keeps the log, and drops the description that it has no address for.
  site.options.config = {};
  site.Build();
  EXPECT_EQ(site.Read("logs/searchwords.log"), log);
  EXPECT_FALSE(fs::exists(site.index / "vela_opensearch.xml"));
}

TEST(SearchedSite, EverythingAtOnceGivesTheSameBytes) {
  SearchedSite site;
  site.Configure(
      "[index]\nstemming = \"english\"\n[recommended.pages]\nword = \"a.html\"\n"
      "[[category]]\nname = \"A\"\npages = [\"a*\"]\n[[field]]\nname = \"author\"\n");
  for (char c = 'a'; c <= 'f'; ++c) {
    site.Add(std::string(1, c) + ".html",
             "<title>Story time</title><h2>Hours</h2>words of the story time here");
  }
  site.Build();
  std::vector<std::string> first;
  const std::vector<std::string> names = {
      "settings.vdat",      "vela_dictionary.vdat",   "vela_wordmap.vdat",
      "vela_pageinfo.vdat", "vela_pagedata.vdat",     "vela_pagetext.vdat",
      "vela_spelling.vdat", "vela_autocomplete.vdat", "vela_recommended.vdat"};
  first.reserve(names.size());
  for (const std::string& name : names) first.push_back(site.Read(name));
  EXPECT_EQ(site.Read("vela_autocomplete.vdat"), "Story time\nHours\n");
  site.Build();
  for (size_t i = 0; i < names.size(); ++i) {
    SCOPED_TRACE(names[i]);
    EXPECT_FALSE(first[i].empty());
    EXPECT_EQ(site.Read(names[i]), first[i]);
  }
}

}  // namespace
}  // namespace vela::indexer
