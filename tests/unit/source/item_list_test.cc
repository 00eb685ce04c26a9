#include "indexer/source/item_list.h"

#include <gtest/gtest.h>

#include <tuple>

namespace vela::indexer {
namespace {

constexpr char kBase[] = "https://x.example/";

SourceItem Html(const std::string& path) { return {.path = path, .address = kBase + path}; }

auto FieldsOf(const SourceItem& item) {
  return std::tuple(item.path, item.address, item.type, item.file, item.isXml, item.mediaType);
}

// Of every kind, more than one group of them.
std::vector<SourceItem> ManyItems() {
  std::vector<SourceItem> items;
  for (int i = 0; i < 100; ++i) {
    const std::string path = "folder" + std::to_string(i / 10) + "/" + std::to_string(i) + ".html";
    SourceItem item = Html(path);
    if (i % 7 == 0) item.address = "https://other.example/" + path + "?a";
    if (i % 5 == 0) item.file = "real/" + path;
    if (i % 3 == 0) item.type = FileType::kOldSheets;
    item.isXml = i % 11 == 0;
    item.mediaType = i % 13 < 6 ? "text/html" : i % 13 < 9 ? "application/pdf" : "";
    items.push_back(item);
  }
  items.push_back(Html(std::string(1000, 'p')));
  items.push_back(Html(std::string(1000, 'p') + "q"));  // shares more than a byte can count
  items.push_back({});
  return items;
}

TEST(ItemList, GivesBackWhatWasAdded) {
  const std::vector<SourceItem> items = ManyItems();
  ItemList list;
  for (const SourceItem& item : items) list.Add(item);
  ASSERT_EQ(list.size(), items.size());
  for (size_t i = items.size(); i-- > 0;) {
    SCOPED_TRACE(i);
    EXPECT_EQ(FieldsOf(list[i]), FieldsOf(items[i]));
  }
  size_t number = 0;
  for (const SourceItem& item : list) {
    SCOPED_TRACE(number);
    EXPECT_EQ(FieldsOf(item), FieldsOf(items[number]));
    ++number;
  }
  EXPECT_EQ(number, items.size());
}

TEST(ItemList, TakesFewBytesForAnItem) {
  ItemList list;
  for (int i = 0; i < 10000; ++i) list.Add(Html("manual/chapter/" + std::to_string(10000 + i)));
  // Two bytes, four of a length, one or two of the path; twice that, as a text grows, and a group.
  EXPECT_LT(list.memory(), 10000u * 20);
}

TEST(ItemList, IsSortedByTheBytesOfPaths) {
  ItemList list;
  for (const char* path : {"b", "a/b", "a-b", "\xC3\xA4", "a"}) list.Add(Html(path));
  list.SortByPath();
  std::string paths;
  for (const SourceItem& item : list) paths += item.path + " ";
  EXPECT_EQ(paths, "a a-b a/b b \xC3\xA4 ");
  EXPECT_EQ(list[2].address, "https://x.example/a/b");
}

TEST(ItemList, LeavesOutWhatIsNotKept) {
  ItemList list;
  for (int i = 0; i < 50; ++i) list.Add(Html(std::to_string(i)));
  list.KeepIf([](const SourceItem& item) { return item.path.ends_with('7'); });
  ASSERT_EQ(list.size(), 5u);
  EXPECT_EQ(list[4].path, "47");
  list.KeepIf([](const SourceItem&) { return false; });
  EXPECT_TRUE(list.empty());
  EXPECT_TRUE(list.begin() == list.end());
}

}  // namespace
}  // namespace vela::indexer
