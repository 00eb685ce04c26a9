#include "indexer/publish/compare_indexes.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(CompareIndexes, TellsNewGoneAndChangedPages) {
  TestSite before;
  before.Add("same.html", "<title>Same</title>same");
  before.Add("title.html", "<title>One</title>x");
  before.Add("size.html", "<title>Size</title>x");
  before.Add("date.html", "<title>Date</title>x");
  for (char name = 'a'; name < 'h'; ++name) before.Add(std::string(1, name) + ".html", "text");
  before.Build();
  TestSite after;
  after.Add("same.html", "<title>Same</title>same");
  after.Add("title.html", "<title>Two</title>x");
  after.Add("size.html", "<title>Size</title>xyz");
  after.Add("date.html", "<title>Date</title>x", 1000000001);
  after.Add("new.html", "<title>New</title>x");
  after.Build();

  const IndexChanges changes = CompareIndexes(before.index, after.index);
  const std::string base = "https://x.example/";
  using Addresses = std::vector<std::string>;
  EXPECT_TRUE(changes.hasFormer);
  EXPECT_EQ(changes.added.count, 1u);
  EXPECT_EQ(changes.added.examples, Addresses{base + "new.html"});
  EXPECT_EQ(changes.changed.count, 3u);
  EXPECT_EQ(changes.changed.examples,
            (Addresses{base + "date.html", base + "size.html", base + "title.html"}));
  EXPECT_EQ(changes.gone.count, 7u);
  EXPECT_EQ(changes.gone.examples, (Addresses{base + "a.html", base + "b.html", base + "c.html",
                                              base + "d.html", base + "e.html"}));

  const IndexChanges none = CompareIndexes(after.index, after.index);
  EXPECT_EQ(none.added.count + none.gone.count + none.changed.count, 0u);
  const IndexChanges first = CompareIndexes(before.folder, after.index);
  EXPECT_FALSE(first.hasFormer);
  EXPECT_EQ(first.added.count, 5u);
}

}  // namespace
}  // namespace vela::indexer
