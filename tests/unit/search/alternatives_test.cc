#include "search/alternatives.h"

#include <gtest/gtest.h>

#include <memory>

#include "format/word_weight.h"

namespace vela {
namespace {

TEST(Alternatives, ScoresTable) {
  const auto settings = std::make_unique<Settings>();
  const struct {
    const char* what;
    int32_t ranking;
    uint32_t score;
    uint32_t weight;
    uint32_t expected;
  } cases[] = {
      {"a whole synonym", 0, 200, 100, 200},
      {"two fifths", 0, 200, 40, 80},
      {"1 at least, so that the page is found", 0, 1, 40, 1},
      {"of no weight", 0, 200, 0, 1},
      {"a weight in a title", 1, WeightByte(100, true), 100, WeightByte(100, true)},
      {"two fifths of a weight; the title is of another word", 1, WeightByte(100, true), 40,
       WeightByte(40, false)},
      {"a weight of 1 at least", 1, WeightByte(1, false), 40, WeightByte(1, false)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    settings->Ranking = c.ranking;
    EXPECT_EQ(ScaledScore(c.score, c.weight, *settings), c.expected);
  }
}

}  // namespace
}  // namespace vela
