#include "indexer/build_index.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <thread>

#include "format/word_map.h"
#include "index/byte_cursor.h"
#include "index/lookup_file.h"
#include "indexer/config/config_file.h"
#include "indexer/report/index_error.h"
#include "support/indexer_site.h"
#include "support/largest_allocation.h"
#include "text/stemmer.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

// The value of a number in the settings; -1 when it is not there.
int64_t Setting(const TestSite& site, const std::string& key) {
  const std::string settings = "\n" + site.Read("settings.vdat");
  const size_t at = settings.find("\n" + key + " = ");
  return at == settings.npos ? -1 : std::stoll(settings.substr(at + key.size() + 4));
}

// The dictionary behind its reserved entries.
std::string DictionaryWords(const TestSite& site) {
  const std::string dictionary = site.Read("vela_dictionary.vdat");
  size_t at = 0;
  for (int64_t i = 0; i <= Setting(site, "DictReservedLimit"); ++i)
    at = dictionary.find('\n', at) + 1;
  return dictionary.substr(at);
}

// The lookup file is made from the files as they are in the end, and so every one of them is used.
TEST(BuildIndex, TheLookupFileBelongsToAllFiles) {
  TestSite site;
  site.options.config.extensions = false;
  for (int i = 0; i < 3000; ++i) {
    site.Add("p" + std::to_string(i) + ".html", "<title>Cat " + std::to_string(i) + "</title>dog");
  }
  site.Build();
  LookupFile lookup;
  const std::string bytes = site.Read("vela_lookup.vdat");
  lookup.Open(bytes, static_cast<int32_t>(Setting(site, "LookupGeneration")));
  ASSERT_TRUE(lookup.isOpen());
  const LookupHeader& header = lookup.header();
  EXPECT_TRUE(IsFileOf(header.dictionary, site.Read("vela_dictionary.vdat")));
  EXPECT_TRUE(IsFileOf(header.spelling, site.Read("vela_spelling.vdat")));
  EXPECT_TRUE(IsFileOf(header.pageInfo, site.Read("vela_pageinfo.vdat")));
  EXPECT_TRUE(IsFileOf(header.autocomplete, site.Read("vela_autocomplete.vdat")));
  EXPECT_TRUE(IsFileOf(header.pageText, site.Read("vela_pagetext.vdat")));
  EXPECT_EQ(header.pages, 3000u);
  EXPECT_EQ(header.texts.count, 3001u);
  EXPECT_EQ(header.pageInfoLength, 17u);
  EXPECT_EQ(header.pagesWithoutBoost, 3000u);
}

// The pages of the word in line `number` of a dictionary without other spellings.
uint64_t PagesOf(const TestSite& site, uint64_t number) {
  std::istringstream lines(site.Read("vela_dictionary.vdat"));
  std::string line;
  for (uint64_t i = 0; i <= number; ++i) std::getline(lines, line);
  std::istringstream fields(line);
  std::string word;
  size_t offset = 0;
  fields >> word >> offset;
  return ReadLittleEndian(site.Read("vela_wordmap.vdat"), offset, kWordListCountWidth);
}

TEST(BuildIndex, TheLookupFileTellsOfPairsOfWordsOnManyPages) {
  TestSite site;
  site.options.config.extensions = false;
  for (int i = 0; i < 30; ++i) {
    std::string words = "all";
    if (i < 16) words += " few";
    if (i < 17) words += " enough";
    site.Add("p" + std::to_string(i) + ".html", "<title>one</title>" + words);
  }
  site.Build();
  LookupFile lookup;
  const std::string bytes = site.Read("vela_lookup.vdat");
  lookup.Open(bytes, static_cast<int32_t>(Setting(site, "LookupGeneration")));
  ASSERT_TRUE(lookup.isOpen());
  const uint64_t paired = lookup.header().pairedWords;
  ASSERT_LT(paired, lookup.header().words);
  EXPECT_EQ(PagesOf(site, paired - 1), 17u);
  EXPECT_EQ(PagesOf(site, paired), 16u);
}

TEST(BuildIndex, TheLookupFileCountsThePagesThatABoostLeaves) {
  TestSite site;
  for (const char* name : {"a.html", "b.html", "c.html"})
    site.Add(name, std::string(name) + " cat");
  site.options.config.boosts = {{{"b.*"}, 20, "x.toml, line 1"}, {{"c.*"}, 10, "x.toml, line 2"}};
  site.Build();
  LookupFile lookup;
  const std::string bytes = site.Read("vela_lookup.vdat");
  lookup.Open(bytes, static_cast<int32_t>(Setting(site, "LookupGeneration")));
  ASSERT_TRUE(lookup.isOpen());
  EXPECT_EQ(lookup.header().pagesWithoutBoost, 2u);
}

