#include "indexer/config/config_file.h"

#include <gtest/gtest.h>

#include "indexer/config/embedded_files.h"
#include "indexer/config/setting_keys.h"
#include "indexer/report/index_error.h"
#include "settings/settings.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

Options Read(std::string_view text) {
  Options options;
  ReadConfigText(text, "/owner/vela_index.toml", options);
  return options;
}

// The message about a wrong file.
std::string MessageOf(std::string_view text) {
  try {
    Read(text);
  } catch (const IndexError& error) {
    EXPECT_EQ(error.status, ExitStatus::kUsage);
    return error.what();
  }
  return "no error";
}

TEST(ConfigFile, AnEmptyFileLeavesTheDefaults) {
  const Options options = Read("");
  EXPECT_EQ(options.site, "");
  EXPECT_EQ(options.language, "english");
  EXPECT_EQ(options.config.charset, "utf-8");
  EXPECT_EQ(options.config.stemming, -1);
  EXPECT_TRUE(options.config.spelling);
}

TEST(ConfigFile, ReadsTheSite) {
  const Options options = Read(R"([site]
folder = "pages"
base_url = "/"
out = "/srv/search"
exclude = ["drafts", "*.old"]
html = ["html", ".php"]
text = []
docx = ["docx"]
template = "minimal"
language = "mine.vlang"
site_name = " My  site "
[index]
memory = 8
max_file_size = 3
charset = "Windows-1252"
stemming = "german"
dates = ["time", "meta"]
images = false
link_texts = false
recognise_languages = true
repeated_text = "leave_out"
near_duplicates = "keep"
)");
  EXPECT_EQ(options.site, "/owner/pages");  // from the file's folder on
  EXPECT_EQ(options.baseUrl, "/");
  EXPECT_EQ(options.out, "/srv/search");
  EXPECT_EQ(options.exclude, (std::vector<std::string>{"drafts", "*.old"}));
  FileEndings endings = DefaultFileEndings();
  endings[static_cast<size_t>(FileType::kHtml)] = {"html", "php"};
  endings[static_cast<size_t>(FileType::kText)] = {};
  endings[static_cast<size_t>(FileType::kWord)] = {"docx"};
  EXPECT_EQ(options.config.endings, endings);
  EXPECT_EQ(options.templateName, "minimal");
  EXPECT_TRUE(options.config.leavesOutRepeatedText);
  EXPECT_TRUE(options.config.recognisesLanguages);
  EXPECT_EQ(options.config.nearDuplicates, NearDuplicates::kKeep);
  EXPECT_EQ(options.config.siteName, "My site");
  EXPECT_EQ(options.config.habits.names, std::vector<std::string>{"My site"});
  EXPECT_EQ(options.language, "/owner/mine.vlang");
  EXPECT_EQ(options.memoryMegabytes, 8u);
  EXPECT_EQ(options.maxFileMegabytes, 3u);
  EXPECT_EQ(options.config.charset, "Windows-1252");
  EXPECT_EQ(options.config.stemming, 5);
  EXPECT_EQ(options.config.dates, (std::vector<DateSource>{DateSource::kTime, DateSource::kMeta}));
  EXPECT_FALSE(options.config.images);
  EXPECT_FALSE(options.config.linkTexts);
}

TEST(ConfigFile, ReadsTheCrawl) {
  const Options options = Read(R"([crawl]
start = ["https://x.example/"]
sitemaps = ["https://x.example/map.xml"]
state = "state"
hosts = ["y.example"]
include = ["docs/*"]
exclude = ["\u00FC b*"]
find_sitemaps = false
depth = 2
pages = 3
max_size = 4
minutes = 5.5
connections = 6
delay = 0.5
timeout = 7
retries = 0
auth_file = "passwords"
ca_file = "/etc/ca.pem"
contact = "me@x.example"
)");
  EXPECT_EQ(options.crawl, std::vector<std::string>{"https://x.example/"});
  EXPECT_EQ(options.sitemaps, std::vector<std::string>{"https://x.example/map.xml"});
  EXPECT_EQ(options.state, "/owner/state");
  const CrawlRules& rules = options.crawlRules;
  EXPECT_EQ(rules.hosts, std::vector<std::string>{"y.example"});
  EXPECT_EQ(rules.include, std::vector<std::string>{"docs/*"});
  EXPECT_EQ(rules.exclude, std::vector<std::string>{"%C3%BC%20b*"});
  EXPECT_FALSE(rules.usesSitemaps);
  EXPECT_EQ(rules.depth, 2u);
  EXPECT_EQ(rules.pages, 3u);
  EXPECT_EQ(rules.megabytes, 4u);
  EXPECT_EQ(rules.minutes, 5.5);
  EXPECT_EQ(rules.connections, 6u);
  EXPECT_EQ(rules.delay, 0.5);
  EXPECT_EQ(rules.timeout, 7u);
  EXPECT_EQ(rules.retries, 0u);
  EXPECT_EQ(rules.authFile, "/owner/passwords");
  EXPECT_EQ(rules.caFile, "/etc/ca.pem");
  EXPECT_EQ(rules.contact, "me@x.example");
}

