#include "indexer/report/left_out.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(LeftOut, NamesOnlyTheFirstFilesOfAReason) {
  LeftOut leftOut;
  for (const char* path : {"a", "b", "c", "d"}) AddLeftOut(leftOut, Reason::kNoText, path);
  EXPECT_EQ(leftOut.total, 4u);
  const LeftOut::Group& group = leftOut.groups.at({"", Reason::kNoText});
  EXPECT_EQ(group.count, 4u);
  EXPECT_EQ(group.examples, (std::vector<std::string>{"a", "b", "c"}));
}

TEST(LeftOut, ListsEverything) {
  LeftOut leftOut;
  for (const char* path : {"a", "b", "c", "d"}) {
    AddLeftOut(leftOut, Reason::kNoAmount, path, "price", "cheap");
  }
  ASSERT_EQ(leftOut.entries.size(), 4u);
  EXPECT_EQ(leftOut.entries[3].path, "d");
  EXPECT_EQ(leftOut.entries[3].where, "price");
  EXPECT_EQ(leftOut.entries[3].value, "cheap");
  EXPECT_EQ(leftOut.groups.begin()->second.examples.front(), "a (\"cheap\")");
}

TEST(LeftOut, CountsAFieldsValuesByThemselves) {
  LeftOut leftOut;
  AddLeftOut(leftOut, Reason::kNoAmount, "a", "price");
  AddLeftOut(leftOut, Reason::kNoAmount, "b", "fee");
  AddLeftOut(leftOut, Reason::kNotInList, "c", "level");
  EXPECT_EQ(leftOut.groups.size(), 3u);
  EXPECT_EQ(leftOut.groups.at({"fee", Reason::kNoAmount}).count, 1u);
}

TEST(LeftOut, IsShownInTheOrderOfTheTexts) {
  LeftOut leftOut;
  AddLeftOut(leftOut, Reason::kFileTooLarge, "a");
  AddLeftOut(leftOut, Reason::kBinary, "b");
  AddLeftOut(leftOut, Reason::kNoAmount, "c", "a field");
  std::vector<std::string> texts;
  for (const auto& [text, group] : GroupsByText(leftOut)) texts.push_back(text);
  EXPECT_EQ(texts, (std::vector<std::string>{"a field: no amount", "binary file",
                                             "larger than the limit (--max-file-size)"}));
}

}  // namespace
}  // namespace vela::indexer
