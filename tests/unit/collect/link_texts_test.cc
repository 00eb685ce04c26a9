#include "indexer/collect/link_texts.h"

#include <gtest/gtest.h>

#include <map>

namespace vela::indexer {
namespace {

struct Site {
  std::string base = "https://x.example/";
  IndexCharset utf8;
  LinkWordCutter cutter = LinkWordCutter(base, utf8, kStemEnglish, RunCut::kWords);
  Vocabulary vocabulary;
  CanonicalAddresses addresses = CanonicalAddresses(base);

  // The words of a page with those links, "address|text".
  std::vector<LinkWord> WordsOf(const std::string& own, const std::vector<PageLink>& links,
                                const std::string& canonical = {}) {
    Page page;
    page.facts.address = base + own;
    page.facts.canonical = canonical;
    page.content.links = links;
    return cutter.WordsOf(page);
  }

  void AddPage(const std::string& address, uint32_t number) {
    addresses.AddItem(base + address);
    addresses.Note(base + address, number);
  }
};

// "word/page: pages" of each count.
std::map<std::string, uint32_t> Told(const std::vector<LinkCount>& counts, const Site& site) {
  std::map<std::string, uint32_t> told;
  for (const LinkCount& count : counts) {
    const std::string word(TextOf(site.vocabulary.words[count.word], site.vocabulary));
    told[word + "/" + std::to_string(count.page)] = count.pages;
  }
  return told;
}

using Counts = std::map<std::string, uint32_t>;

TEST(LinkTexts, WordsOfAPage) {
  Site site;
  const auto one = site.WordsOf("a.html", {{"https://x.example/b.html", "merging"}});
  ASSERT_EQ(one.size(), 1u);
  const struct {
    const char* what;
    std::vector<PageLink> links;
    size_t words;
  } kCases[] = {
      {"its stem, however it is written and however often",
       {{"https://x.example/b.html", "Merge (merged)"}, {"http://x.example/b.html", "merges"}},
       1},
      {"words of joined ones, too", {{"https://x.example/b.html", "git-merge"}}, 3},
      {"of each address",
       {{"https://x.example/b.html", "x"}, {"https://x.example/c.html", "x"}},
       2},
      {"signs are none", {{"https://x.example/b.html", "(->)"}}, 0},
      {"other sites", {{"https://y.example/b.html", "merge"}}, 0},
      {"the page itself",
       {{"https://x.example/a.html", "merge"}, {"https://x.example/own", "merge"}},
       0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(site.WordsOf("a.html", c.links, "https://x.example/own").size(), c.words);
  }
  EXPECT_EQ(site.WordsOf("c.html", {{"http://X.example/b.html", "merge"}}), one);
}

TEST(LinkTexts, CountsPagesForEveryAddressOfAPage) {
  Site site;
  for (const char* word : {"tupl", "list", "never"}) FindOrAddWord(site.vocabulary, word);
  site.AddPage("types.html", 0);
  site.AddPage("part/index.html", 1);
  site.AddPage("other.html", 2);
  LinkTexts texts;
  texts.Add(site.WordsOf("1.html", {{"https://x.example/types.html", "tuple"},
                                    {"https://x.example/types.html", "tuples and lists"}}));
  texts.Add(site.WordsOf("2.html", {{"https://x.example/types.html", "tuple"},
                                    {"https://x.example/part/", "a list"}}));
  texts.Add(site.WordsOf("3.html", {{"https://x.example/part/index.html", "list"},
                                    {"https://x.example/nowhere.html", "list"}}));
  EXPECT_EQ(Told(texts.Finish(site.addresses, site.vocabulary), site),
            (Counts{{"tupl/0", 2}, {"list/0", 1}, {"list/1", 2}}));
}

TEST(LinkTexts, ForgetsWhatFewPagesHaveWhenThereIsNoRoom) {
  Site site;
  for (const char* word : {"often", "one", "two", "three", "four"}) {
    FindOrAddWord(site.vocabulary, word);
  }
  site.AddPage("b.html", 0);
  LinkTexts texts(4);
  for (const char* text : {"often", "often", "often one", "two", "three", "four"}) {
    texts.Add(site.WordsOf("a.html", {{"https://x.example/b.html", text}}));
  }
  // Before "two" comes, "often" of three pages and "one" fit. Before "four", "one", "two" and
  // "three" are too many beside it.
  const Counts told = Told(texts.Finish(site.addresses, site.vocabulary), site);
  EXPECT_EQ(told, (Counts{{"often/0", 3}, {"four/0", 1}}));
}

TEST(LinkCountReader, GoesBesideThePostings) {
  const std::vector<LinkCount> counts = {{1, 0, 5}, {1, 7, 9}, {3, 2, 1}, {4, 4, 2}};
  LinkCountReader reader(counts);
  EXPECT_EQ(reader.BeginWord(0), 0u);
  EXPECT_EQ(reader.PagesTo(0), 0u);
  EXPECT_EQ(reader.BeginWord(1), 9u);
  EXPECT_EQ(reader.PagesTo(0), 5u);
  EXPECT_EQ(reader.PagesTo(3), 0u);
  EXPECT_EQ(reader.PagesTo(7), 9u);
  EXPECT_EQ(reader.PagesTo(8), 0u);
  // The page to which they lead has the word nowhere itself.
  EXPECT_EQ(reader.BeginWord(3), 1u);
  EXPECT_EQ(reader.PagesTo(3), 0u);
  EXPECT_EQ(reader.BeginWord(4), 2u);
  EXPECT_EQ(reader.PagesTo(4), 2u);
  EXPECT_EQ(LinkCountReader({}).BeginWord(1), 0u);
}

}  // namespace
}  // namespace vela::indexer
