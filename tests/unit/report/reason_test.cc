#include "indexer/report/reason.h"

#include <gtest/gtest.h>

#include <set>

namespace vela::indexer {
namespace {

TEST(Reason, EachHasATextAndACodeOfItsOwn) {
  EXPECT_EQ(ReasonText(Reason::kNone), "");
  std::set<std::string_view> texts;
  std::set<std::string_view> codes;
  const auto last = static_cast<int>(Reason::kLogFolderNotGiven);
  for (int i = 1; i <= last; ++i) {
    const std::string_view text = ReasonText(static_cast<Reason>(i));
    EXPECT_FALSE(text.empty()) << i;
    EXPECT_TRUE(texts.insert(text).second) << text;
    const std::string_view code = ReasonCode(static_cast<Reason>(i));
    EXPECT_EQ(code.find_first_not_of("abcdefghijklmnopqrstuvwxyz_"), code.npos) << code;
    EXPECT_TRUE(codes.insert(code).second) << code;
  }
}

TEST(Reason, ATextNamesWhatItIsAbout) {
  const struct {
    const char* what;
    Finding finding;
    const char* text;
  } kCases[] = {
      {"a file", {Reason::kNoText, "", ""}, "no text"},
      {"a field; its value is shown elsewhere",
       {Reason::kNoAmount, "price", "cheap"},
       "price: no amount"},
      {"a rule without a place",
       {Reason::kUnusedCategory, "", "100% News"},
       "the category \"100% News\" fits no page"},
      {"a rule with its place",
       {Reason::kNoPageToRecommend, "x.toml, line 4", "c.html"},
       "x.toml, line 4: there is no page c.html to recommend"},
      {"a place alone",
       {Reason::kUnusedBoost, "x.toml, line 2", ""},
       "x.toml, line 2: this [[boost]] fits no page"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FindingText(c.finding), c.text);
  }
}

}  // namespace
}  // namespace vela::indexer
