#include "indexer/extract/page_bytes.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

using namespace std::string_literals;

PageContent SamplePage() {
  PageContent page;
  page.title = "T\u00E9";
  page.description = "D";
  page.metas = {{"author", "Ann"}};
  page.body = {{"Head", 2, "page=1"}, {"text", 0, ""}};
  return page;
}

TEST(PageBytes, AreAsDescribed) {
  EXPECT_EQ(PageBytes(Reason::kNone, SamplePage()),
            "\0"
            "\3\0\0\0T\u00E9"
            "\1\0\0\0D"
            "\0\0\0\0"
            "\0\0\0\0"
            "\0\0\0\0"
            "\0\0\0\0"
            "\1\0\0\0"
            "\6\0\0\0author\3\0\0\0Ann"
            "\2\0\0\0"
            "\2"
            "\6\0\0\0page=1\4\0\0\0Head"
            "\0"
            "\0\0\0\0\4\0\0\0text"s);
  EXPECT_EQ(PageBytes(Reason::kDamaged, SamplePage()),
            std::string(1, static_cast<char>(Reason::kDamaged)));
}

TEST(PageBytes, ReadBack) {
  const PageContent page = SamplePage();
  Reason reason = Reason::kDamaged;
  PageContent back;
  ASSERT_TRUE(ReadPageBytes(PageBytes(Reason::kNone, page), reason, back));
  EXPECT_EQ(reason, Reason::kNone);
  EXPECT_EQ(back.title, page.title);
  EXPECT_EQ(back.description, page.description);
  EXPECT_EQ(back.metas, page.metas);
  ASSERT_EQ(back.body.size(), 2u);
  EXPECT_EQ(back.body[0].text, "Head");
  EXPECT_EQ(back.body[0].anchor, "page=1");
  EXPECT_EQ(back.body[0].headingLevel, 2);
  EXPECT_EQ(back.body[1].headingLevel, 0);
  ASSERT_TRUE(ReadPageBytes(PageBytes(Reason::kEncrypted, page), reason, back));
  EXPECT_EQ(reason, Reason::kEncrypted);
  EXPECT_TRUE(back.body.empty());
}

TEST(PageBytes, NothingElseIsTaken) {
  const std::string bytes = PageBytes(Reason::kNone, SamplePage());
  Reason reason = Reason::kNone;
  PageContent back;
  for (size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_FALSE(ReadPageBytes(bytes.substr(0, size), reason, back)) << size;
    EXPECT_TRUE(back.title.empty() && back.body.empty());
  }
  EXPECT_FALSE(ReadPageBytes(bytes + "x", reason, back));
  const struct {
    const char* what;
    void (*change)(PageContent&);
  } cases[] = {
      {"a control character", [](PageContent& page) { page.title = "a\nb"; }},
      {"no UTF-8", [](PageContent& page) { page.body[1].text = "\xFF"; }},
      {"a run of blanks", [](PageContent& page) { page.body[1].text = "  "; }},
      {"a heading below the lowest", [](PageContent& page) { page.body[0].headingLevel = 7; }},
      {"a meta element without a name", [](PageContent& page) { page.metas[0].first = ""; }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PageContent page = SamplePage();
    c.change(page);
    EXPECT_FALSE(ReadPageBytes(PageBytes(Reason::kNone, page), reason, back));
  }
  // Reasons that are not for a reader to give.
  for (const Reason given : {Reason::kCopy, Reason::kReaderMissing, Reason::kNoKeyword}) {
    EXPECT_FALSE(ReadPageBytes(PageBytes(given, {}), reason, back));
  }
  EXPECT_FALSE(ReadPageBytes("\xFF", reason, back));
}

}  // namespace
}  // namespace vela::indexer