TEST(ConfigFile, ExtensionsAreOnUnlessSwitchedOff) {
  EXPECT_TRUE(Read("").config.extensions);
  const SiteConfig config = Read("[search]\nextensions = false\n[settings]\nRanking = 1\n").config;
  EXPECT_FALSE(config.extensions);
  EXPECT_EQ(config.settings.at("Ranking").number, 1);
}

TEST(ConfigFile, ReadsWhatTheSearchOffers) {
  const SiteConfig config = Read(R"([search]
address = "https://x.example/search/search.cgi"
name = "X"
description = "All of X"
style_sheet = "a.xsl"
[spelling]
use = false
below = 4
[suggestions]
use = false
most = 7
[recommended]
most = 2
[recommended.pages]
"zeal, zest" = "z.html"
about = "a.html"
[log]
use = true
file = "logs/a.log"
[[category]]
name = "News"
pages = ["news/*"]
[[category]]
name = "Deutsch"
languages = ["de", "gsw"]
[[boost]]
pages = ["help/*"]
factor = 2.5
[[synonym]]
words = ["E-Mail", " electronic   mail "]
[[field]]
name = "price"
kind = "money"
compare = "at_most"
[[field]]
name = "topic"
meta = "dc.subject"
label = "Topic"
kind = "choices"
compare = "all"
values = ["Art", "Sport"]
[settings]
DefaultToAnd = 1
LinkTarget = "_blank"
)")
                                .config;
  EXPECT_EQ(config.searchAddress, "https://x.example/search/search.cgi");
  EXPECT_EQ(config.searchName, "X");
  EXPECT_EQ(config.searchDescription, "All of X");
  EXPECT_EQ(config.styleSheet, "a.xsl");
  EXPECT_FALSE(config.spelling);
  EXPECT_EQ(config.settings.at("SpellingWhenLessThan").number, 4);
  EXPECT_FALSE(config.suggestions);
  EXPECT_EQ(config.mostSuggestions, 7u);
  EXPECT_EQ(config.settings.at("RecommendedMax").number, 2);
  ASSERT_EQ(config.recommended.size(), 2u);
  EXPECT_EQ(config.recommended[0].keywords, "zeal, zest");  // in the order of the file
  EXPECT_EQ(config.recommended[1].address, "a.html");
  EXPECT_EQ(config.recommended[1].where, "/owner/vela_index.toml, line 16");
  EXPECT_EQ(config.settings.at("Logging").number, 1);
  EXPECT_EQ(config.settings.at("LogFileName").text, "logs/a.log");
  ASSERT_EQ(config.categories.size(), 2u);
  EXPECT_EQ(config.categories[0].pages, std::vector<std::string>{"news/*"});
  EXPECT_EQ(config.categories[1].pages, std::vector<std::string>{});
  EXPECT_EQ(config.categories[1].languages, (std::vector<std::string>{"de", "gsw"}));
  ASSERT_EQ(config.boosts.size(), 1u);
  EXPECT_EQ(config.boosts[0].tenths, 25);
  ASSERT_EQ(config.synonyms.size(), 1u);
  EXPECT_EQ(config.synonyms[0].words, (std::vector<std::string>{"e-mail", "electronic mail"}));
  ASSERT_EQ(config.fields.size(), 2u);
  EXPECT_EQ(config.fields[0].meta, "price");
  EXPECT_EQ(config.fields[0].kind, kMetaMoney);
  EXPECT_EQ(config.fields[0].method, 1);
  EXPECT_EQ(config.fields[1].meta, "dc.subject");
  EXPECT_EQ(config.fields[1].label, "Topic");
  EXPECT_EQ(config.fields[1].kind, kMetaMultiple);
  EXPECT_EQ(config.fields[1].method, 1);
  EXPECT_EQ(config.fields[1].values.size(), 2u);
  EXPECT_EQ(config.settings.at("DefaultToAnd").number, 1);
  EXPECT_EQ(config.settings.at("LinkTarget").text, "_blank");
}

