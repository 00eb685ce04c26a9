#include "indexer/collect/picture_texts.h"

#include <gtest/gtest.h>

#include "indexer/site/canonical_addresses.h"

namespace vela::indexer {
namespace {

const std::string kBase = "https://x.example/";

std::vector<PictureText> TextsOf(const std::vector<PagePicture>& pictures) {
  FileEndings endings = DefaultFileEndings();
  endings[static_cast<size_t>(FileType::kPicture)] = {"jpg", "png"};
  Page page;
  page.content.pictures = pictures;
  return PictureTextsOf(page, kBase, endings);
}

PictureText TextFor(const std::string& path, const std::string& text) {
  return {.picture = AddressPrint(kBase + path), .text = text};
}

using Texts = std::vector<std::string>;

Texts KeptOf(const PictureTexts& kept, const std::string& path) {
  const auto texts = kept.Of(kBase + path);
  return {texts.begin(), texts.end()};
}

TEST(PictureTexts, AreThoseForPicturesOfTheSite) {
  const struct {
    const char* what;
    PagePicture picture;
    const char* path;  // of what it is for; empty: nothing
  } kCases[] = {
      {"a picture", {"https://x.example/a/b.jpg", "t"}, "a/b.jpg"},
      {"the other scheme, letters of the host", {"http://X.example/b.png", "t"}, "b.png"},
      {"a query", {"https://x.example/b.png?width=2.5", "t"}, "b.png"},
      {"an ending in capitals", {"https://x.example/B.JPG", "t"}, "B.JPG"},
      {"another ending", {"https://x.example/b.html", "t"}, ""},
      {"an ending in the query alone", {"https://x.example/b?c.jpg", "t"}, ""},
      {"no ending", {"https://x.example/b", "t"}, ""},
      {"another site", {"https://y.example/b.jpg", "t"}, ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    const std::vector<PictureText> texts = TextsOf({c.picture});
    ASSERT_EQ(texts.size(), *c.path == '\0' ? 0u : 1u);
    if (texts.empty()) continue;
    EXPECT_EQ(texts[0].picture, AddressPrint(kBase + c.path));
    EXPECT_EQ(texts[0].text, "t");
  }
}

TEST(PictureTexts, StandInThePagesOrderEachOnce) {
  const std::vector<PictureText> texts = TextsOf({{"https://x.example/b.jpg", "two"},
                                                  {"https://x.example/a.jpg", "one"},
                                                  {"https://x.example/b.jpg?v=1", "two"},
                                                  {"https://x.example/b.jpg", "one"}});
  ASSERT_EQ(texts.size(), 3u);
  EXPECT_EQ(texts[0].text, "two");
  EXPECT_EQ(texts[1].picture, AddressPrint("https://x.example/a.jpg"));
  EXPECT_EQ(texts[2].picture, AddressPrint("https://x.example/b.jpg"));
}

TEST(PictureTexts, OfOnePageAreSoMany) {
  std::vector<PagePicture> pictures;
  for (size_t i = 0; i <= kPageTextsLimit; ++i) {
    pictures.push_back({"https://x.example/a.jpg", std::to_string(i)});
  }
  const std::vector<PictureText> texts = TextsOf(pictures);
  ASSERT_EQ(texts.size(), kPageTextsLimit);
  EXPECT_EQ(texts.back().text, std::to_string(kPageTextsLimit - 1));
}

TEST(PictureTexts, AreKeptForKnownPicturesInTheirOrder) {
  PictureTexts kept;
  kept.AddPicture(kBase + "a.jpg");
  kept.AddPicture(kBase + "b.jpg");
  kept.AddPicture(kBase + "a.jpg");
  kept.Add(std::vector<PictureText>{TextFor("b.jpg", "z"), TextFor("gone.jpg", "x")});
  kept.Add(std::vector<PictureText>{TextFor("b.jpg", "a"), TextFor("b.jpg", "z")});
  EXPECT_EQ(KeptOf(kept, "b.jpg"), (Texts{"z", "a"}));
  EXPECT_EQ(KeptOf(kept, "a.jpg"), Texts());
  EXPECT_EQ(KeptOf(kept, "gone.jpg"), Texts());
}

TEST(PictureTexts, AreNoMoreThanThereIsRoomFor) {
  PictureTexts kept(12 + PictureTexts::kMostTexts);
  kept.AddPicture(kBase + "a.jpg");
  kept.AddPicture(kBase + "b.jpg");
  for (size_t i = 0; i <= PictureTexts::kMostTexts; ++i) {
    kept.Add(
        std::vector<PictureText>{TextFor("a.jpg", std::string(1, static_cast<char>('a' + i)))});
  }
  ASSERT_EQ(KeptOf(kept, "a.jpg").size(), PictureTexts::kMostTexts);
  EXPECT_EQ(KeptOf(kept, "a.jpg").back(), std::string(1, 'a' + PictureTexts::kMostTexts - 1));
  // 12 bytes are left for all others.
  kept.Add(std::vector<PictureText>{TextFor("b.jpg", "ten bytes."), TextFor("b.jpg", "abc"),
                                    TextFor("b.jpg", "ab"), TextFor("b.jpg", "c")});
  EXPECT_EQ(KeptOf(kept, "b.jpg"), (Texts{"ten bytes.", "ab"}));
}

}  // namespace
}  // namespace vela::indexer