TEST(BuildIndex, StemsByTheLanguageOfMostPages) {
  const struct {
    const char* what;
    std::vector<const char*> languages;
    int64_t algorithm;  // -1: no stemming
    const char* stemming;
    const char* charset;
  } cases[] = {
      {"one language", {"de"}, kStemGerman, "german, as most pages are in that language", "utf-8"},
      {"that of most pages",
       {"en", "fr-CA", "fr", "", ""},
       kStemFrench,
       "french, as most pages are in that language",
       "utf-8"},
      {"the first by name of two", {"sv", "de"}, kStemGerman, "german, as most", "utf-8"},
      {"a language without stems", {"ja"}, -1, "off, as there is none for the language", "utf-8"},
      {"no language", {"", ""}, -1, "off, as no page tells its language", "utf-8"},
      {"a set without its letters", {"ru"}, -1, "off, as there is no russian for", "iso-8859-1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    TestSite site;
    site.options.config.stemming = kStemmingByPages;
    site.options.config.charset = c.charset;
    int number = 0;
    for (const char* language : c.languages) {
      const std::string lang = *language == '\0' ? "" : " lang="s + language;
      site.Add("p" + std::to_string(number++) + ".html", "<html" + lang + "><title>T</title>word");
    }
    const IndexSummary summary = site.Build();
    EXPECT_EQ(Setting(site, "UseStemming"), c.algorithm < 0 ? 0 : 1);
    EXPECT_EQ(Setting(site, "StemmingAlgo"), c.algorithm);
    EXPECT_EQ(summary.stemming.find(c.stemming), 0u) << summary.stemming;
    EXPECT_NE(SummaryText(summary, "", 1).find("Stemming: " + summary.stemming + ".\n"),
              std::string::npos);
  }
}

TEST(BuildIndex, StemsByTheFunctionWordsOfPagesThatNameNoLanguage) {
  std::string german;
  std::string few;
  for (int i = 0; i < 10; ++i) german += "<p>Der Hund und die Katze</p>";
  for (int i = 0; i < 9; ++i) few += "<p class='der und die'>der und</p>";
  for (const auto& [text, algorithm] :
       {std::pair{german, int64_t{kStemGerman}}, {few, int64_t{-1}}}) {
    TestSite site;
    site.options.config.stemming = kStemmingByPages;
    site.Add("a.html", "<html><title>T</title>" + text);
    site.Build();
    EXPECT_EQ(Setting(site, "StemmingAlgo"), algorithm);
  }
}

TEST(BuildIndex, WritesATinySite) {
  TestSite site;
  site.options.config.extensions = false;  // which have bytes of their own
  const std::string html = "<title>Cat</title><body>A cat, a dog.";
  site.Add("a.html", html, 0x3B9ACA00);
  const IndexSummary summary = site.Build();
  EXPECT_EQ(summary.pages, 1u);
  EXPECT_EQ(summary.words, 3u);
  EXPECT_EQ(summary.occurrences, 11u);

  // All three words are on one page: they stand in the order of their bytes. Their lists stand in
  // the order in which the words came: a, cat, dog, of one record each.
  EXPECT_EQ(DictionaryWords(site), "a 0 1\nA\ncat 14 1\nCat\ndog 28 0\n");

  // The entries 0 and 1 end a page and a run; 2 and 3 are "," and ".", as suffixes; the words are
  // 4, 5 and 6. The body, the title and the address.
  EXPECT_EQ(site.Read("vela_pagetext.vdat"),
            "\x04\x01"
            "\x05\0"
            "\x02\0"
            "\x04\0"
            "\x06\0"
            "\x03\0"
            "\x01\0"
            "\x05\x01"
            "\x01\0"
            "\x04\0"
            "\0\0"s);
  EXPECT_EQ(Setting(site, "DictIDLen"), 2);
  EXPECT_EQ(Setting(site, "DictReservedLimit"), 3);
  EXPECT_EQ(Setting(site, "DictReservedSuffixes"), 3);
  EXPECT_EQ(Setting(site, "DictReservedPrefixes"), 3);
  EXPECT_EQ(Setting(site, "DictReservedNoSpaces"), 3);

  // On the only page every word is as rare as can be. "a": twice in the text, 90 x 2 / (2 + 2), and
  // in the address, 40. "cat": 228 in a title, 19 more in a title of one word, and up to 8 for the
  // rest of the page, 90 x 1 / (1 + 2) of 100. "dog": 90 x 1 / (1 + 2).
  EXPECT_EQ(site.Read("vela_wordmap.vdat"),
            "\x01\0\0\0"
            "\x55\x80"
            "\0\0\0"
            "\0\0\0\0\0"  // 85, first block, page 0, position 0
            "\x01\0\0\0"
            "\xF9\x80"
            "\0\0\0"
            "\x02\0\0\0\0"  // 249, position 2
            "\x01\0\0\0"
            "\x1E\x80"
            "\0\0\0"
            "\x08\0\0\0\0"s);  // 30, position 8

  EXPECT_EQ(site.Read("vela_pagedata.vdat"), "https://x.example/a.html|Cat|||\n");
  EXPECT_EQ(site.Read("vela_pageinfo.vdat"),
            "\x11\0"
            "\0\0\0\0\0"
            "\x25\0\0\0"
            "\0\xCA\x9A\x3B"
            "\0\0"s);
  EXPECT_EQ(html.size(), 0x25u);
  EXPECT_EQ(Setting(site, "NumPages"), 1);
  EXPECT_EQ(Setting(site, "PageInfoSize"), 17);
  EXPECT_EQ(Setting(site, "NumKeywords"), 7);
  EXPECT_EQ(Setting(site, "NumVariants"), 2);
  EXPECT_EQ(Setting(site, "OutputVariantBufferSize"), 3 + 5);  // length byte, text, terminator
  // "(page)", "(run)", the signs, the words.
  EXPECT_EQ(Setting(site, "OutputBasewordBufferSize"), 7 + 6 + 2 * 2 + 2 + 4 + 4);

  const std::string settings = site.Read("settings.vdat");
  for (const char* line : {"UseUTF8 = 1\n", "Charset = \"utf-8\"\n", "WordJoinChars = \".-_\"\n",
                           "ToLowerSearchWords = 1\n", "LinkBackURL = \"search.cgi\"\n",
                           "STR_FORM_SUBMIT_BUTTON = \"", "DisplayContext = 1\n"}) {
    EXPECT_NE(settings.find(line), std::string::npos) << line;
  }
  EXPECT_NE(site.Read("search_template.html").find("<!--VELA"), std::string::npos);
}

TEST(BuildIndex, MoreCommonWordsComeFirst) {
  const TestSite site;
  site.Add("1.txt", "zebra rare common");
  site.Add("2.txt", "zebra common");
  site.Add("3.txt", "common");
  site.Build();
  const std::string words = DictionaryWords(site);
  EXPECT_LT(words.find("common "), words.find("zebra "));
  EXPECT_LT(words.find("zebra "), words.find("rare "));
}

// A site large enough that a megabyte does not hold its words.
void AddLargeSite(const TestSite& site) {
  for (int page = 0; page < 60; ++page) {
    std::string text = "<title>Page " + std::to_string(page) + "</title><p>";
    for (int word = 0; word < 3000; ++word) {
      text += "Word" + std::to_string((word * 37 + page * 101) % 20011) + ", w" +
              std::to_string(word % 97) + " ";
    }
    site.Add("p" + std::to_string(page) + ".html", text);
  }
}

TEST(BuildIndex, TheSameSiteGivesTheSameBytes) {
  TestSite site;
  AddLargeSite(site);
  site.Build();
  std::vector<std::string> first;
  for (const char* name : kIndexFiles) first.push_back(site.Read(name));
  site.Build();
  for (size_t i = 0; i < first.size(); ++i) {
    EXPECT_TRUE(site.Read(kIndexFiles[i]) == first[i]) << kIndexFiles[i];
  }
}

TEST(BuildIndex, LittleMemoryGivesTheSameBytes) {
  TestSite site;
  AddLargeSite(site);
  EXPECT_EQ(site.Build().runs, 0u);
  std::vector<std::string> first;
  for (const char* name : kIndexFiles) first.push_back(site.Read(name));
  site.options.memoryMegabytes = 1;
  EXPECT_GT(site.Build().runs, 1u);
  for (size_t i = 0; i < first.size(); ++i) {
    EXPECT_TRUE(site.Read(kIndexFiles[i]) == first[i]) << kIndexFiles[i];
  }
}

// What the files of the index hold, by their names.
std::map<std::string, std::string> IndexOf(const TestSite& site) {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry& file : fs::directory_iterator(site.index)) {
    files[file.path().filename().string()] = ReadFile(file.path());
  }
  return files;
}

