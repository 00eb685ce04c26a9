#include "indexer/source/media_type.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(MediaType, IsReadWithItsCharacterSet) {
  const struct {
    const char* field;
    const char* name;
    const char* charset;
  } kCases[] = {
      {"", "", ""},
      {"text/html", "text/html", ""},
      {" Text/HTML ; Charset=UTF-8", "text/html", "utf-8"},
      {"text/html;boundary=\"a;charset=no\"; charset=\" koi8-r \"", "text/html", "koi8-r"},
      {"text/html; charset=a; charset=b", "text/html", "a"},
      {"text/html; charset=", "text/html", ""},
      {"; charset=utf-8", "", "utf-8"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.field);
    const MediaType type = ReadMediaType(c.field);
    EXPECT_EQ(type.name, c.name);
    EXPECT_EQ(type.charset, c.charset);
  }
}

TEST(MediaType, SaysWhichPageItIs) {
  const FileEndings endings = DefaultFileEndings();
  EXPECT_EQ(PageType("text/html", "/a.txt", endings), FileType::kHtml);
  EXPECT_EQ(PageType("application/xhtml+xml", "/", endings), FileType::kHtml);
  EXPECT_EQ(PageType("text/plain", "/a.html", endings), FileType::kText);
  EXPECT_EQ(PageType("image/png", "/a.html", endings), std::nullopt);
  EXPECT_EQ(PageType("", "/b/a.HTML", endings), FileType::kHtml);
  EXPECT_EQ(PageType("application/octet-stream", "/a.md", endings), FileType::kMarkdown);
  EXPECT_EQ(PageType("text/plain", "/a.md", endings), FileType::kMarkdown);
  EXPECT_EQ(PageType("application/pdf", "/a", endings), FileType::kPdf);
  FileEndings without = endings;
  without[static_cast<size_t>(FileType::kPdf)].clear();
  EXPECT_EQ(PageType("application/pdf", "/a.pdf", without), std::nullopt);
  EXPECT_EQ(PageType("", "/a.html/b", endings), std::nullopt);
  EXPECT_TRUE(IsXmlType("application/xhtml+xml"));
  EXPECT_FALSE(IsXmlType("text/html"));
  EXPECT_TRUE(IsFurnitureType("image/svg+xml"));
  EXPECT_TRUE(IsFurnitureType("text/css"));
  EXPECT_FALSE(IsFurnitureType("application/zip"));
}

}  // namespace
}  // namespace vela::indexer
