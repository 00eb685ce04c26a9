#include "indexer/explain_page.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"
#include "indexer/source/page_store.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

struct ExplainedSite : TestSite {
  ExplainedSite() { options.config.suggestions = false; }

  Explanation Explain(const std::string& page) {
    options.explainPage = page;
    Progress progress(false);
    const volatile std::sig_atomic_t stop = 0;
    return ExplainPage(options, progress, stop);
  }
  std::string Outcome(const std::string& page) { return Explain(page).outcome; }
  // "TEXT" and "- DETAIL" of that label, a line each.
  std::string Said(const std::string& page, const std::string& label) {
    std::string lines;
    for (const ExplanationLine& line : Explain(page).lines) {
      if (line.label != label) continue;
      lines += line.text + "\n";
      for (const std::string& detail : line.details) lines += "- " + detail + "\n";
    }
    return lines;
  }
};

constexpr char kPlain[] = "<title>Plain</title><p>Some words to find.";

TEST(ExplainPage, TellsOfPagesByAnyOfTheirNames) {
  ExplainedSite site;
  site.Add("a/index.html", kPlain);
  site.Add("\xC3\xBC b.html", kPlain);
  const struct {
    std::string asked;
    const char* path;
  } kCases[] = {
      {"a/index.html", "a/index.html"},
      {"https://x.example/a/index.html", "a/index.html"},
      {"http://X.example/a/index.html#part", "a/index.html"},
      {"https://x.example/a/", "a/index.html"},
      {"/a/", "a/index.html"},
      {"/a/index.html?from=mail", "a/index.html"},
      {(site.folder / "a/index.html").string(), "a/index.html"},
      {"https://x.example/%C3%BC%20b.html", "\xC3\xBC b.html"},
      {"\xC3\xBC b.html", "\xC3\xBC b.html"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.asked);
    const Explanation explanation = site.Explain(c.asked);
    EXPECT_EQ(explanation.page, c.path);
    EXPECT_TRUE(explanation.isTaken);
  }
}

TEST(ExplainPage, SaysWhyAPageIsInNoList) {
  ExplainedSite site;
  site.Add("index.html", kPlain);
  site.Add("drafts/old/plan.html", kPlain);
  site.Add(".well-known/x.html", kPlain);
  site.Add("node_modules/x.html", kPlain);
  site.Add("robots.txt", "User-agent: *");
  site.Add("movie.mkv", "x");
  std::filesystem::create_symlink("index.html", site.folder / "link.html");
  std::filesystem::create_directory(site.folder / "folder.html");
  site.options.exclude = {"*.tmp.html", "drafts/"};
  const struct {
    const char* asked;
    const char* why;
  } kCases[] = {
      {"gone.html", "no such file"},
      {"/gone.html", "no such file"},
      {"drafts/old/plan.html", "excluded by the pattern \"drafts/\""},
      {".well-known/x.html", "\".well-known\" begins with a dot"},
      {"node_modules/x.html", "\"node_modules\" is no folder of pages"},
      {"robots.txt", "meant for robots"},
      {"movie.mkv", "of a kind that is not read (.mkv)"},
      {"link.html", "symbolic link (follow_links is off)"},
      {"folder.html", "not a regular file"},
      {"https://y.example/", "not below https://x.example/, the address of the site"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.asked);
    const Explanation explanation = site.Explain(c.asked);
    EXPECT_EQ(explanation.outcome, std::string("no page of the index: ") + c.why);
    EXPECT_FALSE(explanation.isTaken);
  }
}