TEST(BuildIndex, AnyNumberOfJobsGivesTheSameBytes) {
  TestSite site;
  AddLargeSite(site);
  // What depends on the order of the pages: copies, canonical addresses, equal pages, meta values.
  const std::string text = "<title>Same</title>" + std::string(300, 'x');
  for (int i = 0; i < 20; ++i) {
    const std::string name = "q" + std::to_string(i % 10) + (i < 10 ? "a" : "b") + ".html";
    const std::string other = text + " w" + std::to_string(i / 2) + "<meta name=price content=x" +
                              std::to_string(i) + ">";
    const std::string link = "<link rel=canonical href=p" + std::to_string(i) + ".html>";
    site.Add(name, i % 3 == 0 ? text : i % 3 == 1 ? other : other + link);
  }
  site.Add("empty.html", "");
  FieldRule price;
  price.name = price.meta = "price";
  price.kind = kMetaMoney;
  site.options.config.fields = {price};
  site.options.config.categories = {{"Q", {"q1"}}, {"P", {"p1"}}};
  site.options.config.extensions = true;
  site.options.report = (site.scratch.path() / "report").string();
  site.options.jobs = 1;
  const IndexSummary one = site.Build();
  const auto files = IndexOf(site);
  const std::string report = ReadFile(site.options.report);
  EXPECT_GT(one.files.groups.size(), 2u);
  EXPECT_GT(one.metaValues.total, 0u);
  for (const uint64_t jobs : {2U, 5U}) {
    for (const uint64_t memory : {1U, 256U}) {
      SCOPED_TRACE(std::to_string(jobs) + " jobs, " + std::to_string(memory) + " MB");
      site.options.jobs = jobs;
      site.options.memoryMegabytes = memory;
      site.Build();
      EXPECT_EQ(ReadFile(site.options.report), report);
      const auto again = IndexOf(site);
      ASSERT_EQ(again.size(), files.size());
      for (const auto& [name, content] : files) EXPECT_TRUE(again.at(name) == content) << name;
    }
  }
}