TEST(ConfigFile, TheLogMayBeSwitchedOnAmongTheSettings) {
  const SiteConfig plain = Read("[settings]\nLogging = 1\n").config;
  EXPECT_TRUE(plain.logging);
  EXPECT_EQ(plain.logFile, "logs/searchwords.log");
  const SiteConfig named =
      Read("[log]\nuse = true\n[settings]\nLogFileName = \"more/x.log\"\n").config;
  EXPECT_TRUE(named.logging);
  EXPECT_EQ(named.logFile, "more/x.log");
  EXPECT_FALSE(Read("[log]\nuse = true\n[settings]\nLogging = 0\n").config.logging);
}

TEST(ConfigFile, ReadsWhatIsForTheRun) {
  const Options options =
      Read("[site]\nfollow_links = true\n[index]\nstop_when_fewer = \"20 %\"\n");
  EXPECT_TRUE(options.followLinks);
  EXPECT_EQ(options.missingPercentLimit, 20u);
  EXPECT_TRUE(options.keepLast);
  EXPECT_FALSE(Read("[index]\nkeep_last = false\n").keepLast);
  EXPECT_EQ(Read("[index]\nstop_when_fewer = \"5\"\n").missingPercentLimit, 5u);
  EXPECT_NE(MessageOf("[index]\nstop_when_fewer = \"101 %\"\n").find("line 2"), std::string::npos);
  EXPECT_NE(MessageOf("[index]\nstop_when_fewer = \"few\"\n").find("20 %"), std::string::npos);
}

