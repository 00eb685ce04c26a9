#include "search/phrase.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;
using support::Occurrence;
using support::PageTextToken;

double g_now = 100;

// Words 0 and 1 end a run of text, 2 is punctuation.
enum Number : uint32_t { kEnd, kRun, kComma, kNew, kYork, kPie, kBeyond };
constexpr uint64_t kTokenSize = 4;

// Where a word stands: page, score, block flags and token.
Occurrence At(uint64_t token, uint8_t score = 10, uint8_t flags = 1, uint32_t page = 0) {
  return {page, score, flags, token, true};
}

struct Records {
  std::vector<Occurrence> ofNew = {At(0)};
  std::vector<Occurrence> ofYork = {At(1)};
};

IndexBuilder Site(const Records& records, const std::vector<uint32_t>& text) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4").Set("DictReservedLimit", "2").Set("AllowExactPhrase", "1");
  builder.Set("MaxContextSeeks", "5");
  for (const char* url : {"a.html", "b.html", "c.html"}) builder.Page(NewPage(url));
  builder.Word("r0").Word("r1").Word(",").Word("new", records.ofNew).Word("york", records.ofYork);
  builder.Word("pie");
  std::vector<PageTextToken> tokens;
  for (uint32_t word : text) tokens.push_back({word, 0});
  return builder.Tokens(tokens);
}

// A phrase over a site, with room for five verifications and no limit of time.
struct Verification {
  LoadedSite site;
  Phrase phrase;
  PageTextReader text;
  PhraseBudget budget;
  WordMapRecord found;
  TermStatus prepared;

  explicit Verification(const IndexBuilder& builder, const std::string& words = "new york")
      : site(builder) {
    prepared = PreparePhrase(phrase, words, site.dictionary, site.files.wordMap.bytes()).status;
    text.file = site.files.pageText.bytes();
    text.tokenSize = site.settings.DictIDLen;
    g_now = 100;
    budget = {5, 0, 100, [] { return g_now; }};
  }
  CandidateResult Test(int32_t record = 0) {
    return TestCandidate(phrase, RecordAt(phrase.words[0].list, record), site.settings, TextPairs(),
                         text, budget, found);
  }
};

TEST(PreparePhrase, WordsAndTheirLists) {
  Verification v(Site({{At(0), At(5, 1, 1, 1)}, {At(1)}}, {}), " new  york pie ");
  ASSERT_EQ(v.prepared, TermStatus::kOk);
  ASSERT_EQ(v.phrase.words.size(), 3U);
  EXPECT_EQ(v.phrase.words[0].number, int32_t{kNew});
  EXPECT_EQ(v.phrase.words[0].list.size(), 2);
  EXPECT_EQ(v.phrase.words[1].number, int32_t{kYork});
  EXPECT_EQ(v.phrase.words[1].list.size(), 1);
  EXPECT_EQ(v.phrase.words[2].number, int32_t{kPie});
  EXPECT_EQ(v.phrase.words[2].list.size(), 0);  // a word on no page
}

TEST(PreparePhrase, OneWordMissingAndNothingMatches) {
  for (const char* words : {"new jersey", "jersey new", "New york", "new york jersey"}) {
    SCOPED_TRACE(words);
    Verification v(Site({}, {}), words);
    EXPECT_EQ(v.prepared, TermStatus::kOk);
    EXPECT_TRUE(v.phrase.words.empty());
  }
}

TEST(PreparePhrase, WordsAreLookedForFromTheFirstOneOn) {
  Verification v(Site({}, {}), "new , york");
  ASSERT_EQ(v.phrase.words.size(), 3U);
  EXPECT_EQ(v.phrase.words[1].number, int32_t{kComma});
}

TEST(PreparePhrase, NoWords) {
  for (const char* words : {"", "  "}) {
    Verification v(Site({}, {}), words);
    EXPECT_EQ(v.prepared, TermStatus::kOk);
    EXPECT_TRUE(v.phrase.words.empty());
  }
}

