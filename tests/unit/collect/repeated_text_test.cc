#include "indexer/collect/repeated_text.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

const std::string kBanner = "we use cookies to make this better";

std::vector<TextRun> PageOf(int number, bool hasBanner) {
  const std::string n = std::to_string(number);
  std::string text = "a" + n + " b" + n + " c" + n + " d" + n + " ";
  if (hasBanner) text += kBanner + " ";
  return {{"Heading of all the pages there are", 1}, {text + "e" + n, 0}};
}

std::vector<uint64_t> RepeatedIn(int with, int without) {
  RepeatedText texts;
  for (int i = 0; i < with; ++i) texts.Add(PageOf(i, true));
  for (int i = 0; i < without; ++i) texts.Add(PageOf(1000 + i, false));
  return texts.Repeated();
}

TEST(RepeatedText, IsOnMoreThanHalfOfThePagesAndOnTen) {
  EXPECT_EQ(RepeatedIn(10, 9).size(), 2u);  // seven words hold six in a row twice
  EXPECT_EQ(RepeatedIn(10, 10).size(), 0u);
  EXPECT_EQ(RepeatedIn(9, 0).size(), 0u);
  EXPECT_EQ(RepeatedIn(0, 0).size(), 0u);
}

TEST(RepeatedText, CountsAPageOnce) {
  RepeatedText texts;
  for (int i = 0; i < 4; ++i) {
    texts.Add({{kBanner + " x " + kBanner + " y " + kBanner, 0}});
  }
  EXPECT_TRUE(texts.Repeated().empty());
}

TEST(RepeatedText, IsTakenOutOfTextButNotOfHeadings) {
  const std::vector<uint64_t> repeated = RepeatedIn(10, 0);
  const struct {
    const char* what;
    std::vector<TextRun> body;
    std::vector<std::string> left;
    std::vector<std::string> taken;
  } kCases[] = {
      {"in the middle", {{"a " + kBanner + " b", 0}}, {"a  b"}, {kBanner}},
      {"twice, with more blanks between",
       {{kBanner + "   " + kBanner + " b", 0}},
       {"    b"},
       {kBanner, kBanner}},
      {"six words of it",
       {{"a we use cookies to make this", 0}},
       {"a "},
       {"we use cookies to make this"}},
      {"five words of it", {{"we use cookies to make a", 0}}, {"we use cookies to make a"}, {}},
      {"nothing else", {{kBanner, 0}, {"a", 0}}, {"a"}, {kBanner}},
      {"nothing else, with an anchor", {{kBanner, 0, "x"}}, {""}, {kBanner}},
      {"a heading", {{kBanner, 2}}, {kBanner}, {}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::vector<TextRun> body = c.body;
    std::vector<std::string> taken;
    LeaveOutRepeated(repeated, body, &taken);
    std::vector<std::string> left;
    for (const TextRun& run : body) left.push_back(run.text);
    EXPECT_EQ(left, c.left);
    EXPECT_EQ(taken, c.taken);
  }
}

TEST(RepeatedText, ForgetsWhatFewOfManyPagesHave) {
  RepeatedText texts;
  for (int page = 0; page < 40; ++page) {
    std::string text = kBanner;
    for (int i = 0; i < 40000; ++i) text += " " + std::to_string(page * 40000 + i);
    texts.Add({{text, 0}});
  }
  EXPECT_EQ(texts.Repeated().size(), 2u);
}

}  // namespace
}  // namespace vela::indexer