TEST(BuildIndex, SaysWhatItLeavesOut) {
  TestSite site;
  site.options.maxFileMegabytes = 1;
  site.Add("good.html", "text");
  site.Add("hidden.html", "<meta name=robots content=noindex>text");
  site.Add("empty.html", "<p> </p>");
  site.Add("large.html", std::string((size_t{1} << 20) + 1, 'x'));
  site.Add("binary.txt", std::string(100, '\x02'));
  const IndexSummary summary = site.Build();
  EXPECT_EQ(summary.pages, 1u);
  EXPECT_EQ(summary.files.total, 4u);
  const std::string text = SummaryText(summary, site.options.out, 1.5);
  for (const char* line :
       {"Indexed 1 page with 4 different words in 1.5 seconds.",
        "Left out 4 files:", "noindex: hidden.html", "no text: empty.html",
        "larger than the limit (--max-file-size): large.html", "binary file: binary.txt"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
  }
}

TEST(BuildIndex, TitlesComeFromWhatThereIs) {
  const TestSite site;
  site.Add("1.html", "<title> The  title </title><h1>Heading</h1>");
  site.Add("2.html", "<h2>Second</h2><h1>Main heading</h1>text");
  site.Add("3.html", "<p>Only text");
  site.Add("4.txt", "# First line\n\nText");
  site.Add("5.txt", std::string(200, 'x') + " long first line");
  site.Build();
  EXPECT_EQ(site.Read("vela_pagedata.vdat"),
            "https://x.example/1.html|The title|||\n"
            "https://x.example/2.html|Main heading|||\n"
            "https://x.example/3.html|3.html|||\n"
            "https://x.example/4.txt|First line|||\n"
            "https://x.example/5.txt|5.txt|||\n");
}

TEST(BuildIndex, HonoursCanonicalAddresses) {
  const TestSite site;
  site.Add("a.html", "<link rel=canonical href=a.html>own");
  site.Add("b.html", "<link rel=canonical href=/a.html>copy of a");
  site.Add("c.html", "<link rel=canonical href=https://elsewhere.example/c>original elsewhere");
  site.Add("d.html", "<link rel=canonical href=/pretty?x=1&y=2>pretty address");
  site.Add("e.html", "<link rel=canonical href=/pretty?x=1&y=2>its copy");
  site.Add("f.html", "<link rel=canonical href=file:///f>local");
  site.Add("g/h.html", "<base href=/other/><link rel=canonical href=i>based");
  const IndexSummary summary = site.Build();
  EXPECT_EQ(site.Read("vela_pagedata.vdat"),
            "https://x.example/a.html|a.html|||\n"
            "https://x.example/c.html|c.html|||\n"
            "https://x.example/pretty?x=1&amp;y=2|d.html|||\n"
            "https://x.example/f.html|f.html|||\n"
            "https://x.example/other/i|h.html|||\n");
  EXPECT_EQ(summary.files.groups.at({"", Reason::kCopy}).count, 2u);
}

TEST(BuildIndex, ACanonicalAddressMayBeSpelledInManyWays) {
  const TestSite site;
  site.Add("\u00DCber uns.html", "original");
  site.Add("bike's.html", "original too");
  site.Add("copy1.html", "<meta charset=utf-8><link rel=canonical href='/\u00DCber uns.html'>copy");
  site.Add("copy2.html", "<link rel=canonical href='/%c3%9cber%20uns.html'>copy");
  site.Add("copy3.html", "<link rel=canonical href=\"bike's.html\">copy");
  const IndexSummary summary = site.Build();
  EXPECT_EQ(summary.pages, 2u);
  EXPECT_EQ(summary.files.groups.at({"", Reason::kCopy}).count, 3u);
}

TEST(BuildIndex, OneOfPagesThatNameEachOtherStays) {
  const TestSite site;
  site.Add("a.html", "<link rel=canonical href=b.html>text");
  site.Add("b.html", "<link rel=canonical href=c.html>text");
  site.Add("c.html", "<link rel=canonical href=a.html>text");
  site.Add("d.html", "<link rel=canonical href=a.html>text");
  EXPECT_EQ(site.Build().pages, 1u);
  EXPECT_EQ(site.Read("vela_pagedata.vdat"), "https://x.example/c.html|c.html|||\n");
}

TEST(BuildIndex, ACanonicalAddressMayNameTheHostInAnotherWay) {
  const TestSite site;
  site.Add("a.html", "<link rel=canonical href=http://X.Example/a.html>own");
  site.Add("b.html", "<link rel=canonical href=http://x.example/a.html>copy");
  site.Add("c.html", "<link rel=canonical href=http://x.example/C>pretty");
  site.Build();
  EXPECT_EQ(site.Read("vela_pagedata.vdat"),
            "https://x.example/a.html|a.html|||\n"
            "https://x.example/C|c.html|||\n");
}

TEST(BuildIndex, TheLogHasItsFolder) {
  TestSite site;
  site.Add("a.html", "x");
  site.options.config.logging = true;
  site.options.config.logFile = "./logs/s.log";
  site.Build();
  EXPECT_TRUE(fs::is_directory(site.index / "logs"));
  WriteFile(site.index / "logs/s.log", "a line");
  site.options.config.logFile = "logs/deep/s.log";
  site.Build();
  EXPECT_TRUE(fs::is_directory(site.index / "logs/deep"));
  EXPECT_EQ(site.Read("logs/s.log"), "a line");
  site.options.config.logFile = "../logs/s.log";
  site.Build();
  EXPECT_FALSE(fs::exists(site.scratch.path() / "logs"));
}

TEST(BuildIndex, ASettingMustFitInItsCharacterSetToo) {
  TestSite site;
  site.Add("a.html", "x");
  site.options.config.charset = "iso-8859-1";
  std::string text;  // 600 letters of two bytes that become references of seven
  for (int i = 0; i < 600; ++i) text += "\u0416";
  site.options.config.settings["XMLDesc"] = {true, 0, text};
  EXPECT_THROW(site.Build(), IndexError);
}

TEST(BuildIndex, NoNameReachesTheTerminalAsACommand) {
  const TestSite site;
  site.Add("a.html", "x");
  site.Add("b\x1B[2J\n.html", "");
  const std::string text = SummaryText(site.Build(), site.options.out, 1);
  EXPECT_NE(text.find("no text: b?[2J?.html\n"), std::string::npos) << text;
}

TEST(BuildIndex, ACanonicalAddressDoesNotLeadOffTheSite) {
  TestSite site;
  site.options.baseUrl = "/";
  site.Add("a.html", "<link rel=canonical href='/.//evil.example/x.html'>text");
  site.Build();
  EXPECT_EQ(site.Read("vela_pagedata.vdat"), "/a.html|a.html|||\n");
}

TEST(BuildIndex, TellsOfRulesThatFitNoPage) {
  TestSite site;
  site.Add("news/a.html", "text");
  site.Add("b.html", "text");
  SiteConfig& config = site.options.config;
  config.categories = {{"News", {"news/*"}}, {"Nothing", {"none/*", "new/*"}}, {"All", {"*"}}};
  config.boosts = {{{"b.*"}, 20, "x.toml, line 1"},
                   {{"*.php"}, 20, "x.toml, line 2"},
                   {{"*b.html"}, 20, "x.toml, line 3"}};  // fits, if behind the first
  config.recommended = {{"word", "c.html", "x.toml, line 4"}};
  const IndexSummary summary = site.Build();
  const struct {
    Reason reason;
    const char* text;
  } kExpected[] = {
      {Reason::kUnusedCategory, "the category \"Nothing\" fits no page"},
      {Reason::kUnusedBoost, "x.toml, line 2: this [[boost]] fits no page"},
      {Reason::kNoPageToRecommend, "x.toml, line 4: there is no page c.html to recommend"},
  };
  ASSERT_EQ(summary.warnings.size(), std::size(kExpected));
  for (size_t i = 0; i < std::size(kExpected); ++i) {
    EXPECT_EQ(summary.warnings[i].reason, kExpected[i].reason);
    EXPECT_EQ(FindingText(summary.warnings[i]), kExpected[i].text);
  }
}

TEST(BuildIndex, TakesWhatTheOwnerCallsContent) {
  TestSite site;
  ReadConfigText(R"([index]
exclude_elements = [".ad", ".never"]
[[content]]
pages = ["shop/*"]
only_elements = ["#goods"]
[[content]]
pages = ["gone/*"]
)",
                 "/owner/x.toml", site.options);
  site.Add("a.html", "<p>one<p class=ad>two<p data-vela-ignore>three");
  site.Add("b.html", "four<!-- vela:off -->five");
  site.Add("shop/c.html", "<p>six</p><div id=goods>seven<p class=ad>eight</div>");
  site.Add("shop/d.html", "nine");
  const IndexSummary summary = site.Build();
  for (const char* word : {"one", "four", "seven", "nine"}) {
    EXPECT_NE(DictionaryWords(site).find(word), std::string::npos) << word;
  }
  for (const char* word : {"two", "three", "five", "six", "eight"}) {
    EXPECT_EQ(DictionaryWords(site).find(word), std::string::npos) << word;
  }
  EXPECT_EQ(summary.content.excluded, 4u);
  EXPECT_EQ(summary.content.excludingPages, 3u);
  EXPECT_EQ(summary.content.chosenPages, 1u);
  ASSERT_EQ(summary.remarks.entries.size(), 2u);
  EXPECT_EQ(summary.remarks.entries[0].reason, Reason::kLeftOff);
  EXPECT_EQ(summary.remarks.entries[0].path, "b.html");
  EXPECT_EQ(summary.remarks.entries[1].reason, Reason::kNothingChosen);
  EXPECT_EQ(summary.remarks.entries[1].path, "shop/d.html");
  ASSERT_EQ(summary.warnings.size(), 2u);
  EXPECT_EQ(FindingText(summary.warnings[0]),
            "/owner/x.toml, line 6: this [[content]] holds for no page");
  EXPECT_EQ(FindingText(summary.warnings[1]),
            "the selector \".never\" fits nothing that is content otherwise");
}