TEST(ConfigFile, SaysWhatIsWrongAndWhere) {
  const struct {
    const char* text;
    const char* line;
    const char* message;
  } kCases[] = {
      {"[site\n", "line 1: ", "Texts stand in quotes"},
      {"[site]\nfolder = \"a\nout = \"b\"\n", "line 2: ", "quote at the end of a text is missing"},
      {"[site]\nfolder = 'a\n", "line 2: ", "quote at the end of a text is missing"},
      {"[site]\nfolder = \"a", "line 2: ", "quote at the end of a text is missing"},
      {"a = 1\n", "line 1: ", "there is no \"a\" in the file. Known there: site, crawl"},
      {"\n[sight]\n", "line 2: ", "there is no \"sight\""},
      {"[site]\nfoldr = \"x\"\n", "line 2: ", "no \"foldr\" in [site]. Known there: folder"},
      {"[site]\nfolder = 3\n", "line 2: ", "folder in [site] must be a text in quotes"},
      {"[site]\nexclude = \"x\"\n", "line 2: ", "must be a list"},
      {"[site]\nexclude = [\"x\", 1]\n", "line 2: ", "must be a text in quotes"},
      {"[site]\nhtml = [\"a b\"]\n", "line 2: ", "no ending of file names"},
      {"site = 1\n", "line 1: ", "must be a table: write [site]"},
      {"[index]\nmemory = 0\n", "line 2: ", "whole number from 1 to 1048576"},
      {"[index]\nmemory = \"8\"\n", "line 2: ", "without quotes"},
      {"[index]\nimages = 1\n", "line 2: ", "must be true or false"},
      {"[index]\ncharset = \"big5\"\n", "line 2: ", "Give one of utf-8, iso-8859-1"},
      {"[index]\nstemming = \"klingon\"\n", "line 2: ", "Give one of off, auto, danish"},
      {"[index]\ndates = [\"moon\"]\n", "line 2: ", "Give some of meta, time, file"},
      {"[search]\naddress = \"/search.cgi\"\n", "line 2: ", "must be the whole address"},
      {"[log]\nfile = \"/var/log/x\"\n", "line 2: ", "a path from the index folder on"},
      {"[[category]]\npages = [\"a\"]\n", "line 1: ", "needs name"},
      {"[[category]]\nname = \"N\"\n", "line 1: ", "The category \"N\" needs pages"},
      {"[[category]]\nname = \"N\"\nlanguages = [\"pt-BR\"]\n",
       "line 3: ", "\"pt-BR\" is no language"},
      {"[[category]]\nname = \"N\"\nlanguages = []\n", "line 3: ", "needs one language"},
      {"[category]\nname = \"N\"\n", "line 1: ", "write [[category]] before each"},
      {"[[content]]\nmain = \"all\"\n", "line 1: ", "needs pages"},
      {"[[content]]\npages = [\"a\"]\nnavigation = \"yes\"\n",
       "line 3: ", "navigation in [[content]] cannot be \"yes\". Give one of leave_out, index."},
      {"[index]\nmain = true\n", "line 2: ", "main in [index] must be a text in quotes."},
      {"[index]\nexclude_elements = \"nav\"\n", "line 2: ", "must be a list"},
      {"[index]\nonly_elements = [\n \"p\",\n \"h1 + p\"]\n", "line 2: ",
       "only_elements in [index] holds \"h1 + p\", which is no selector from \"+ p\" on. Elements "
       "beside others are not told apart: only a blank and > can stand between."},
      {"[index]\nexclude_elements = [\"a,\"]\n",
       "line 2: ", "holds \"a,\", which is no selector where it ends. The name"},
      {"[[boost]]\npages = [\"a\"]\n", "line 1: ", "needs factor"},
      {"[[synonym]]\n", "line 1: ", "needs words"},
      {"[[synonym]]\nwords = [\"mail\"]\n", "line 1: ", "two at least"},
      {"[[synonym]]\nwords = [\"mail\", \"\"]\n", "line 2: ", "cannot be a synonym"},
      {"[[synonym]]\nwords = [\"mail\", \"-mail\"]\n", "line 2: ", "cannot be a synonym"},
      {"[[synonym]]\nwords = [\"mail\", \"mail*\"]\n", "line 2: ", "cannot be a synonym"},
      {"[[synonym]]\nwords = [\"mail\", \"a b c d e\"]\n", "line 2: ", "up to 4"},
      {"[[boost]]\npages = [\"a\"]\nfactor = 26\n", "line 3: ", "a number from 0.1 to 25.5"},
      {"[[field]]\nname = \"a b\"\n", "line 2: ", "cannot name a field"},
      {"[[field]]\nname = \"vela_query\"\n", "line 2: ", "cannot name a field"},
      {"[[field]]\nname = \"a\"\n[[field]]\nname = \"a\"\n", "line 4: ", "another field \"a\""},
      {"[[field]]\nname = \"a\"\nkind = \"date\"\n",
       "line 3: ", "Give one of text, number, money, choice, choices"},
      {"[[field]]\nname = \"a\"\ncompare = \"at_most\"\n",
       "line 3: ", "Give one of contains, equal, begins"},
      {"[[field]]\nname = \"a\"\nvalues = [\"x\"]\n", "line 3: ", "Only fields of kind choice"},
      {"[[field]]\nname = \"a\"\nkind = \"choice\"\n", "line 1: ", "needs values"},
      {"[[field]]\nname = \"a\"\nkind = \"choices\"\nvalues = [\"x, y\"]\n", "line 4: ", "comma"},
      {"[settings]\nDefaultSort = 3\n", "line 2: ", "whole number from 0 to 2"},
      {"[settings]\nLinkTarget = 'a\"b'\n", "line 2: ", "cannot hold a double quote"},
      {"[settings]\nNumPages = 3\n", "line 2: ", "NumPages cannot be set: it follows"},
      {"[settings]\nSTR_OR = \"or\"\n", "line 2: ", "texts come from the language file"},
      {"[settings]\nNoSuch = 3\n", "line 2: ", "there is no \"NoSuch\" in [settings]"},
      {"[site]\nout = \"a\\nb\"\n", "line 2: ", "a text of one line"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    const std::string message = MessageOf(c.text);
    EXPECT_NE(message.find(c.line), std::string::npos) << message;
    EXPECT_NE(message.find(c.message), std::string::npos) << message;
    EXPECT_TRUE(message.starts_with("/owner/vela_index.toml, line "));
  }
}

TEST(ConfigFile, TooLongTextsAreRefused) {
  const std::string fits(255, 'a');
  EXPECT_EQ(MessageOf("[log]\nfile = \"" + fits + "\"\n"), "no error");
  EXPECT_NE(MessageOf("[log]\nfile = \"" + fits + "a\"\n").find("at most 255 are possible"),
            std::string::npos);
}

// What stands behind "# " and looks like a line of the file, taken as one.
std::string WithRemarksTaken(std::string_view example) {
  std::string text;
  while (!example.empty()) {
    std::string line(example.substr(0, example.find('\n')));
    example.remove_prefix(std::min(line.size() + 1, example.size()));
    const std::string inner = line.starts_with("# ") ? line.substr(2) : "";
    const size_t equals = inner.find(" = ");
    const bool isKey = equals != inner.npos && inner.find(' ') == equals;
    const bool isQuoted = inner.starts_with('"') && equals != inner.npos;
    if (isKey || isQuoted || inner.starts_with('[')) line = inner;
    text += line + "\n";
  }
  return text;
}

TEST(ConfigFile, TheExampleIsRightAsItStandsAndWithItsRemarksTaken) {
  const EmbeddedFile* example = FindEmbeddedFile("vela_index.example.toml");
  ASSERT_NE(example, nullptr);
  const Options plain = Read(example->content);
  EXPECT_EQ(plain.site, "/owner/site");
  EXPECT_EQ(plain.out, "/owner/search");
  std::string taken = WithRemarksTaken(example->content);
  const size_t file = taken.find("file = \"recommended.txt\"");
  ASSERT_NE(file, std::string::npos);
  taken.insert(file, "# ");  // the example's file does not exist
  const Options options = Read(taken);
  const SiteConfig& config = options.config;
  EXPECT_EQ(config.categories.size(), 1u);
  EXPECT_EQ(config.fields.size(), 1u);
  EXPECT_EQ(config.boosts.size(), 1u);
  EXPECT_EQ(config.recommended.size(), 3u);
  EXPECT_TRUE(config.settings.contains("MaxSearchTime"));
  // What is no example is what holds without the line.
  const Options without;
  EXPECT_EQ(options.memoryMegabytes, without.memoryMegabytes);
  EXPECT_EQ(options.maxFileMegabytes, without.maxFileMegabytes);
  EXPECT_EQ(options.language, without.language);
  EXPECT_EQ(config.endings, without.config.endings);
  EXPECT_EQ(config.charset, without.config.charset);
  EXPECT_EQ(config.stemming, without.config.stemming);
  EXPECT_EQ(config.dates, without.config.dates);
  EXPECT_EQ(config.images, without.config.images);
  EXPECT_EQ(config.linkTexts, without.config.linkTexts);
  EXPECT_EQ(config.styleSheet, without.config.styleSheet);
  EXPECT_EQ(config.spelling, without.config.spelling);
  EXPECT_EQ(config.suggestions, without.config.suggestions);
  EXPECT_EQ(config.mostSuggestions, without.config.mostSuggestions);
  EXPECT_EQ(config.logging, without.config.logging);
  EXPECT_EQ(config.logFile, without.config.logFile);
  for (const NumberKey& key : NumberKeys()) {
    const auto found = config.settings.find(key.key);
    EXPECT_TRUE(found == config.settings.end() || found->second.number == key.value) << key.key;
  }
}

TEST(ConfigFile, TheExampleIsNeverWrittenOverAFile) {
  const support::ScratchDirectory scratch;
  const std::string path = (scratch.path() / "c.toml").string();
  WriteExampleConfig(path);
  const std::string written = ReadFile(path);
  EXPECT_TRUE(written.starts_with("# vela_index.toml"));
  EXPECT_THROW(WriteExampleConfig(path), IndexError);
  EXPECT_EQ(ReadFile(path), written);
}

TEST(ConfigFile, TheRecommendedFileLiesBesideIt) {
  const support::ScratchDirectory scratch;
  WriteFile(scratch.path() / "c.toml", "[recommended]\nfile = \"r.txt\"\n");
  WriteFile(scratch.path() / "r.txt", "# mine\nhours, times = h.html\n");
  Options options;
  ReadConfigFile((scratch.path() / "c.toml").string(), options);
  ASSERT_EQ(options.config.recommended.size(), 1u);
  EXPECT_EQ(options.config.recommended[0].keywords, "hours, times");
  EXPECT_TRUE(options.config.recommended[0].where.ends_with("r.txt, line 2"));
}

TEST(ConfigFile, EveryFaultHasItsLine) {
  const support::ScratchDirectory scratch;
  const std::string language = (scratch.path() / "short.vlang").string();
  WriteFile(language, "STR_FORM_SUBMIT_BUTTON = \"Go\"\n");
  const struct {
    std::string text;
    const char* start;
  } kCases[] = {
      {"[site]\nbase_url = \"x.example\"\n",
       "/owner/vela_index.toml, line 2: base_url (--base-url) "},
      {"[site]\n\nlanguage = \"klingon\"\n",
       "/owner/vela_index.toml, line 3: There is no built-in language \"klingon\"."},
      {"[site]\nlanguage = \"" + language + "\"\n",
       "/owner/vela_index.toml, line 2: The language file "},
      {"[index]\nstemming = \"turkish\"\ncharset = \"iso-8859-9\"\n",
       "/owner/vela_index.toml, line 2: "},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    EXPECT_TRUE(MessageOf(c.text).starts_with(c.start)) << MessageOf(c.text);
  }
}

TEST(ConfigFile, ValuesAreCleanedAsThoseOfThePages) {
  const SiteConfig config = Read(
                                "[[field]]\nname = \"f\"\nkind = \"choice\"\n"
                                "values = [\"Cafe\u0301\", \" a\u00A0 b\"]\n")
                                .config;
  EXPECT_EQ(config.fields[0].values, (std::vector<std::string>{"Caf\u00E9", "a b"}));
}

TEST(ConfigFile, TextsOfFeedsAreEscaped) {
  const SiteConfig config =
      Read("[settings]\nXMLTitle = \"A & <B>\"\nMetaMoneyCurrency = \"&#36;\"\n").config;
  EXPECT_EQ(config.settings.at("XMLTitle").text, "A &#38; &#60;B&#62;");
  EXPECT_EQ(config.settings.at("MetaMoneyCurrency").text, "&#36;");
}

TEST(ConfigFile, RecommendedPagesOfOneLineStayInOrder) {
  const SiteConfig config =
      Read("[recommended]\npages = { zoo = \"z.html\", art = \"a.html\" }\n").config;
  ASSERT_EQ(config.recommended.size(), 2u);
  EXPECT_EQ(config.recommended[0].keywords, "zoo");
}

TEST(ConfigFile, RecommendedPagesMayHaveWordsOfTheOwners) {
  const SiteConfig config = Read(R"([recommended]
pages = { zoo = "z.html" }
[[recommended.page]]
keywords = "shop, buy"
address = "https://shop.example/"
title = "Our  shop "
text = "Books & <more>"
[[recommended.page]]
keywords = "art"
address = "a.html"
)")
                                .config;
  ASSERT_EQ(config.recommended.size(), 3u);
  EXPECT_EQ(config.recommended[0].keywords, "shop, buy");
  EXPECT_EQ(config.recommended[0].address, "https://shop.example/");
  EXPECT_EQ(config.recommended[0].title, "Our shop");
  EXPECT_EQ(config.recommended[0].text, "Books & <more>");
  EXPECT_EQ(config.recommended[0].where, "/owner/vela_index.toml, line 3");
  EXPECT_EQ(config.recommended[1].address, "a.html");
  EXPECT_EQ(config.recommended[1].title, "");
  EXPECT_EQ(config.recommended[2].keywords, "zoo");
}

TEST(ConfigFile, PatternsAreEncodedAsAddressesAre) {
  const SiteConfig config = Read(R"([[category]]
name = "C"
pages = ["Mein Caf\u00E9/*", "a%2fb?.html"]
[[boost]]
pages = ["it's/*"]
factor = 2
)")
                                .config;
  EXPECT_EQ(config.categories[0].pages,
            (std::vector<std::string>{"Mein%20Caf%C3%A9/*", "a%2Fb?.html"}));
  EXPECT_EQ(config.boosts[0].pages, std::vector<std::string>{"it%27s/*"});
  EXPECT_EQ(config.boosts[0].where, "/owner/vela_index.toml, line 4");
}

// The texts of selectors, and their numbers.
std::string Told(const std::vector<ElementSelector>& selectors) {
  std::string told;
  for (const ElementSelector& each : selectors) {
    told += (told.empty() ? "" : " ") + each.text + ":" + std::to_string(each.number);
  }
  return told;
}

TEST(ConfigFile, ReadsWhatOfPagesIsTheirContent) {
  const SiteConfig config = Read(R"([index]
exclude_elements = [".ad, #menu", "nav > a"]
navigation = "index"
[[content]]
pages = ["news/it's/*"]
only_elements = ["article"]
main = "prefer"
section_pages = 2000
[[content]]
pages = ["*"]
exclude_elements = [".x"]
navigation = "leave_out"
)")
                                .config;
  EXPECT_EQ(Told(config.content.excludeElements), ".ad:0 #menu:1 nav > a:2");
  EXPECT_EQ(Told(config.content.onlyElements), "");
  EXPECT_TRUE(config.content.indexesNavigation);
  EXPECT_FALSE(config.content.prefersMain);
  ASSERT_EQ(config.contentRules.size(), 2u);
  const ContentRule& news = config.contentRules[0];
  EXPECT_EQ(news.pages, std::vector<std::string>{"news/it%27s/*"});
  EXPECT_EQ(Told(news.excludeElements), ".ad:0 #menu:1 nav > a:2");  // as [index] has it
  EXPECT_EQ(Told(news.onlyElements), "article:3");
  EXPECT_TRUE(news.indexesNavigation);
  EXPECT_TRUE(news.prefersMain);
  EXPECT_EQ(config.content.sectionWords, 0u);
  EXPECT_EQ(news.sectionWords, 2000u);
  EXPECT_EQ(news.where, "/owner/vela_index.toml, line 4");
  const ContentRule& others = config.contentRules[1];
  EXPECT_EQ(Told(others.excludeElements), ".x:4");
  EXPECT_FALSE(others.indexesNavigation);
  EXPECT_FALSE(others.prefersMain);
  ASSERT_EQ(config.selectors.size(), 5u);
  EXPECT_EQ(config.selectors[2].text, "nav > a");
  EXPECT_EQ(config.selectors[2].where, "");
  EXPECT_EQ(config.selectors[4].where, "/owner/vela_index.toml, line 9");
}

TEST(ConfigFile, SelectorsHaveLimits) {
  std::string many = "[index]\nexclude_elements = [";
  for (int i = 0; i < 200; ++i) many += "\"p\", ";
  EXPECT_EQ(Read(many + "]").config.selectors.size(), 200u);
  EXPECT_NE(MessageOf(many + "\"p\"]").find("holds more than 200 selectors."), std::string::npos);
  std::string deep = "[index]\nonly_elements = [\"a b\"]\nexclude_elements = [";
  for (int i = 0; i < 63; ++i) deep += "\"p > b\", ";
  EXPECT_EQ(Read(deep + "\"p\"]").config.selectors.size(), 65u);
  EXPECT_NE(MessageOf(deep + "\"a b\"]").find("more than 64 blanks and > together"),
            std::string::npos);
}

TEST(ConfigFile, TheNameOfTheSiteMayBeFoundOrNone) {
  EXPECT_EQ(Read("[site]\nsite_name = \"auto\"\n").config.siteName, kAutoSiteName);
  EXPECT_TRUE(Read("[site]\nsite_name = \"auto\"\n").config.habits.names.empty());
  for (const char* none : {"[site]\nsite_name = \"none\"\n", "[site]\nsite_name = \"\"\n", ""}) {
    EXPECT_EQ(Read(none).config.siteName, "");
    EXPECT_TRUE(Read(none).config.habits.names.empty());
  }
}

}  // namespace
}  // namespace vela::indexer