TEST(PreparePhrase, DamagedLists) {
  const struct {
    const char* offset;
    TermStatus status;
  } cases[] = {{"99999", TermStatus::kMissingData}, {"-2", TermStatus::kSeekFailed}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.offset);
    IndexBuilder builder = Site({}, {});
    builder.WordWithOffset("bad", c.offset);
    Verification v(builder, "new bad");
    EXPECT_EQ(v.prepared, c.status);
    EXPECT_TRUE(v.phrase.words.empty());
  }
}

TEST(PreparePhrase, OutOfMemory) {
  Verification v(Site({}, {}));
  g_failAllocationNumber = 1;
  v.prepared =
      PreparePhrase(v.phrase, "new york", v.site.dictionary, v.site.files.wordMap.bytes()).status;
  g_failAllocationNumber = 0;
  EXPECT_EQ(v.prepared, TermStatus::kNoMemory);
  EXPECT_TRUE(v.phrase.words.empty());
}

TEST(TestCandidate, TextsTable) {
  const struct {
    const char* what;
    std::vector<uint32_t> text;
    uint8_t score;   // of the first word: as often as it occurs
    uint64_t newAt;  // tokens of the two records
    uint64_t yorkAt;
    int64_t expected;  // the token where the phrase begins, -1 for none
  } cases[] = {
      {"the two words", {kNew, kYork, kEnd}, 1, 0, 1, 0},
      {"in the other order", {kYork, kNew, kEnd}, 1, 1, 0, -1},
      {"with another word between", {kNew, kPie, kYork, kEnd}, 1, 0, 2, -1},
      {"with punctuation between", {kNew, kComma, kComma, kYork, kEnd}, 1, 0, 3, 0},
      {"behind punctuation", {kComma, kNew, kYork, kEnd}, 1, 0, 2, 1},
      {"the first word twice", {kNew, kNew, kYork, kEnd}, 2, 0, 2, 1},
      {"a run of text ends between", {kNew, kRun, kYork, kEnd}, 1, 0, 2, -1},
      {"the page ends between", {kNew, kEnd, kYork, kEnd}, 1, 0, 2, -1},
      {"the data ends", {kNew}, 1, 0, 1, -1},
      {"at the end of the data", {kNew, kYork}, 1, 0, 1, 0},
      {"behind the end of a run", {kNew, kRun, kNew, kYork, kEnd}, 1, 0, 3, 2},
      {"not behind the end of the page", {kNew, kEnd, kNew, kYork, kEnd}, 9, 0, 3, -1},
      {"a number beyond the words ends a pass", {kNew, kBeyond, kYork, kEnd}, 1, 0, 2, -1},
      {"and the next pass goes on", {kNew, kBeyond, kNew, kYork, kEnd}, 1, 0, 3, 2},
      {"one more first word than its score", {kNew, kPie, kNew, kYork, kEnd}, 1, 0, 3, 2},
      {"two more", {kNew, kPie, kNew, kPie, kNew, kYork, kEnd}, 1, 0, 4, -1},
      {"one more than a score of 2", {kNew, kPie, kNew, kPie, kNew, kYork, kEnd}, 2, 0, 4, 4},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Verification v(Site({{At(c.newAt, c.score)}, {At(c.yorkAt)}}, c.text));
    const CandidateResult result = v.Test();
    EXPECT_EQ(result, c.expected < 0 ? CandidateResult::kRejected : CandidateResult::kFound);
    if (result == CandidateResult::kFound) {
      EXPECT_EQ(v.found.position, kTokenSize * static_cast<uint64_t>(c.expected));
    }
    EXPECT_EQ(v.budget.seeksDone, 1);
  }
}

TEST(TestCandidate, FirstWordInsideThePhraseStartsItAnew) {
  // In one pass, so that the score of 1 is not asked.
  Verification v(Site({{At(0, 1)}, {At(1)}}, {kNew, kYork, kNew, kYork, kPie, kEnd}),
                 "new york pie");
  EXPECT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(v.found.position, 2 * kTokenSize);
}

TEST(TestCandidate, ScoresAreAddedUp) {
  Verification v(Site({{At(0, 200)}, {At(1, 100), At(2, 7)}}, {kNew, kYork, kEnd}));
  ASSERT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(v.found.score, 300U);  // of the page's first record of each word
  EXPECT_EQ(v.found.page, 0U);
  EXPECT_EQ(v.found.proximity, 1);
}