TEST(BuildIndex, SectionsOfLongPagesAreResultsOnRequest) {
  TestSite site;
  ReadConfigText(
      "[index]\nsection_pages = 60\n[[category]]\nname = \"All\"\npages = [\"a.html\"]\n",
      "/owner/x.toml", site.options);
  std::string text;
  for (int i = 0; i < 40; ++i) text += "word ";
  site.Add("a.html", "<title>Manual</title><p>intro<h2 id=knots>Knots</h2><p>" + text +
                         "rope<h2 id='l&ouml;we'>Sails</h2><p>" + text + "mast");
  site.Add("b.html", "<title>Short</title><h2 id=x>Rope</h2>");
  const IndexSummary summary = site.Build();
  EXPECT_EQ(summary.pages, 4u);
  EXPECT_EQ(summary.sectionPages, 2u);
  EXPECT_TRUE(summary.warnings.empty());
  EXPECT_EQ(site.Read("vela_pagedata.vdat"),
            "https://x.example/a.html|Manual|||\n"
            "https://x.example/a.html#knots|Knots - Manual|||\n"
            "https://x.example/a.html#l%C3%B6we|Sails - Manual|||\n"
            "https://x.example/b.html|Short|||\n");
}

TEST(BuildIndex, LeavesOutAnAddressThatNoResultCanCarry) {
  const TestSite site;
  site.Add("a.html", "text");
  std::string folder;
  for (int i = 0; i < 12; ++i) folder += std::string(200, 'x') + "/";
  site.Add(folder + "b.html", "text");
  const IndexSummary summary = site.Build();
  EXPECT_EQ(summary.pages, 1u);
  EXPECT_EQ(summary.files.groups.at({"", Reason::kAddressTooLong}).count, 1u);
}