TEST(ExplainPage, SaysWhyAPageIsLeftOut) {
  ExplainedSite site;
  std::string text = "<title>One</title><p>";
  for (int i = 0; i < 20; ++i) text += "The very same text. ";  // shorter ones are not compared
  site.Add("a.html", text);
  site.Add("b.html", text);
  site.Add("canonical.html", "<title>Two</title><link rel=canonical href=a.html><p>Other.");
  site.Add("noindex.html", "<title>No</title><meta name=robots content=noindex><p>Text.");
  site.Add("empty.html", "<div></div>");
  site.Add("refresh.html",
           "<title>Moved</title><meta http-equiv=refresh content='0; url=a.html'><p>Moved.");
  site.Add("binary.html", std::string("GIF89a\1\2\3\4\5\6\7\0", 14));
  site.Add("large.html", std::string((1 << 20) + 1, 'x'));
  site.options.maxFileMegabytes = 1;
  const struct {
    const char* page;
    const char* why;
  } kCases[] = {
      {"b.html", "copy of another page (the same text), https://x.example/a.html"},
      {"canonical.html", "copy of another page (canonical address), https://x.example/a.html"},
      {"noindex.html", "noindex"},
      {"empty.html", "no text"},
      {"refresh.html", "only leads on to another page (refresh)"},
      {"binary.html", "binary file"},
      {"large.html", "larger than the limit (--max-file-size)"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.page);
    const Explanation explanation = site.Explain(c.page);
    EXPECT_EQ(explanation.outcome, std::string("left out: ") + c.why);
    EXPECT_FALSE(explanation.isTaken);
  }
  EXPECT_EQ(site.Outcome("a.html"), "in the index as https://x.example/a.html");
  EXPECT_FALSE(std::filesystem::exists(site.index));
}

TEST(ExplainPage, SaysByWhatTheCharacterSetWasFound) {
  ExplainedSite site;
  site.Add("declared.html", "<meta charset=iso-8859-1><title>Caf\xE9</title>");
  site.Add("mark.html", "\xEF\xBB\xBF<title>Caf\xC3\xA9</title>");
  site.Add("valid.html", "<title>Caf\xC3\xA9</title>");
  site.Add("wide.html", std::string("<\0p\0>\0o\0k\0", 10));
  const std::pair<const char*, const char*> kCases[] = {
      {"declared.html", "windows-1252: the page says so\n"},
      {"mark.html", "utf-8: its byte-order mark says so\n"},
      {"valid.html", "utf-8: nothing else is said, and the bytes are valid as such\n"},
      {"wide.html", "UTF-16LE: the bytes are text as such\n"},
  };
  for (const auto& [page, said] : kCases) {
    SCOPED_TRACE(page);
    EXPECT_EQ(site.Said(page, "Characters"), said);
  }
}

TEST(ExplainPage, SaysWhereItsTextsAreFrom) {
  ExplainedSite site;
  site.Add("title.html", "<title>Hours - Library</title><h1>Open</h1><p>Text.");
  site.Add("heading.html", "<html lang=de><h1>Open</h1><p>Text.");
  site.Add("name.html", "<p>Text.<meta name=description content='Short.'>", 951782400);
  site.Add("dated.html", "<title>T</title><meta name=date content=2026-03-05><p>Text.");
  site.options.config.siteName = "Library";
  site.options.config.habits.names = {"Library"};
  site.options.config.dates = {DateSource::kMeta, DateSource::kTime, DateSource::kFile};
  EXPECT_EQ(site.Said("title.html", "Title"),
            "\"Hours\": its own title, where it is \"Hours - Library\" (site_name)\n");
  EXPECT_EQ(site.Said("heading.html", "Title"), "\"Open\": its first heading\n");
  EXPECT_EQ(site.Said("name.html", "Title"), "\"name.html\": the name of its file\n");
  EXPECT_EQ(site.Said("heading.html", "Language"), "de: the page says so\n");
  EXPECT_EQ(site.Said("title.html", "Language"),
            "the page names none (recognise_languages is off)\n");
  EXPECT_EQ(site.Said("name.html", "Description"), "\"Short.\": description\n");
  EXPECT_EQ(site.Said("name.html", "Date"), "2000-02-29 00:00 UTC: from its file (file)\n");
  EXPECT_EQ(site.Said("dated.html", "Date"),
            "2026-03-05 12:00 UTC: from what the page declares (meta)\n");
}

