#include "indexer/joining_order.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(JoiningOrder, HasPicturesLast) {
  ItemList items;
  items.Add({"a.jpg", "/a.jpg", FileType::kPicture});
  items.Add({"b.html", "/b.html", FileType::kHtml});
  items.Add({"c.jpg", "/c.jpg", FileType::kPicture});
  items.Add({"d.pdf", "/d.pdf", FileType::kPdf});
  const auto order = [&](bool hasPictures) {
    const JoiningOrder joining(items, hasPictures);
    return std::vector<size_t>{joining[0], joining[1], joining[2], joining[3]};
  };
  EXPECT_EQ(order(true), (std::vector<size_t>{1, 3, 0, 2}));
  EXPECT_EQ(order(false), (std::vector<size_t>{0, 1, 2, 3}));
}

}  // namespace
}  // namespace vela::indexer