TEST(BuildIndex, NothingStoredCanBecomeMarkup) {
  const TestSite site;
  site.Add("a.html",
           "<title>&lt;script&gt;alert(1)&lt;/script&gt; | \"x\"</title>"
           "<meta name=description content=\"<img src=x onerror='y'> | &\">"
           "<p>&lt;script&gt;alert(1)&lt;/script&gt; a&lt;b x&amp;y 'q' \"r\" &amp;lt; "
           "&lt;!--VELASEARCH-->");
  site.Build();
  for (const char* name : {"vela_dictionary.vdat", "vela_pagedata.vdat"}) {
    const std::string content = site.Read(name);
    EXPECT_EQ(content.find_first_of("<>\"'"), std::string::npos) << name;
    for (size_t at = content.find('&'); at != content.npos; at = content.find('&', at + 1)) {
      EXPECT_EQ(content[at + 1], '#') << name;
    }
  }
  const std::string line = site.Read("vela_pagedata.vdat");
  EXPECT_EQ(std::count(line.begin(), line.end(), '|'), 4);
}

TEST(BuildIndex, KeepsTheOldIndexWhenNothingIsFound) {
  const TestSite site;
  site.Add("a.html", "<meta name=robots content=none>x");
  WriteFile(site.index / "settings.vdat", "old");
  try {
    site.Build();
    FAIL();
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kNothing);
    EXPECT_NE(std::string(error.what()).find("noindex"), std::string::npos);
  }
  EXPECT_EQ(site.Read("settings.vdat"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(site.scratch.path()), fs::directory_iterator()),
            2);
}

TEST(BuildIndex, KeepsTheOldIndexWhenStopped) {
  const TestSite site;
  site.Add("a.html", "x");
  WriteFile(site.index / "settings.vdat", "old");
  Progress progress(false);
  const volatile std::sig_atomic_t stop = 1;
  try {
    BuildIndex(site.options, progress, stop);
    FAIL();
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kInterrupted);
  }
  EXPECT_EQ(site.Read("settings.vdat"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(site.scratch.path()), fs::directory_iterator()),
            2);
}

// Were the page read to its end, the run would end for having found nothing.
TEST(BuildIndex, AStopReachesIntoAPage) {
  TestSite site;
  site.options.maxFileMegabytes = 100;
  std::string markup;
  for (int i = 0; i < 4000000; ++i) markup += "<b></b>";
  site.Add("a.html", markup);
  Progress progress(false);
  volatile std::sig_atomic_t stop = 0;
  std::thread signal([&stop] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    stop = 1;
  });
  try {
    BuildIndex(site.options, progress, stop);
    ADD_FAILURE();
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kInterrupted);
  }
  signal.join();
}

TEST(BuildIndex, APageWithoutMemoryIsLeftOut) {
  TestSite site;
  site.options.memoryMegabytes = 1;
  site.Add("a.html", "text");
  site.Add("grows.html", "<meta charset=windows-1252>" + std::string(size_t{3} << 20, '\xE9'));
  site.Add("large.html", std::string(size_t{5} << 20, 'x'));
  site.Add("z.html", "more text");
  const support::LargestAllocation largest(size_t{4} << 20);
  const IndexSummary summary = site.Build();
  EXPECT_EQ(summary.pages, 2u);
  ASSERT_EQ(summary.files.entries.size(), 2u);
  EXPECT_EQ(summary.files.entries[0].path, "grows.html");
  EXPECT_EQ(summary.files.entries[0].reason, Reason::kNoMemory);
  EXPECT_EQ(summary.files.entries[1].path, "large.html");
  EXPECT_EQ(summary.files.entries[1].reason, Reason::kNoMemory);
}

// As many words and signs as a text can have: they take more memory than the text, if held at once.
TEST(BuildIndex, WordsTakeNoMoreMemoryThanTheText) {
  TestSite site;
  site.options.memoryMegabytes = 1;
  for (const char* piece : {"a-b;c.", "a-", "a;", "a ", "\xE6\x9D\xB1", "\xC3\xA9/"}) {
    std::string text;
    while (text.size() < (size_t{1} << 20)) text += piece;
    site.Add("words.html", text);
    const support::LargestAllocation largest(size_t{4} << 20);
    EXPECT_EQ(site.Build().pages, 1u) << piece;
  }
}

// Different words: the list of those stays in memory.
TEST(BuildIndex, AnErrorForLackOfMemoryNamesThePage) {
  TestSite site;
  site.options.memoryMegabytes = 1;
  for (int page = 0; page < 4; ++page) {
    std::string text;
    for (int i = 0; i < 100000; ++i) text += "w" + std::to_string(page * 100000 + i) + " ";
    site.Add("words/" + std::to_string(page) + ".html", text);
  }
  WriteFile(site.index / "settings.vdat", "old");
  const support::LargestAllocation largest(size_t{4} << 20);
  try {
    site.Build();
    ADD_FAILURE();
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kFailed);
    EXPECT_NE(std::string(error.what()).find("words/3.html"), std::string::npos);
  }
  EXPECT_EQ(site.Read("settings.vdat"), "old");
}

