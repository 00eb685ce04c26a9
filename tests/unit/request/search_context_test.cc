// search_context_test.cc: the state of a request at its start and at its end.

#include "request/search_context.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "support/scratch_directory.h"

namespace vela {
namespace {

// By the clock that the program reads: time() may lag behind it for some milliseconds.
double Now() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
}

TEST(SearchContext, StartsAtRestWithTheStartTime) {
  const auto ctx = std::make_unique<SearchContext>();
  const double before = Now();
  InitSearchContext(*ctx);
  const double after = Now();
  EXPECT_GE(ctx->startTime, before - 1e-5);  // whole microseconds
  EXPECT_LE(ctx->startTime, after + 1e-5);
  EXPECT_FALSE(ctx->ended);
  EXPECT_EQ(ctx->exitStatus, 0);
  EXPECT_EQ(ctx->settings.StemmingAlgo, 2);
  EXPECT_EQ(View(ctx->settings.LogFileName), ".//logs//searchwords.log");
}

TEST(SearchContext, DefaultsOfARequest) {
  const auto ctx = std::make_unique<SearchContext>();
  InitSearchContext(*ctx);
  EXPECT_EQ(ctx->search.perPage, 10);
  EXPECT_EQ(ctx->search.page, 1);
  EXPECT_EQ(ctx->search.andMode, 0);
  EXPECT_EQ(ctx->search.sort, 0);
  EXPECT_EQ(ctx->search.masterNode, 0);
  EXPECT_FALSE(ctx->search.metaOnly);
  EXPECT_EQ(ctx->query.terms.size(), 0);
  EXPECT_FALSE(ctx->query.hasPhrase);
}

TEST(SearchContext, TheTimeHasAFraction) {
  // A clock of whole seconds would give the same number over and over.
  const double start = CurrentTime();
  bool moved = false;
  for (int i = 0; i < 1000000 && !moved; ++i) moved = CurrentTime() > start;
  EXPECT_TRUE(moved);
  EXPECT_LT(CurrentTime() - start, 1.0);
}

TEST(SearchContext, ResultsPerPageBelowOneCountAsTen) {
  const struct {
    int32_t perPage;
    int32_t expected;
  } cases[] = {{1, 1}, {10, 10}, {2147483647, 2147483647}, {0, 10}, {-1, 10}, {INT32_MIN, 10}};
  for (const auto& c : cases) {
    SearchRequest request;
    request.perPage = c.perPage;
    EXPECT_EQ(EffectivePerPage(request), c.expected);
  }
}

TEST(SearchContext, AllCategoriesAreSearchedWithoutAChoice) {
  SearchRequest request;
  EXPECT_TRUE(SearchesAllCategories(request));
  const int32_t all[] = {-1};
  request.categories = all;
  EXPECT_TRUE(SearchesAllCategories(request));
  const int32_t some[] = {0, -1};
  request.categories = some;
  EXPECT_FALSE(SearchesAllCategories(request));
}

TEST(SearchContext, ReleasingTwiceIsHarmless) {
  const support::ScratchDirectory scratch;
  const auto ctx = std::make_unique<SearchContext>();
  InitSearchContext(*ctx);
  OpenIndexDirectory(ctx->directory, scratch.path().string());
  ASSERT_TRUE(AllocateSections(ctx->output, 10));
  for (int i = 0; i < 2; ++i) {
    ReleaseSearchContext(*ctx);
    EXPECT_EQ(ctx->directory.descriptor, -1);
    EXPECT_FALSE(ctx->output.results.exists());
    EXPECT_FALSE(ctx->output.texts[0].exists());
    EXPECT_EQ(ctx->query.terms.size(), 0);
  }
}

}  // namespace
}  // namespace vela