TEST(TestCandidate, BlocksTable) {
  const struct {
    uint8_t first;
    uint8_t second;
    bool expected;
  } cases[] = {
      {1, 1, true},   {2, 1, true},     {1, 2, false},   {0x80, 0x40, true}, {0x40, 0x80, false},
      {3, 4, false},  {4, 2, true},     {4, 1, false},   {0, 0, false},      {0, 255, false},
      {255, 1, true}, {1, 0x80, false}, {2, 0x81, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.first) + ", " + std::to_string(c.second));
    Verification v(Site({{At(0, 10, c.first)}, {At(1, 10, c.second)}}, {kNew, kYork, kEnd}));
    EXPECT_EQ(v.Test(), c.expected ? CandidateResult::kFound : CandidateResult::kRejected);
    EXPECT_EQ(v.budget.seeksDone, c.expected ? 1 : 0);
  }
}

TEST(TestCandidate, PageWithoutOneOfTheWordsIsNotRead) {
  Verification v(
      Site({{At(0, 10, 1, 1)}, {At(1, 10, 1, 0), At(1, 10, 1, 2)}}, {kNew, kYork, kEnd}));
  EXPECT_EQ(v.Test(), CandidateResult::kRejected);
  EXPECT_EQ(v.budget.seeksDone, 0);
}

TEST(TestCandidate, ListsNeedNotBeSorted) {
  Verification v(
      Site({{At(0, 10, 1, 1)}, {At(0, 9, 1, 2), At(1, 5, 1, 1), At(1, 6, 1, 0), At(2, 7, 1, 1)}},
           {kNew, kYork, kEnd}));
  ASSERT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(v.found.score, 15U);
}

TEST(TestCandidate, WordWithoutPagesIsFoundInTheTextAlone) {
  Verification v(Site({{At(0, 10, 0)}, {}}, {kNew, kYork, kEnd}));
  ASSERT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(v.found.score, 10U);
}

TEST(TestCandidate, ReadingBeginsAFewTokensAheadOfTheFurthestWord) {
  // york's record stands at token 10: reading begins four tokens before it, at token 6.
  std::vector<uint32_t> text(12, kPie);
  text[10] = kYork;
  text[11] = kEnd;
  const struct {
    uint64_t at;  // where the phrase's words stand
    bool expected;
  } cases[] = {{0, false}, {5, false}, {6, true}, {9, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.at);
    std::vector<uint32_t> withPhrase = text;
    withPhrase[c.at] = kNew;
    withPhrase[c.at + 1] = kYork;
    Verification v(Site({{At(0)}, {At(10)}}, withPhrase));
    EXPECT_EQ(v.Test(), c.expected ? CandidateResult::kFound : CandidateResult::kRejected);
  }
}

TEST(TestCandidate, NoMoreTextIsReadThanTheFirstWordOccurs) {
  // The reading ends where a pass that began with one occurrence too many breaks off.
  std::vector<uint32_t> text;
  for (int i = 0; i < 1000; ++i) text.insert(text.end(), {kNew, kPie});
  for (uint8_t score : {uint8_t{1}, uint8_t{2}, uint8_t{10}}) {
    Verification v(Site({{At(0, score)}, {At(1)}}, text));
    EXPECT_EQ(v.Test(), CandidateResult::kRejected);
    EXPECT_EQ(v.text.position, kTokenSize * 2 * (uint64_t{score} + 1));
  }
}

TEST(TestCandidate, ARunScoresAsItsLeastPiece) {
  Verification v(Site({{At(0, 30)}, {At(1, 20)}}, {kNew, kYork, kEnd}));
  ASSERT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(v.found.score, 50u);
  v.phrase.isRun = true;
  ASSERT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(v.found.score, 20u);
  // Weights are halves of the bytes; the lowest bit stays when all words have it.
  v.site.settings.Ranking = 1;
  ASSERT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(v.found.score, 20u);
}