TEST(BuildIndex, TheTemplateOfTheOwnerStays) {
  TestSite site;
  site.Add("a.html", "x");
  WriteFile(site.index / "search_template.html", "edited");
  site.Build();
  EXPECT_EQ(site.Read("search_template.html"), "edited");
  WriteFile(site.scratch.path() / "given.html", "given");
  site.options.templateName = (site.scratch.path() / "given.html").string();
  site.Build();
  EXPECT_EQ(site.Read("search_template.html"), "given");
}

TEST(BuildIndex, AnUnchangedTemplateFollowsTheLanguage) {
  for (const char* name : {"default", "minimal"}) {
    SCOPED_TRACE(name);
    TestSite site;
    site.Add("a.html", "x");
    site.options.templateName = name;
    site.options.config.searchAddress = "https://x.example/search/search.cgi";
    site.options.config.charset = "windows-1252";
    site.Build();
    const std::string english = site.Read("search_template.html");
    site.options.templateName.clear();
    site.options.language = "german";
    EXPECT_TRUE(site.Build().warnings.empty());
    EXPECT_NE(site.Read("search_template.html").find("<html lang=\"de\""), std::string::npos);
    site.options.language = "russian";
    site.options.config.charset = "utf-8";
    site.Build();
    EXPECT_NE(site.Read("search_template.html").find("<title>Поиск "), std::string::npos);
    site.options.language = "english";
    site.options.config.charset = "windows-1252";
    site.Build();
    EXPECT_EQ(site.Read("search_template.html"), english);
  }
}

TEST(BuildIndex, ATemplateInAnotherLanguageIsToldOf) {
  TestSite site;
  site.Add("a.html", "x");
  site.Build();
  const fs::path own = site.index / "search_template.html";
  const auto warnings = [&](const std::string& page) {
    WriteFile(own, page);
    std::vector<Finding> found = site.Build().warnings;
    EXPECT_EQ(site.Read("search_template.html"), page);
    return found;
  };
  const std::string edited = site.Read("search_template.html") + "<!-- mine -->\n";
  EXPECT_TRUE(warnings(edited).empty());
  site.options.language = "german";
  const std::vector<Finding> found = warnings(edited);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(FindingText(found[0]),
            own.string() +
                ": the template is in another language than the search (lang=\"en\", not "
                "\"de\"): change its words and its lang, or take a built-in one "
                "(--template default)");
  EXPECT_TRUE(warnings("<html class=\"a\" lang=\"de-AT\"><!--VELASEARCH-->").empty());
  EXPECT_TRUE(warnings("<html><p lang=\"en\"><!--VELASEARCH-->").empty());
  // A link leads to a file of the owner's, which is left alone.
  site.options.language = "english";
  site.options.templateName = "default";
  site.Build();
  site.options.templateName.clear();
  site.options.language = "german";
  const fs::path elsewhere = site.scratch.path() / "elsewhere.html";
  fs::rename(own, elsewhere);
  fs::create_symlink(elsewhere, own);
  EXPECT_EQ(site.Build().warnings.size(), 1u);
  EXPECT_TRUE(fs::is_symlink(own));
}

TEST(BuildIndex, ATemplateThatShowsNoResultsIsToldOf) {
  TestSite site;
  site.Add("a.html", "x");
  const fs::path given = site.scratch.path() / "given.html";
  const auto warnings = [&](std::string_view page) {
    WriteFile(given, page);
    site.options.templateName = given.string();
    return site.Build().warnings;
  };
  EXPECT_TRUE(warnings("<p><!--VELASEARCH-->").empty());
  EXPECT_TRUE(warnings("<p><!--VELA_SHOW_RESULTS-->").empty());
  const auto toldOf = [](const std::vector<Finding>& findings) {
    return findings.size() == 1 && findings[0].reason == Reason::kTemplateWithoutResults
               ? findings[0].subject
               : "";
  };
  EXPECT_EQ(toldOf(warnings("<!--VELA_SHOW_SEARCHFORM--> <!-- VELASEARCH -->")), given.string());
  site.options.templateName.clear();  // the one that is there now stays
  EXPECT_EQ(toldOf(site.Build().warnings), (site.index / "search_template.html").string());
  for (const char* builtIn : {"default", "minimal", "embed"}) {
    site.options.templateName = builtIn;
    EXPECT_TRUE(site.Build().warnings.empty()) << builtIn;
  }
}

TEST(BuildIndex, TheTemplateLinksToTheDescriptionThatThereIs) {
  TestSite site;
  site.Add("a.html", "x");
  site.options.config.searchAddress = "https://x.example/search/search.cgi";
  site.options.templateName = "default";
  site.Build();
  const std::string linked = site.Read("search_template.html");
  const size_t link = linked.find("  <link rel=\"search\"");
  ASSERT_NE(link, std::string::npos);
  const size_t end = linked.find('\n', link) + 1;
  EXPECT_NE(linked.substr(link, end - link).find("vela_opensearch.xml"), std::string::npos);
  site.options.config.searchAddress.clear();
  site.Build();
  EXPECT_EQ(site.Read("search_template.html"), linked.substr(0, link) + linked.substr(end));
}

