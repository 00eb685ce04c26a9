#include "search/weighed_score.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace vela {
namespace {

// The terms of a query as they are known when all have been looked up.
struct Terms {
  TermSearch search;

  struct Term {
    std::string_view shown;
    int64_t records = 0;
  };
  explicit Terms(const std::vector<Term>& terms) {
    EXPECT_TRUE(search.terms.TryAllocate(terms.size()));
    for (size_t i = 0; i < terms.size(); ++i) {
      search.terms[i].shown = terms[i].shown;
      search.terms[i].records = terms[i].records;
    }
  }
};

uint32_t ScoreOf(const QueryWeights& query, const PageWeight& page, uint32_t sum,
                 uint32_t titleMass) {
  return WeighedScore(query, page, sum, [titleMass] { return titleMass; });
}

TEST(WeighQuery, RareWordsSayMore) {
  // Of three pages, one has the first word: all there is to say. All have the second:
  // ln(1 + 0.5 / 3.5) = 0.13353 of ln(1 + 2.5 / 1.5) = 0.98083, and that of 127 is 17.29. A term
  // that no page has says nothing, and neither does an exclusion.
  const Terms terms({{"one", 1}, {"all", 3}, {"none", 0}, {"-out", 2}});
  const QueryWeights query = WeighQuery(terms.search, 3, 3);
  EXPECT_EQ(query.masses[0], 127u);
  EXPECT_EQ(query.masses[1], 17u);
  EXPECT_EQ(query.masses[2], 0u);
  EXPECT_EQ(query.masses[3], 0u);
  EXPECT_EQ(query.total, 144u);
}

TEST(WeighQuery, APatternHasNoMoreThanAllPages) {
  const Terms terms({{"a*", 500}});
  EXPECT_EQ(WeighQuery(terms.search, 1, 3).masses[0], 17u);
}

TEST(WeighQuery, ManyTermsAndNoPages) {
  const Terms terms(std::vector<Terms::Term>(40, {"word", 1}));
  const QueryWeights query = WeighQuery(terms.search, 40, 0);
  EXPECT_EQ(query.total, 32u * query.masses[0]);
  EXPECT_EQ(query.foundFactors[kWeighedTerms], 256u);
}

// Two terms that say 100 and 20.
QueryWeights TwoTerms() {
  QueryWeights query = WeighQuery(Terms({{"a", 1}, {"b", 1}}).search, 2, 10);
  query.masses[0] = 100;
  query.masses[1] = 20;
  query.total = 120;
  return query;
}

TEST(WeighedScore, Table) {
  const struct {
    const char* what;
    PageWeight page;
    uint32_t sum;
    uint32_t titleMass;
    uint32_t expected;
  } cases[] = {
      // Factors in 256ths: 204 grows by half of 52 with one term of two.
      {"one of two terms: 90 * 230 / 256 in quarters", {.found = 1}, 90, 0, 323},
      {"both", {.found = 2}, 100, 0, 400},
      {"both, near: a tenth more, 25 / 256", {.found = 2, .near = 1}, 100, 0, 439},
      {"no more than near", {.found = 2, .near = 200}, 100, 0, 439},
      {"a title that the first term covers adds what it says",
       {.found = 1, .titleTerms = 1},
       90,
       100,
       323 + 400},
      {"no more for a title that says less", {.found = 1, .titleTerms = 1}, 90, 50, 323 + 400},
      {"half of a title: a half, of which three quarters",
       {.found = 1, .titleTerms = 1},
       90,
       200,
       323 + 150},
      {"the title is the query: twice what it says, and four times on top",
       {.found = 2, .titleTerms = 3},
       100,
       120,
       400 + 480 + 480 + 1920},
      {"all terms, and as much again: half of it beside",
       {.found = 2, .titleTerms = 3},
       100,
       240,
       400 + 180 + 240},
      {"no mass is known", {.found = 2, .titleTerms = 3}, 100, 0, 400},
      {"never nothing", {.found = 1}, 0, 0, 1},
  };
  const QueryWeights query = TwoTerms();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(ScoreOf(query, c.page, c.sum, c.titleMass), c.expected);
    EXPECT_LE(c.expected, HighestWeighedScore(query, c.sum) + 1);
  }
}

TEST(WeighedScore, ARareWordDecides) {
  const QueryWeights query = TwoTerms();
  EXPECT_GT(ScoreOf(query, {.found = 1}, 40, 0), ScoreOf(query, {.found = 1}, 20, 0));
}

TEST(WeighedScore, TheNumberOfTermsCountsBetweenEqualWeights) {
  const QueryWeights query = TwoTerms();
  EXPECT_GT(ScoreOf(query, {.found = 2}, 60, 0), ScoreOf(query, {.found = 1}, 60, 0));
}

TEST(WeighedScore, NoneIsHigherThanTheHighest) {
  const QueryWeights query = TwoTerms();
  for (const uint32_t sum : {1u, 254u, 100000u, UINT32_MAX}) {
    const PageWeight best = {.found = 2, .titleTerms = 3, .near = 1};
    EXPECT_LE(ScoreOf(query, best, sum, 120), HighestWeighedScore(query, sum));
  }
}

}  // namespace
}  // namespace vela
