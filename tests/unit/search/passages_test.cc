#include "search/passages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "search/query.h"
#include "search/snippets.h"
#include "support/loaded_site.h"
#include "support/with_lookup.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::NewPage;
using support::PageTextToken;

constexpr uint64_t kTokenSize = 4;

std::vector<std::string> WordsOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// A site of one text, given by its words between blanks: "|" ends a page, "/" a stretch of one, and
// . , ? ( - are signs. The first words are those of most pages.
struct Site {
  support::ScratchDirectory scratch;
  IndexDirectory directory;
  Settings settings;
  IndexFiles files;
  Dictionary dictionary;
  TermList terms;
  TermSearch search;
  std::vector<std::string> text;

  Site(const std::string& pages, const std::string& query, int32_t contextSize,
       const std::string& common = "the of and And")
      : text(WordsOf(pages)) {
    IndexBuilder builder;
    builder.Set("DictIDLen", "4").Set("DisplayContext", "1").Set("MaxContextKeywords", "3");
    builder.Set("ContextSize", std::to_string(contextSize)).Set("ToLowerSearchWords", "1");
    builder.Set("DictReservedSuffixes", "4").Set("DictReservedPrefixes", "5");
    builder.Set("DictReservedNoSpaces", "6").Set("DictReservedLimit", "6");
    builder.Set("AllowExactPhrase", "1");
    std::vector<std::string> known = {"|", "/", ".", ",", "?", "(", "-"};
    for (const std::string& word : known) builder.Word(word);
    const auto number = [&](const std::string& word) {
      const auto found = std::ranges::find(known, word);
      if (found != known.end()) return static_cast<uint32_t>(found - known.begin());
      known.push_back(word);
      builder.Word(word);
      return static_cast<uint32_t>(known.size() - 1);
    };
    for (const std::string& word : WordsOf(common)) number(word);
    // The other words of the text are none of those that stand on most pages.
    for (int i = 0; i < 64; ++i) number(std::to_string(1000 + i));
    std::vector<PageTextToken> tokens;
    for (const std::string& word : text) tokens.push_back({number(word), 0});
    builder.Tokens(tokens).Page(NewPage("a.html")).Page(NewPage("b.html"));
    builder.WriteTo(scratch.path());
    EXPECT_TRUE(support::AddLookup(scratch.path()));
    OpenIndexDirectory(directory, scratch.path().string());
    EXPECT_EQ(ReadSettingsFile(settings, directory), SettingsStatus::kOk);
    EXPECT_EQ(OpenIndexFiles(files, directory, settings).status, LoadStatus::kOk);
    EXPECT_EQ(dictionary.Load(directory, settings, files.lookup).status, DictionaryStatus::kOk);
    bool hasPhrase = false;
    EXPECT_TRUE(SplitQuery(query, terms, hasPhrase));
    EXPECT_TRUE(StartTermSearch(search, terms, settings));
  }