TEST(BuildIndex, RefusesWrongOptions) {
  const auto statusOf = [](const TestSite& site) {
    try {
      site.Build();
    } catch (const IndexError& error) {
      return error.status;
    }
    return ExitStatus::kSuccess;
  };
  TestSite site;
  site.Add("a.html", "x");
  TestSite inside;
  inside.Add("sub/a.html", "x");
  inside.options.site = (inside.folder / "sub").string();
  inside.options.out = inside.folder.string();
  EXPECT_EQ(statusOf(inside), ExitStatus::kUsage);
  EXPECT_TRUE(fs::exists(inside.folder / "sub/a.html"));
  Options good = site.options;
  site.options.language = "klingon";
  EXPECT_EQ(statusOf(site), ExitStatus::kUsage);
  site.options.language = "/nonexistent.vlang";
  EXPECT_EQ(statusOf(site), ExitStatus::kFailed);
  site.options = good;
  site.options.templateName = "/nonexistent.html";
  EXPECT_EQ(statusOf(site), ExitStatus::kFailed);
  site.options = good;
  site.options.site = "/nonexistent";
  EXPECT_EQ(statusOf(site), ExitStatus::kFailed);
  site.options = good;
  site.options.baseUrl = "x.example";
  EXPECT_EQ(statusOf(site), ExitStatus::kUsage);
  site.options = good;
  EXPECT_EQ(statusOf(site), ExitStatus::kSuccess);
}

TEST(BuildIndex, AShrunkenSiteKeepsTheOldIndexOnRequest) {
  TestSite site;
  for (int i = 0; i < 10; ++i) site.Add(std::to_string(i) + ".html", "x" + std::to_string(i));
  site.options.missingPercentLimit = 20;
  EXPECT_EQ(site.Build().pages, 10u);
  for (int i = 0; i < 3; ++i) fs::remove(site.folder / (std::to_string(i) + ".html"));
  const std::string before = site.Read("vela_pagedata.vdat");
  try {
    site.Build();
    FAIL();
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kShrunk);
  }
  EXPECT_EQ(site.Read("vela_pagedata.vdat"), before);
  site.Add("0.html", "x0");  // two of ten are missing: a fifth
  EXPECT_EQ(site.Build().pages, 8u);
  fs::remove(site.folder / "7.html");
  fs::remove(site.folder / "8.html");
  site.options.acceptFewer = true;
  EXPECT_EQ(site.Build().pages, 6u);
}

// What a run says of the folder of the log.
size_t LogWarnings(const TestSite& site) {
  size_t count = 0;
  for (const Finding& warning : site.Build().warnings) {
    if (warning.reason == Reason::kLogFolderNotGiven) ++count;
  }
  return count;
}

TEST(BuildIndex, SaysWhenTheWebServerCannotWriteTheLog) {
  TestSite site;
  site.Add("a.html", "x");
  EXPECT_EQ(LogWarnings(site), 0u);
  EXPECT_FALSE(fs::exists(site.index / "logs"));
  site.options.config.logging = true;
  EXPECT_EQ(LogWarnings(site), 1u);
  EXPECT_TRUE(fs::is_directory(site.index / "logs"));
  EXPECT_EQ(LogWarnings(site), 1u);
  fs::permissions(site.index / "logs", fs::perms::group_write, fs::perm_options::add);
  EXPECT_EQ(LogWarnings(site), 0u);
  fs::permissions(site.index / "logs", fs::perms::group_write, fs::perm_options::remove);
  WriteFile(site.index / "logs/searchwords.log", "");  // as a search has made it
  EXPECT_EQ(LogWarnings(site), 0u);
  site.options.config.logFile = ".//more//logs/x.log";
  EXPECT_EQ(LogWarnings(site), 1u);
  EXPECT_TRUE(fs::is_directory(site.index / "more/logs"));
  site.options.config.logFile = "../x.log";
  EXPECT_EQ(LogWarnings(site), 0u);
}

TEST(BuildIndex, WritesAReportOfWhatWasLeftOut) {
  TestSite site;
  site.Add("a.html", "x");
  site.Add("\xFF.html", "");
  site.options.report = (site.scratch.path() / "report.jsonl").string();
  site.options.exclude = {"nowhere"};
  site.Build();
  EXPECT_EQ(ReadFile(site.options.report),
            "{\"path\":\"\xEF\xBF\xBD.html\",\"reason\":\"no_text\",\"text\":\"no text\"}\n"
            "{\"remark\":\"unused_exclude\",\"where\":\"\",\"subject\":\"nowhere\",\"text\":\"the "
            "pattern \\\"nowhere\\\" to exclude leaves nothing out\"}\n");
  const std::string before = site.Read("settings.vdat");
  fs::remove(site.folder / "a.html");
  site.options.report = "/nonexistent/report.jsonl";
  EXPECT_THROW(site.Build(), IndexError);
  EXPECT_EQ(site.Read("settings.vdat"), before);
}

TEST(BuildIndex, AnIndexInsideTheSiteIsNotIndexed) {
  TestSite site;
  site.Add("a.html", "x");
  site.options.out = (site.folder / "search").string();
  EXPECT_EQ(site.Build().pages, 1u);
  EXPECT_EQ(site.Build().pages, 1u);  // now with a template in it
}

}  // namespace
}  // namespace vela::indexer
