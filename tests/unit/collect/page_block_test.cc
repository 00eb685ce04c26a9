#include "indexer/collect/page_block.h"

#include <gtest/gtest.h>

#include "format/page_data.h"
#include "indexer/collect/block_bytes.h"

namespace vela::indexer {
namespace {

struct Site {
  std::string base = "https://x.example/";
  SiteConfig config;
  IndexCharset charset;

  PageBlock Make(const Page& page) const {
    BlockMaker maker({.base = base, .config = config, .charset = charset});
    PageBlock block;
    EXPECT_EQ(maker.Make(page, block), Reason::kNone);
    return block;
  }
};

Page PageAt(const std::string& address) {
  Page page;
  page.content.body = {{"Some words of the page", 0}};
  page.facts.path = "a.html";
  page.facts.address = address;
  page.facts.title = "Title";
  return page;
}

TEST(PageBlock, TextsAreThoseOfThePageData) {
  Page page = PageAt("https://x.example/a.html");
  page.facts.title = "pipe | \"quote\"";
  page.content.description = "it's <b>";
  page.facts.image = "https://x.example/a.png?x=1&y";
  const PageBlock block = Site().Make(page);
  EXPECT_EQ(block.facts.title, "pipe &#124; &#34;quote&#34;");
  EXPECT_EQ(block.description, "it&#39;s &#60;b&#62;");
  EXPECT_EQ(block.facts.image, "https://x.example/a.png?x=1&amp;y");
}

TEST(PageBlock, WhatTheSiteSharesIsTakenOff) {
  Site site;
  site.config.habits.names = {"Site Name"};
  Page page = PageAt("https://x.example/a.html");
  page.facts.title = page.content.title = "Knots | Site Name";
  const PageBlock block = site.Make(page);
  EXPECT_EQ(block.facts.title, "Knots");
  EXPECT_EQ(block.words.titleWords, 1u);
  // What was taken off is found where the words of the address are.
  EXPECT_EQ(block.addresses.front().words.wordTexts, "asitename");
  page.facts.title = page.content.title = "Knots";
  EXPECT_EQ(site.Make(page).addresses.front().words.wordTexts, "a");
}

TEST(PageBlock, LongTextsAreCut) {
  Page page = PageAt("https://x.example/a.html");
  page.facts.title = page.content.description = std::string(10000, '&');
  page.facts.image = "/" + std::string(kAddressLimit, 'x');
  const PageBlock block = Site().Make(page);
  EXPECT_LE(block.facts.title.size(), kPageTitleLimit);
  EXPECT_GT(block.facts.title.size(), kPageTitleLimit - 10);
  EXPECT_LE(block.description.size(), kPageDescriptionLimit);
  EXPECT_EQ(block.facts.image, "");  // cut, it would lead elsewhere
}

TEST(PageBlock, HasTheWordsOfEachAddressThatItMayGet) {
  Page page = PageAt("https://x.example/own.html");
  EXPECT_EQ(Site().Make(page).addresses.size(), 1u);
  page.facts.canonical = "http://X.example/pretty/name";
  const PageBlock block = Site().Make(page);
  ASSERT_EQ(block.addresses.size(), 2u);
  EXPECT_EQ(block.addresses[0].address, "https://x.example/own.html");
  EXPECT_EQ(block.addresses[0].words.wordTexts, "own");
  EXPECT_EQ(block.addresses[1].address, "https://x.example/pretty/name");
  EXPECT_EQ(block.addresses[1].words.wordTexts, "prettyname");
  page.facts.canonical = "https://elsewhere.example/";
  EXPECT_EQ(Site().Make(page).addresses.size(), 1u);
}

TEST(PageBlock, AStopEndsTheMaking) {
  const Site site;
  const volatile std::sig_atomic_t stop = 1;
  BlockMaker maker(
      {.base = site.base, .config = site.config, .charset = site.charset, .stop = &stop});
  PageBlock block;
  EXPECT_EQ(maker.Make(PageAt("https://x.example/a"), block), Reason::kStopped);
}

// A block with something in each of its fields.
PageBlock FullBlock() {
  Site site;
  FieldRule price;
  price.name = price.meta = "price";
  price.kind = kMetaMoney;
  FieldRule unused;
  unused.name = unused.meta = "unused";
  site.config.fields = {price, unused};
  site.config.extensions = true;
  Page page = PageAt("https://x.example/a.html");
  page.facts.canonical = "https://x.example/b.html";
  page.facts.fileSize = uint64_t{1} << 40;
  page.facts.time = -5;
  page.facts.fileTime = int64_t{1} << 60;
  page.facts.fileType = FileType::kText;
  page.content.markupFault = "line 3: mismatched tag";
  page.facts.language = "en";
  page.content.linkShare = 0.25F;
  page.content.use = {
      .rule = 7, .excluded = 300, .isChosen = true, .isLeftOff = true, .selectors = {5, 200000}};
  page.content.metas = {{"price", "cheap"}};
  page.content.links = {{"https://x.example/c", "C contact"}, {"https://y.example/c", "D"}};
  site.config.endings[static_cast<size_t>(FileType::kPicture)] = {"jpg"};
  page.content.pictures = {{"https://x.example/c.jpg", "A cat"}, {"https://x.example/c", "no"}};
  std::string words;
  for (int i = 0; i < 400; ++i) words += "Word" + std::to_string(i % 150) + ", (more) ";
  page.content.body = {{"Caf\u00E9 node.js", 2, "cafe"}, {words, 0}};
  return site.Make(page);
}

TEST(BlockBytes, APictureMayBeSilent) {
  Site site;
  Page page = PageAt("https://x.example/a.jpg");
  page.facts.fileType = FileType::kPicture;
  EXPECT_FALSE(site.Make(page).isSilent);
  page.content.body.clear();
  PageBlock read;
  ASSERT_TRUE(ReadBlock(BlockBytes(site.Make(page)), read));
  EXPECT_TRUE(read.isSilent);
  // What is taken off it as repeated was said all the same.
  page.content.title = "Title";
  site.config.habits.sharedTitle = "Title";
  EXPECT_FALSE(site.Make(page).isSilent);
}

TEST(BlockBytes, TextsOfPicturesAreChecked) {
  PageBlock block = FullBlock();
  PageBlock read;
  block.pictureTexts[0].text = std::string(kPictureTextLimit, 'x');
  EXPECT_TRUE(ReadBlock(BlockBytes(block), read));
  block.pictureTexts[0].text += 'x';
  EXPECT_FALSE(ReadBlock(BlockBytes(block), read));
  block.pictureTexts[0].text.clear();
  EXPECT_FALSE(ReadBlock(BlockBytes(block), read));
}

// A page with two sections of 40 words behind five of its own.
Page LongPage() {
  Page page = PageAt("https://x.example/a.html");
  std::string text;
  for (int i = 0; i < 40; ++i) text += "word ";
  page.content.body.push_back({"First", 2, "first"});
  page.content.body.push_back({text, 0});
  page.content.body.push_back({"Zweiter \u00DC", 2, "zweiter \u00DC"});
  page.content.body.push_back({text, 0});
  return page;
}

TEST(PageBlock, SectionsArePagesWhereTheOwnerWantsThem) {
  Site site;
  EXPECT_TRUE(site.Make(LongPage()).pieces.empty());
  const PagePrints whole = site.Make(LongPage()).prints;
  site.config.content.sectionWords = 50;
  const PageBlock block = site.Make(LongPage());
  EXPECT_EQ(block.words.bodyWords, 5u);
  EXPECT_EQ(block.prints.whole, whole.whole);
  ASSERT_EQ(block.pieces.size(), 2u);
  EXPECT_EQ(block.pieces[0].anchor, "first");
  EXPECT_TRUE(block.pieces[0].pictureTexts.empty());
  EXPECT_EQ(block.pieces[0].facts.title, "First - Title");
  EXPECT_EQ(block.pieces[0].words.bodyWords, 41u);
  EXPECT_EQ(block.pieces[0].suggestions.title, "");
  ASSERT_EQ(block.pieces[0].suggestions.texts.size(), 1u);
  EXPECT_EQ(block.pieces[0].suggestions.texts[0].text, "First");
  // A table of its own for some pages.
  site.config.contentRules.resize(1);
  Page page = LongPage();
  page.content.use.rule = 1;
  EXPECT_TRUE(site.Make(page).pieces.empty());
  // An address that leaves no room for anchors.
  page = PageAt("https://x.example/" + std::string(1500, 'x'));
  page.content.body = LongPage().content.body;
  EXPECT_TRUE(site.Make(page).pieces.empty());
  EXPECT_EQ(site.Make(page).words.bodyWords, 88u);
}

TEST(BlockBytes, SectionsReadBackInTheirPage) {
  Site site;
  site.config.content.sectionWords = 50;
  PageBlock block = site.Make(LongPage());
  const std::string bytes = BlockBytes(block);
  PageBlock read;
  ASSERT_TRUE(ReadBlock(bytes, read));
  EXPECT_EQ(BlockBytes(read), bytes);
  ASSERT_EQ(read.pieces.size(), 2u);
  EXPECT_EQ(read.pieces[1].anchor, "zweiter \u00DC");
  // A section has none of its own.
  block.pieces[0].pieces.push_back(block.pieces[1]);
  EXPECT_FALSE(ReadBlock(BlockBytes(block), read));
  block.pieces[0].pieces.clear();
  block.pieces[0].anchor.clear();
  EXPECT_FALSE(ReadBlock(BlockBytes(block), read));
}

TEST(BlockBytes, ABlockReadsBackAsItWas) {
  const PageBlock block = FullBlock();
  const std::string bytes = BlockBytes(block);
  PageBlock read;
  ASSERT_TRUE(ReadBlock(bytes, read));
  EXPECT_EQ(BlockBytes(read), bytes);
  EXPECT_EQ(read.facts.path, "a.html");
  EXPECT_EQ(read.facts.fileSize, uint64_t{1} << 40);
  EXPECT_EQ(read.facts.time, -5);
  EXPECT_EQ(read.facts.fileTime, int64_t{1} << 60);
  EXPECT_EQ(read.facts.fileType, FileType::kText);
  EXPECT_EQ(read.markupFault, "line 3: mismatched tag");
  EXPECT_EQ(read.linkShare, 0.25F);
  EXPECT_EQ(read.use, block.use);
  EXPECT_EQ(read.use.selectors.size(), 2u);
  EXPECT_TRUE(read.prints.isLong);
  EXPECT_EQ(read.prints.whole, block.prints.whole);
  EXPECT_EQ(read.prints.isComparable, block.prints.isComparable);
  EXPECT_EQ(read.prints.similar, block.prints.similar);
  EXPECT_EQ(read.facts.language, block.facts.language);
  ASSERT_EQ(read.metaFaults.size(), 1u);
  EXPECT_EQ(read.metaFaults[0].subject, "cheap");
  EXPECT_EQ(read.usedFields, (std::vector<bool>{true, false}));
  EXPECT_EQ(read.words.wordTexts, block.words.wordTexts);
  EXPECT_EQ(read.words.tokens, block.words.tokens);
  EXPECT_EQ(read.words.bodyTokens, block.words.bodyTokens);
  ASSERT_EQ(read.addresses.size(), 2u);
  EXPECT_EQ(read.addresses[1].address, "https://x.example/b.html");
  ASSERT_EQ(read.sections.size(), 1u);
  EXPECT_EQ(read.sections[0].anchor, "cafe");
  ASSERT_EQ(read.linkWords.size(), 2u);
  EXPECT_EQ(read.linkWords, block.linkWords);
  ASSERT_EQ(read.pictureTexts.size(), 1u);
  EXPECT_EQ(read.pictureTexts[0].picture, AddressPrint("https://x.example/c.jpg"));
  EXPECT_EQ(read.pictureTexts[0].text, "A cat");
  EXPECT_FALSE(read.isSilent);
  ASSERT_EQ(read.suggestions.texts.size(), 1u);
  EXPECT_EQ(read.suggestions.running.sequence, block.suggestions.running.sequence);
  ASSERT_FALSE(block.suggestions.running.words.empty());
  EXPECT_EQ(read.suggestions.running.words[0].hash, block.suggestions.running.words[0].hash);
}

TEST(BlockBytes, NothingButAWholeBlockIsRead) {
  const std::string bytes = BlockBytes(FullBlock());
  PageBlock block;
  for (size_t length = 0; length < bytes.size(); ++length) {
    ASSERT_FALSE(ReadBlock(std::string_view(bytes).substr(0, length), block)) << length;
    ASSERT_TRUE(block.addresses.empty());
  }
  for (size_t at = 0; at < bytes.size(); ++at) {
    std::string damaged = bytes;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
    ASSERT_FALSE(ReadBlock(damaged, block)) << at;
  }
  EXPECT_FALSE(ReadBlock(bytes + '\0', block));
}

}  // namespace
}  // namespace vela::indexer