  // What is shown of the page when the search found its terms at these places of the text: pieces
  // between " ... ", words that are marked in brackets.
  std::string Shown(const std::vector<uint64_t>& places, uint32_t page = 0) {
    ResultEntry entry;
    entry.page = page;
    entry.termsMatched = static_cast<uint32_t>(places.size());
    uint64_t* const positions[] = {&entry.firstPosition, &entry.secondPosition,
                                   &entry.thirdPosition};
    for (size_t i = 0; i < places.size() && i < 3; ++i) *positions[i] = kTokenSize * places[i];
    PassageWords words;
    words.Collect({search.terms.data(), search.terms.size()}, dictionary, settings);
    PassagePlan plan;
    PlanPassages({.settings = settings,
                  .dictionary = dictionary,
                  .pageText = files.pageText.bytes(),
                  .words = words},
                 entry, plan);
    isInText = plan.isInText;
    answer = plan.answer / kTokenSize;
    HighlightTerms highlight;
    EXPECT_TRUE(CollectHighlightTerms(highlight, terms, true));
    PageTextReader reader;
    reader.file = files.pageText.bytes();
    reader.tokenSize = settings.DictIDLen;
    const SnippetSource source = {.settings = settings,
                                  .dictionary = dictionary,
                                  .terms = highlight,
                                  .marksWords = true,
                                  .plan = &plan,
                                  .text = reader};
    SnippetWalk walk = StartSnippets(settings, entry);
    SnippetPiece piece;
    std::string shown;
    while (NextPiece(walk, source, entry, piece) == SnippetStatus::kPiece) {
      if (!shown.empty()) shown += " ...";
      for (int32_t i = 0; i < piece.count; ++i) {
        const SnippetSlot& slot = piece.slots[static_cast<size_t>(i)];
        const bool opens = slot.mark == SlotMark::kWhole || slot.mark == SlotMark::kOpen;
        const bool closes = slot.mark == SlotMark::kWhole || slot.mark == SlotMark::kClose;
        if (!shown.empty()) shown += ' ';
        shown += std::string(opens ? "[" : "") + std::string(dictionary.WordAt(slot.word)) +
                 (closes ? "]" : "");
      }
    }
    return shown;
  }
  uint64_t Place(const std::string& word, size_t from = 0) const {
    return static_cast<uint64_t>(
        std::find(text.begin() + static_cast<ptrdiff_t>(from), text.end(), word) - text.begin());
  }
  bool isInText = false;
  uint64_t answer = 0;
};

// The words of a query in a script without blanks are its pieces, of which three take the room of
// one word.
TEST(Passages, PiecesTakeAThirdOfTheRoomOfAWord) {
  const std::string pages = "暗 号 化 す る こ と が で き ま す x y z |";
  Site site(pages, "暗", 2);
  EXPECT_EQ(site.Shown({0}), "[暗] 号");
  site.settings.UseUTF8 = site.settings.CutRuns = 1;
  EXPECT_EQ(site.Shown({0}), "[暗] 号 化 す る こ");
  Site words("暗 号 a b c d e f g h i j |", "暗", 2);
  words.settings.UseUTF8 = words.settings.CutRuns = 1;
  EXPECT_EQ(words.Shown({0}), "[暗] 号");
}

TEST(Passages, ShowsWhereTheWordsStandTogether) {
  // Both words stand in the list of contents first, far from each other.
  Site site("files w1 w2 w3 w4 w5 w6 w7 w8 json w9 w10 w11 w12 . Read json files , then x . |",
            "json files", 6);
  EXPECT_EQ(site.Shown({site.Place("json"), site.Place("files")}), "Read [json] [files] , then x");
  EXPECT_TRUE(site.isInText);
  EXPECT_EQ(site.answer, site.Place("json", 10));
}

TEST(Passages, BeginsWithTheSentenceWhereAllFits) {
  Site near("a1 a2 a3 . The b1 b2 cat b3 b4 b5 b6 b7 |", "cat", 8);
  EXPECT_EQ(near.Shown({7}), "The b1 b2 [cat] b3 b4 b5 b6");
  // The sentence begins too far ahead: a third of the piece is shown before the word.
  Site far("a1 . The b1 b2 b3 b4 b5 b6 b7 b8 b9 cat c1 c2 c3 c4 c5 |", "cat", 8);
  EXPECT_EQ(far.Shown({12}), "b8 b9 [cat] c1 c2 c3 c4 c5");
  // A full stop that lower case follows is that of an abbreviation.
  Site abbreviation("a1 . The e.g . b2 cat b3 b4 b5 b6 b7 |", "cat", 8);
  EXPECT_EQ(abbreviation.Shown({6}), "The e.g . b2 [cat] b3 b4 b5");
}

TEST(Passages, OneSentenceRatherThanAList) {
  // Of a word alone every place is as good: the one in running text is shown.
  Site site("w1 cat w2 w3 w4 w5 w6 w7 . And the cat of the w8 . |", "cat", 7);
  EXPECT_EQ(site.Shown({1}), "And the [cat] of the w8 .");
}