TEST(CountPhrase, CountsToTheEndOfThePage) {
  Verification v(Site({{At(0)}, {At(1)}}, {kNew, kYork, kPie, kNew, kYork, kRun, kNew, kYork, kNew,
                                           kEnd, kNew, kYork}));
  v.site.settings.PhraseSigns = 1;
  ASSERT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(CountPhrase(v.phrase, v.site.settings, v.text), 2u);
  EXPECT_EQ(v.text.file.size(), v.site.files.pageText.bytes().size());
}

TEST(TestCandidate, PhraseSignsMayStandBetweenAnyTwoWords) {
  // york's record stands at token 10.
  const struct {
    const char *what, *signs;
    uint64_t at;  // where the phrase begins; its words stand side by side
    bool expected;
  } cases[] = {
      {"one sign: two tokens ahead", "1", 8, true},
      {"one sign: no more", "1", 7, false},
      {"three signs: four tokens ahead", "3", 6, true},
      {"none: as usual, four tokens ahead", "0", 6, true},
      {"a number below 0 is none", "-1", 6, true},
      {"none: no more", "0", 5, false},
      {"the largest number", "2147483647", 0, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<uint32_t> text(12, kPie);
    text[10] = kYork;
    text[11] = kEnd;
    text[c.at] = kNew;
    text[c.at + 1] = kYork;
    Verification v(Site({{At(0)}, {At(10)}}, text).Set("PhraseSigns", c.signs));
    EXPECT_EQ(v.Test(), c.expected ? CandidateResult::kFound : CandidateResult::kRejected);
  }
}

TEST(TestCandidate, WithPhraseSignsThePageIsReadToItsEnd) {
  std::vector<uint32_t> text;
  for (int i = 0; i < 300; ++i) text.insert(text.end(), {kNew, kPie});
  const uint64_t length = text.size() + 1;
  text.insert(text.end(), {kEnd, kNew, kYork, kEnd});
  Verification other(Site({{At(0, 255)}, {At(1)}}, text).Set("PhraseSigns", "1"));
  EXPECT_EQ(other.Test(), CandidateResult::kRejected);  // the next page has it
  EXPECT_EQ(other.text.position, kTokenSize * length);
  text[length - 1] = kNew;
  Verification v(Site({{At(0, 255)}, {At(1)}}, text).Set("PhraseSigns", "1"));
  EXPECT_EQ(v.Test(), CandidateResult::kFound);
}

TEST(TestCandidate, LimitOfVerifications) {
  Verification v(Site({}, {kNew, kYork, kEnd}));
  for (int i = 0; i < 5; ++i) EXPECT_EQ(v.Test(), CandidateResult::kFound);
  EXPECT_EQ(v.budget.seeksDone, 5);
  EXPECT_EQ(v.Test(), CandidateResult::kStop);
  EXPECT_EQ(v.budget.seeksDone, 6);
}

TEST(TestCandidate, NoVerificationsAllowed) {
  Verification v(Site({}, {kNew, kYork, kEnd}));
  v.budget.maxSeeks = 0;
  EXPECT_EQ(v.Test(), CandidateResult::kStop);
  EXPECT_EQ(v.budget.seeksDone, 1);
}

TEST(TestCandidate, LimitOfTime) {
  Verification v(Site({}, {kNew, kYork, kEnd}));
  EXPECT_EQ(v.Test(), CandidateResult::kFound);
  g_now = 100.001;
  EXPECT_EQ(v.Test(), CandidateResult::kStop);
}

TEST(TestCandidate, FarBeyondTheLimitDistantWordsAreRejectedUnread) {
  const struct {
    const char* what;
    int32_t seeksDone;
    uint64_t yorkAt;
    CandidateResult expected;
    int32_t seeksAfter;
  } cases[] = {
      {"words five tokens apart", 56, 5, CandidateResult::kRejected, 56},
      {"words four tokens apart", 56, 4, CandidateResult::kStop, 57},
      {"not yet far beyond the limit", 55, 5, CandidateResult::kStop, 56},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Verification v(Site({{At(0)}, {At(c.yorkAt)}}, {kNew, kYork, kEnd}));
    v.budget.seeksDone = c.seeksDone;
    EXPECT_EQ(v.Test(), c.expected);
    EXPECT_EQ(v.budget.seeksDone, c.seeksAfter);
  }
}

}  // namespace
}  // namespace vela