TEST(ExplainPage, SaysWhatOfThePageIsNoText) {
  ExplainedSite site;
  site.Add("page.html",
           "<title>T</title><a href='#c'>skip it</a><header>Site name</header>"
           "<nav class=top>Home <a href=x.html>News</a></nav><script>var one;</script>"
           "<main id=c>Kept text <img alt='a grey cat' src=c.png> more."
           "<div hidden>Never seen</div><div data-vela-ignore>Share this</div>"
           "<!-- vela:off -->Others read<!-- vela:on --></main><footer>Imprint</footer>");
  EXPECT_EQ(site.Said("page.html", "Not its text"),
            "13 words\n"
            "- 2 words: <a>, leads past what surrounds the content: \"skip it\"\n"
            "- 2 words: <header>, surrounds the content of the page: \"Site name\"\n"
            "- 2 words: <nav class=\"top\">, navigation: \"Home News\"\n"
            "- 2 words: <div>, hidden: \"Never seen\"\n"
            "- 2 words: <div>, data-vela-ignore: \"Share this\"\n"
            "- 2 words: between vela:off and vela:on: \"Others read\"\n"
            "- 1 word: <footer>, surrounds the content of the page: \"Imprint\"\n"
            "- 1 element <script>, no text for readers\n");
  EXPECT_EQ(site.Said("page.html", "Text"),
            "6 words\n"
            "- 3 words of the text: alternative texts of pictures\n"
            "- 1 word in the title\n"
            "- 0 words in the description\n"
            "- 1 word in the address\n");
  EXPECT_EQ(site.Said("page.html", "Words"),
            "7 different, with how often they occur\n"
            "- kept text a grey cat more t \n");
}

TEST(ExplainPage, SaysWhichWordsAreNotTaken) {
  ExplainedSite site;
  const std::string data(121, 'x');
  site.Add("page.html", "<title>T</title><p>short " + data + " end");
  EXPECT_EQ(site.Said("page.html", "Not taken"),
            "1\n- \"" + std::string(80, 'x') + "...\": longer than 120 bytes\n");
}

TEST(ExplainPage, SaysWhichLinksCount) {
  ExplainedSite site;
  site.Add("page.html",
           "<title>T</title><p>Text <a href=a.html>one</a> <a rel=nofollow href=b.html>two</a> "
           "<a href=https://y.example/>three</a> <a href=c.html></a>");
  EXPECT_EQ(site.Said("page.html", "Links"),
            "3 to pages of the site, 1 elsewhere\n"
            "- 2 texts of links count for the pages that they lead to, within the site\n"
            "- b.html: does not count, nofollow\n"
            "- c.html: does not count, no text\n");
}

TEST(ExplainPage, LooksAtWhatTheLastCrawlFetched) {
  ExplainedSite site;
  const std::filesystem::path state = site.scratch.path() / "state";
  std::filesystem::create_directory(state);
  {
    PageStore store(state / "vela_crawl.db");
    store.BeginPass("");
    const auto add = [&](const char* address) {
      return store.AddFound({.address = address, .origin = "https://x.example"})->id;
    };
    PageAnswer answer;
    answer.bytes = kPlain;
    answer.mediaType = "text/html";
    answer.charset = "utf-8";
    store.SettlePage(add("https://x.example/a"), answer);
    store.SettleLeftOut(add("https://x.example/b"), Reason::kRobotsRefused);
    store.Commit();
  }
  site.options.site.clear();
  site.options.crawl = {"https://x.example/"};
  site.options.state = state.string();
  site.options.crawlRules.exclude = {"calendar/*"};
  EXPECT_EQ(site.Outcome("/a"), "in the index as https://x.example/a");
  EXPECT_EQ(site.Said("/a", "Characters"), "utf-8: the server says so\n");
  EXPECT_EQ(site.Outcome("/b"), "no page of the index: robots.txt of its server does not allow it");
  EXPECT_EQ(site.Outcome("/calendar/1"),
            "no page of the index: excluded by the pattern \"calendar/*\"");
  EXPECT_EQ(site.Outcome("/c"), "no page of the index: no run has fetched such a page");
  site.options.state = (site.scratch.path() / "other").string();
  EXPECT_THROW(site.Outcome("/a"), IndexError);
  EXPECT_FALSE(std::filesystem::exists(site.options.state));
}

}  // namespace
}  // namespace vela::indexer
