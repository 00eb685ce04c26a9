#include "indexer/report/explanation.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(Explanation, ShowsTheFirstDetailsOrAll) {
  Explanation explanation = {.page = "a\x1B.html", .outcome = "in the index", .lines = {}};
  explanation.lines.push_back({.label = "Title", .text = "\"A\"", .details = {}});
  explanation.lines.push_back({.label = "Fields", .text = "9", .details = {}});
  for (int i = 1; i <= 9; ++i) explanation.lines.back().details.push_back(std::to_string(i));
  const std::string head =
      "a?.html: in the index\n"
      "  Title         \"A\"\n"
      "  Fields        9\n"
      "                - 1\n                - 2\n                - 3\n                - 4\n"
      "                - 5\n                - 6\n                - 7\n                - 8\n";
  EXPECT_EQ(ExplanationText(explanation, false),
            head + "                - and 1 more (--verbose)\n");
  EXPECT_EQ(ExplanationText(explanation, true), head + "                - 9\n");
}

}  // namespace
}  // namespace vela::indexer
