#include "indexer/collect/page_cutter.h"

#include <gtest/gtest.h>

#include "format/page_text.h"
#include "indexer/collect/page_tokens.h"

namespace vela::indexer {
namespace {

// A page that was cut, and what it became in a site of its own.
struct CutResult {
  PageWords page;
  PageWords address;
  RunningText running;
  std::vector<SectionStart> sections;
  Vocabulary vocabulary;
  SignEntries signs;
  PageTokens words;
  std::vector<PageToken> tokens;

  // Joins it to a site, as page `number`.
  void JoinTo(Vocabulary& site, SignEntries& siteSigns, uint32_t number) {
    const TextSink sink = [this](const TextStretch& stretch) {
      ForEachToken(stretch, [this](PageToken token) { tokens.push_back(token); });
    };
    JoinWords({&page, &address}, number, {.vocabulary = site, .signs = siteSigns, .sink = sink},
              words);
    EXPECT_EQ(tokens.size(), words.tokenCount);
  }
  const Posting* Find(std::string_view text) const {
    for (const Posting& posting : words.postings) {
      if (TextOf(vocabulary.words[posting.word], vocabulary) == text) return &posting;
    }
    return nullptr;
  }
  // The base words of the tokens; ends of runs as "|", of the page as "."
  std::string Tokens() const {
    std::string line;
    for (const PageToken& token : tokens) {
      if (token.number == kRunEndWord) {
        line += "| ";
      } else if (token.number == kPageEndWord) {
        line += ".";
      } else if (token.number >= kWordBase) {
        line.append(TextOf(vocabulary.words[token.number - kWordBase], vocabulary)).append(" ");
      } else {
        line += "# ";
      }
    }
    return line;
  }
};

CutResult CutOf(const std::vector<TextRun>& body, const std::string& title,
                const std::string& description = "", const std::string& address = "",
                const CutRules& rules = {}) {
  CutResult result;
  PageContent page;
  page.body = body;
  page.description = description;
  const IndexCharset utf8;
  PageCutter cutter(utf8, -1, rules);
  EXPECT_TRUE(cutter.Cut({.content = page, .title = title}, result.page, &result.running));
  result.sections = cutter.sections();
  EXPECT_TRUE(cutter.CutAddress(address, result.address));
  result.JoinTo(result.vocabulary, result.signs, 0);
  return result;
}

// "w0 w1 w2 ..." of so many words.
std::string Words(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "w" + std::to_string(i) + " ";
  return text;
}

// The signs between the words, each with a blank behind it.
std::string SignsOf(const CutResult& page) {
  const ReservedEntries entries = page.signs.Finish();
  std::string texts;
  for (const PageToken& token : page.tokens) {
    if (token.number < kWordBase && token.number > kRunEndWord) {
      texts += entries.texts[entries.finals[token.number]] + " ";
    }
  }
  return texts;
}

TEST(PageTokens, RunsStandInOrder) {
  EXPECT_EQ(CutOf({{"One two.", 0}, {"three", 2}}, "Title", "About it", "dir page").Tokens(),
            "one two # three | title | about it | dir page .");
  EXPECT_EQ(CutOf({}, "Title").Tokens(), "title .");
  EXPECT_EQ(CutOf({{"body", 0}}, "...", "", "a").Tokens(), "body | a .");
  EXPECT_EQ(CutOf({}, "").Tokens(), ".");
}

TEST(PageTokens, WhatOthersSayStandsBeforeTheAddress) {
  const IndexCharset utf8;
  PageCutter cutter(utf8, -1, {});
  const struct {
    const char *what, *title, *expected;
    std::vector<std::string> texts;
  } kCases[] = {
      {"texts", "", "own | a heron | heron fishing | dir .", {"A heron", "heron fishing"}},
      {"a title", "Reeds", "own | reeds | a heron | dir .", {"A heron"}},
      {"no words", "", "own | dir .", {"...", ""}},
      {"nothing", "", "own | dir .", {}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    CutResult page = CutOf({{"own", 0}}, "", "", "dir");
    PageWords names;
    cutter.CutNames(c.title, c.texts, names);
    page.tokens.clear();
    Vocabulary site;
    SignEntries signs;
    JoinWords({&page.page, &names, &page.address}, 0,
              {.vocabulary = site,
               .signs = signs,
               .sink =
                   [&page](const TextStretch& stretch) {
                     ForEachToken(stretch,
                                  [&page](PageToken token) { page.tokens.push_back(token); });
                   }},
              page.words);
    page.vocabulary = std::move(site);
    EXPECT_EQ(page.Tokens(), c.expected);
    EXPECT_EQ(page.words.tokenCount, page.tokens.size());
    const Posting* heron = page.Find("heron");
    ASSERT_EQ(heron == nullptr, std::string_view(c.expected).find("heron") == std::string::npos);
    if (heron == nullptr) continue;
    EXPECT_EQ(heron->zones, kInDescription);
    EXPECT_EQ(heron->total, c.texts.size());
    EXPECT_EQ(heron->body, 0u);
    EXPECT_EQ(page.tokens[heron->token].number, kWordBase + heron->word);
  }
}

TEST(PageTokens, BetweenPiecesABlankIsATokenAndNothingIsNone) {
  const struct {
    const char *what, *text, *expected;
  } cases[] = {
      {"a run", "日本", "日 本 ."},
      {"a blank between pieces", "日 本", "日 # 本 ."},
      {"a sign", "日、 本", "日 # 本 ."},
      {"a sign that is not shown", "日※本", "日 # 本 ."},
      {"a word without a blank", "日x", "日 # x ."},
      {"a word with one", "日 x 本", "日 x 本 ."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(CutOf({{c.text, 0}}, "", "", "", {.runs = RunCut::kPieces}).Tokens(), c.expected);
  }
  EXPECT_EQ(CutOf({{"日", 0}, {"本", 0}}, "語", "文", "", {.runs = RunCut::kPieces}).Tokens(),
            "日 # 本 | 語 | 文 .");
  EXPECT_EQ(CutOf({{"日。", 0}, {"本", 0}}, "", "", "", {.runs = RunCut::kPieces}).Tokens(),
            "日 # 本 .");
}

TEST(PageTokens, PiecesOfALongRunStandBesideEachOther) {
  std::string text;
  for (int i = 0; i < 4000; ++i) text += "本";  // more than a chunk holds
  const CutResult page = CutOf({{text, 0}}, "", "", "", {.runs = RunCut::kPieces});
  EXPECT_EQ(page.words.tokenCount, 4001u);
}

TEST(PageTokens, PositionIsTheFirstTokenOfTheBody) {
  const CutResult page = CutOf({{"a (b) c node.js c", 0}}, "Title c", "only-here b", "x");
  EXPECT_EQ(page.Tokens(), "a # b # c node.js c | title c | only-here b | x .");
  EXPECT_EQ(page.Find("a")->token, 0u);
  EXPECT_EQ(page.Find("b")->token, 2u);
  EXPECT_EQ(page.Find("c")->token, 4u);
  EXPECT_EQ(page.Find("node.js")->token, 5u);
  EXPECT_EQ(page.Find("js")->token, 5u);  // a part stands where its word stands
  EXPECT_EQ(page.Find("title")->token, 8u);
  EXPECT_EQ(page.Find("only-here")->token, 11u);
  EXPECT_EQ(page.Find("x")->token, 14u);
}

TEST(PageTokens, CountsOccurrences) {
  const CutResult page = CutOf({{"b b a-a", 0}, {"b", 1}}, "b c", "b");
  EXPECT_EQ(page.Find("b")->total, 5);
  EXPECT_EQ(page.Find("b")->body, 3);
  EXPECT_EQ(page.Find("a")->total, 1);  // both parts of one word
  EXPECT_EQ(page.Find("c")->total, 1);
  EXPECT_EQ(page.Find("c")->body, 0);
  std::string many;
  for (int i = 0; i < 300; ++i) many += "x ";
  EXPECT_EQ(CutOf({{many, 0}}, "t").Find("x")->total, 255);
}

TEST(PageTokens, KnowsTheZones) {
  const CutResult page = CutOf({{"a b", 1}, {"a c", 3}, {"d", 6}, {"e", 0}}, "a", "b", "c");
  EXPECT_EQ(page.Find("a")->zones,
            kInMainHeading | kInHeading | kInTitle | kTitleWord | kTitlePart);
  EXPECT_EQ(page.Find("b")->zones, kInMainHeading | kInDescription);
  EXPECT_EQ(page.Find("c")->zones, kInHeading | kInAddress);
  EXPECT_EQ(page.Find("d")->zones, kInSmallHeading);
  EXPECT_EQ(page.Find("e")->zones, 0);
  EXPECT_TRUE(page.vocabulary.words[page.Find("a")->word].inTitle);
  EXPECT_FALSE(page.vocabulary.words[page.Find("b")->word].inTitle);
}

TEST(PageTokens, TheOwnersWeightIsAZoneAndNoHeading) {
  const CutResult page = CutOf({{.text = "a", .weight = 1},
                                {.text = "b", .headingLevel = 1, .weight = 0},
                                {.text = "c", .headingLevel = 6, .weight = 2},
                                {.text = "d"}},
                               "t", "", "", {.endsHeadings = true});
  EXPECT_EQ(page.Find("a")->zones, kInMainHeading);
  EXPECT_EQ(page.Find("b")->zones, 0);
  EXPECT_EQ(page.Find("c")->zones, kInHeading);
  EXPECT_EQ(page.Find("d")->zones, 0);
  // Behind b and c stands the full stop of a heading.
  EXPECT_EQ(page.Tokens(), "a b # c # d | t .");
}

TEST(PageTokens, BlocksOfAShortPageHave32Words) {
  const CutResult page = CutOf({{Words(65), 0}}, "t");
  EXPECT_EQ(page.Find("w0")->blocks, 0x80);
  EXPECT_EQ(page.Find("w31")->blocks, 0x80);
  EXPECT_EQ(page.Find("w32")->blocks, 0x40);
  EXPECT_EQ(page.Find("w63")->blocks, 0x40);
  EXPECT_EQ(page.Find("w64")->blocks, 0x20);
  EXPECT_EQ(page.Find("t")->blocks, 0x80);
}

TEST(PageTokens, BlocksOfALongPageAreEighths) {
  // ceil(257 / 8) = 33 words a block: the seventh ends with word 230, the last has 26.
  const CutResult page = CutOf({{Words(257), 0}}, "t");
  EXPECT_EQ(page.Find("w32")->blocks, 0x80);
  EXPECT_EQ(page.Find("w33")->blocks, 0x40);
  EXPECT_EQ(page.Find("w230")->blocks, 0x02);
  EXPECT_EQ(page.Find("w231")->blocks, 0x01);
  EXPECT_EQ(page.Find("w256")->blocks, 0x01);
}

TEST(PageTokens, SignsBetweenTwoWordsAreOneToken) {
  const CutResult page = CutOf({{"open (2026): Monday \u2013 \"Friday\", and/or - not", 0}}, "t");
  EXPECT_EQ(page.Tokens(), "open # 2026 # monday # friday # and # or # not | t .");
  EXPECT_EQ(SignsOf(page), "( ): \u2013&#32;&#34; &#34;, / &#32;- ");
}

TEST(PageTokens, HeadingsEndWithASign) {
  const struct {
    const char* what;
    const char* heading;
    const char* sign;
  } kCases[] = {
      {"without one", "Opening hours", ". "},
      {"with a blank behind it", "Opening hours ", ". "},
      {"with a colon", "Opening hours:", ": "},
      {"a question", "Opening hours?", "? "},
      {"in a script without blanks", "\u958B\u9928", "\u3002 "},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    const std::vector<TextRun> body = {{c.heading, 2}, {"from nine", 0}};
    const CutResult page =
        CutOf(body, "t", "", "", {.runs = RunCut::kPieces, .endsHeadings = true});
    EXPECT_EQ(SignsOf(page), c.sign);
  }
  // The words of a title stand alone, and a heading without words is none.
  EXPECT_EQ(
      CutOf({{"a", 2}, {"\u00B6", 2}, {"b", 0}}, "t", "", "", {.endsHeadings = true}).Tokens(),
      "a # b | t .");
  EXPECT_EQ(CutOf({{"a", 2}, {"b", 0}}, "t").Tokens(), "a b | t .");
}

TEST(PageTokens, SignsAreNoWords) {
  std::string text;
  for (int i = 0; i < 31; ++i) text += "( ; ";
  const CutResult page = CutOf({{text + Words(33), 0}}, "t");
  EXPECT_EQ(page.page.bodyWords, 33u);
  EXPECT_EQ(page.Find("w31")->blocks, 0x80);
  EXPECT_EQ(page.Find("w32")->blocks, 0x40);
}

TEST(PageTokens, AWordCollectsItsBlocks) {
  const CutResult page = CutOf({{"x " + Words(40) + "x", 0}}, "t");
  EXPECT_EQ(page.Find("x")->blocks, 0xC0);
}

TEST(PageTokens, CountsDifferentTitleWords) {
  EXPECT_EQ(CutOf({}, "Python and the python — 3.11.").page.titleWords, 4u);
  EXPECT_EQ(CutOf({{"body words", 0}}, "One").page.titleWords, 1u);
}

TEST(PageTokens, VariantsAreThoseOfTheSite) {
  CutResult result = CutOf({{"Cat CAT cat", 0}}, "x");
  // The second page meets them in another order.
  CutResult second = CutOf({{"CAT cat Cat cAT", 0}}, "x");
  second.tokens.clear();
  second.JoinTo(result.vocabulary, result.signs, 1);
  const uint8_t kVariants[] = {2, 0, 1, 3};
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(second.tokens[i].variant, kVariants[i]) << i;
  EXPECT_EQ(result.vocabulary.words[0].pageCount, 2u);
  EXPECT_EQ(result.vocabulary.words[0].mostOnPage, 4);
}

TEST(PageTokens, AWordOfTextAndAddressIsOneWord) {
  const CutResult page = CutOf({{"a b", 0}}, "t", "", "b c b");
  EXPECT_EQ(page.Tokens(), "a b | t | b c b .");
  EXPECT_EQ(page.words.postings.size(), 4u);
  EXPECT_EQ(page.Find("b")->token, 1u);
  EXPECT_EQ(page.Find("b")->total, 3);
  EXPECT_EQ(page.Find("b")->body, 1);
  EXPECT_EQ(page.Find("b")->zones, kInAddress);
  EXPECT_EQ(page.Find("c")->token, 6u);
  EXPECT_EQ(page.vocabulary.words[page.Find("b")->word].addressOnlyPages, 0u);
  EXPECT_EQ(page.vocabulary.words[page.Find("c")->word].addressOnlyPages, 1u);
  EXPECT_EQ(CutOf({{std::string(600, 'a') + " a", 0}}, "", "", "a").Find("a")->total, 2);
}

// What was cut before must not show in a page.
TEST(PageCutter, APageIsCutAlikeWhateverCameBefore) {
  const IndexCharset utf8;
  PageCutter used(utf8, -1, {});
  // Keeps as little as can be, and forgets it again and again.
  PageCutter forgetful(utf8, -1, {.memory = 1});
  for (int i = 0; i < 3; ++i) {
    PageContent page;
    // Chunks of both kinds: some that are kept, and some too long for that.
    const std::string joined = "node.js-" + std::string(60, static_cast<char>('a' + i));
    page.body = {
        {"Node.js (" + joined + ") caf\u00E9 w" + std::to_string(i) + " caf\u00E9, " + joined, 0},
        {"Node.js caf\u00E9", 2},
        {Words(3000), 0}};
    PageWords ofUsed;
    PageWords ofForgetful;
    PageWords ofNew;
    RunningText runningOfUsed;
    RunningText runningOfNew;
    PageCutter fresh(utf8, -1, {});
    ASSERT_TRUE(used.Cut({.content = page, .title = "Node"}, ofUsed, &runningOfUsed));
    ASSERT_TRUE(fresh.Cut({.content = page, .title = "Node"}, ofNew, &runningOfNew));
    ASSERT_TRUE(forgetful.Cut({.content = page, .title = "Node"}, ofForgetful, nullptr));
    EXPECT_EQ(ofForgetful.wordTexts, ofNew.wordTexts);
    EXPECT_EQ(ofForgetful.formTexts, ofNew.formTexts);
    EXPECT_EQ(ofForgetful.tokens, ofNew.tokens);
    EXPECT_EQ(ofUsed.wordTexts, ofNew.wordTexts);
    EXPECT_EQ(ofUsed.formTexts, ofNew.formTexts);
    EXPECT_EQ(ofUsed.signTexts, ofNew.signTexts);
    EXPECT_EQ(ofUsed.tokens, ofNew.tokens);
    EXPECT_EQ(runningOfUsed.texts, runningOfNew.texts);
    EXPECT_EQ(runningOfUsed.sequence, runningOfNew.sequence);
  }
}

TEST(PageCutter, ForgetsAndKnowsAgain) {
  const IndexCharset utf8;
  PageCutter cutter(utf8, -1, {});
  PageContent page;
  page.body = {{Words(200000), 0}};  // more than is kept
  PageWords words;
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(cutter.Cut({.content = page, .title = ""}, words, nullptr));
    EXPECT_EQ(words.words.size(), 200000u);
    EXPECT_EQ(words.tokenCount, 200000u);
  }
  page.body = {{"w1 w2 w1", 0}};
  ASSERT_TRUE(cutter.Cut({.content = page, .title = ""}, words, nullptr));
  EXPECT_EQ(words.wordTexts, "w1w2");
}

TEST(PageCutter, TheRunningTextBreaksAtSigns) {
  const CutResult page =
      CutOf({{"One two, three (Four) five", 0}, {"six", 0}, {"Heading", 2}, {"a/b two", 0}}, "t");
  EXPECT_EQ(page.running.texts, "OnetwothreeFourfivesix");
  EXPECT_EQ(page.running.sequence, std::string("\1\2\0\3\0\4\0\5\0\6\0\2\0", 13));
}

TEST(PageCutter, SectionsBeginAtAnchors) {
  const CutResult page = CutOf({{"one two", 0}, {"three", 2, "x"}, {"four", 0, "y"}}, "t");
  ASSERT_EQ(page.sections.size(), 2u);
  EXPECT_EQ(page.sections[0].token, 2u);
  EXPECT_EQ(page.sections[0].run, 1u);
  EXPECT_EQ(page.sections[1].token, 3u);
  EXPECT_EQ(page.page.bodyTokens, 4u);
}

// "a;b" is two words and the sign between them; the last "b" has a sign as well.
TEST(PageTokens, ALongTextWithoutBlanksIsOneTextWithoutBlanks) {
  std::string text;
  std::string tokens;
  for (int i = 0; i < 20000; ++i) {
    text += "a;b;";
    tokens += "a # b # ";
  }
  const CutResult page = CutOf({{text, 0}}, "");
  EXPECT_EQ(page.Tokens(), tokens + ".");
  // Of "b;" at the end no sign is like that of "a;b", as a blank stands behind.
  const uint32_t between = page.tokens[1].number;
  for (size_t i = 1; i + 2 < page.tokens.size(); i += 2) {
    ASSERT_EQ(page.tokens[i].number, between) << i;
  }
  EXPECT_NE(page.tokens[page.tokens.size() - 2].number, between);
  EXPECT_EQ(page.page.bodyWords, 40000u);
}

TEST(PageTokens, WordsOfALongTextWithoutSignsTouch) {
  std::string text;
  for (int i = 0; i < 6000; ++i) text += "東京";
  const CutResult page = CutOf({{text, 0}}, "");
  ASSERT_EQ(page.tokens.size(), 12000u);  // word, sign, ..., word, page end
  const uint32_t touching = page.tokens[1].number;
  for (size_t i = 1; i + 1 < page.tokens.size(); i += 2) {
    ASSERT_EQ(page.tokens[i].number, touching) << i;
  }
}

TEST(PageCutter, WhatAPageTakesIsInProportionToItsText) {
  for (const std::string piece : {"a-b;c.", "a-", "a ", "(a) b-c; "}) {
    SCOPED_TRACE(piece);
    std::string text;
    while (text.size() < (size_t{1} << 20)) text += piece;
    const CutResult page = CutOf({{text, 0}}, "a");
    EXPECT_LE(page.words.postings.size(), 5u);
    EXPECT_LT(MemoryOf(page.page), 3 * text.size());
  }
}

TEST(PageCutter, AStopEndsTheCutting) {
  PageContent page;
  page.body = {{Words(100000), 0}};
  const IndexCharset utf8;
  volatile std::sig_atomic_t stop = 1;
  PageCutter cutter(utf8, -1, {.stop = &stop});
  PageWords words;
  EXPECT_FALSE(cutter.Cut({.content = page, .title = "x"}, words, nullptr));
  EXPECT_TRUE(words.words.empty());
  EXPECT_FALSE(cutter.CutAddress("x", words));
  stop = 0;
  EXPECT_TRUE(cutter.Cut({.content = page, .title = "x"}, words, nullptr));
  EXPECT_EQ(words.words.size(), 100001u);
}

}  // namespace
}  // namespace vela::indexer