TEST(Passages, TwoPiecesForWordsThatStandApart) {
  Site site("x1 cat x2 x3 x4 x5 x6 x7 x8 x9 y1 y2 y3 dog y4 y5 y6 |", "cat dog", 8);
  EXPECT_EQ(site.Shown({1, 13}), "x1 [cat] x2 x3 ... y3 [dog] y4 y5");
}

TEST(Passages, RareWordsBeforeCommonOnes) {
  // "of" is on every page: where it stands beside "the" is not better than where "zebra" stands.
  Site site("x1 of the x2 x3 x4 x5 x6 x7 x8 x9 y1 y2 y3 zebra y4 y5 y6 |", "of the zebra", 6);
  EXPECT_EQ(site.Shown({1, 2, 14}), "y3 [zebra] y4 ... x1 [of] [the]");
}

TEST(Passages, KnowsTheWordsThatAreJoinedWithIt) {
  Site site("json x1 x2 x3 x4 x5 x6 x7 x8 . Call json.load with files . |", "json files", 6);
  EXPECT_EQ(site.Shown({0, 14}), "Call [json.load] with [files] .");
  const LookupFile none;
  ASSERT_EQ(site.dictionary.Load(site.directory, site.settings, none).status,
            DictionaryStatus::kOk);
  EXPECT_EQ(site.Shown({0, 14}), "Call [json.load] with [files] .");
}

TEST(Passages, TakesTheWordFoundForATermThatIsNotWritten) {
  // The search found "netz" by a part of the compound.
  Site site("x1 x2 x3 x4 x5 x6 x7 x8 Netzwerk x9 y1 y2 |", "netz", 4);
  EXPECT_EQ(site.Shown({8}), "x8 [Netzwerk] x9 y1");
  // A rare word, not one of those that are on nearly every page.
  Site both("x1 zebra x2 x3 x4 x5 x6 x7 Netzwerk zebra y1 |", "the netz zebra", 5);
  EXPECT_EQ(both.Shown({8, 1}), "x7 [Netzwerk] [zebra] y1");
}

TEST(Passages, ShowsHowAPageBeginsThatHasTheWordInItsTitleOnly) {
  // The first page's text is not shown for the second, nor what only repeats the title.
  Site site(
      "other page | Cats and dogs Some pets are kept in houses . / Cats and dogs Guide / "
      "pets.html |",
      "guide", 5);
  EXPECT_EQ(site.Shown({site.Place("Guide")}, 1), "Some pets are kept in");
  EXPECT_FALSE(site.isInText);
  Site first("Some pets are kept in houses . / Cats Guide / pets.html | Guide |", "guide", 5);
  EXPECT_EQ(first.Shown({first.Place("Guide")}), "Some pets are kept in");
}

TEST(Passages, NoPieceOfSignsAndNumbers) {
  Site site("3 . 2 . 1 , 4 - 5 |", "3", 6);
  EXPECT_EQ(site.Shown({0}), "");
}

TEST(Passages, EndsWithThePage) {
  Site site("x1 x2 cat | cat dog |", "cat dog", 9);
  EXPECT_EQ(site.Shown({2}), "x1 x2 [cat]");
}

TEST(Passages, LooksAtAFewThousandTokensOnly) {
  std::string text = "cat ";
  for (int i = 0; i < 4000; ++i) text += "x ";
  // Beyond what is looked at from the first word on, but near a place where the search found one.
  Site site(text + ". The dog and the cat . |", "cat dog", 6);
  const uint64_t dog = site.Place("dog");
  EXPECT_EQ(site.Shown({0, dog}), "The [dog] and the [cat] .");
  EXPECT_EQ(site.Shown({0}), "[cat] x x x x x");
}

TEST(Passages, PlacesThatAreNone) {
  Site site("cat dog |", "cat", 4);
  EXPECT_EQ(site.Shown({99}), "");
  EXPECT_EQ(site.Shown({2}), "");  // the end of a page
  site.settings.DictIDLen = 0;
  EXPECT_EQ(site.Shown({0}), "");
  site.settings.DictIDLen = 4;
  site.settings.ContextSize = -1;
  EXPECT_EQ(site.Shown({0}), "");
}

}  // namespace
}  // namespace vela
