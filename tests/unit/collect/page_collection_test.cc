#include "indexer/collect/page_collection.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "format/page_data.h"
#include "settings/settings.h"
#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

struct Site {
  std::vector<PageToken> tokens;  // of the pages that joined
  support::ScratchDirectory scratch;
  std::string base = "/";
  SiteConfig config;
  IndexCharset charset;

  PageCollection Collection() {
    const auto take = [this](const TextStretch& stretch) {
      ForEachToken(stretch, [this](PageToken token) { tokens.push_back(token); });
    };
    return {{.base = base, .config = config, .charset = charset, .memory = 1 << 20, .sink = take},
            scratch.path()};
  }
};

Reason AddPage(const Page& page, PageCollection& collection, PageEntry& entry) {
  const CollectionInput& input = collection.input;
  BlockMaker maker({.base = input.base, .config = input.config, .charset = input.charset});
  PageBlock block;
  EXPECT_EQ(maker.Make(page, block), Reason::kNone);
  return AddPage(block, collection, entry);
}

Page PageAt(const std::string& address, const std::string& text) {
  Page page;
  page.content.body = {{text, 0}};
  page.facts.path = address.substr(1);
  page.facts.address = address;
  page.facts.title = "Title";
  page.facts.fileSize = 10;
  return page;
}

TEST(PageCollection, PagesJoinOneBehindTheOther) {
  Site site;
  PageCollection collection = site.Collection();
  PageEntry entry;
  ASSERT_EQ(AddPage(PageAt("/a.html", "one two"), collection, entry), Reason::kNone);
  const size_t tokens = site.tokens.size();
  EXPECT_EQ(entry.address, "/a.html");
  ASSERT_EQ(AddPage(PageAt("/b.html", "three"), collection, entry), Reason::kNone);
  ASSERT_EQ(collection.pages.size(), 2u);
  EXPECT_EQ(collection.pages[0].firstToken, 0u);
  EXPECT_EQ(collection.pages[0].bodyWords, 2u);
  EXPECT_EQ(collection.pages[1].firstToken, tokens);
  EXPECT_EQ(tokens, 7u);  // one, two, run end, title, run end, a, page end
  EXPECT_EQ(site.tokens.size(), 13u);
  EXPECT_EQ(collection.tokenCount, 13u);
  EXPECT_EQ(collection.sourceBytes, 20u);
}

TEST(PageCollection, APageThatIsLeftOutLeavesNothing) {
  Site site;
  PageCollection collection = site.Collection();
  collection.addresses.AddItem("/a.html");
  PageEntry entry;
  Page copy = PageAt("/b.html", "copy");
  copy.facts.canonical = "/a.html";
  EXPECT_EQ(AddPage(copy, collection, entry), Reason::kCopy);
  EXPECT_EQ(AddPage(PageAt("/" + std::string(kAddressLimit, 'x'), "far"), collection, entry),
            Reason::kAddressTooLong);
  EXPECT_TRUE(collection.pages.empty());
  EXPECT_TRUE(collection.vocabulary.words.empty());
  EXPECT_EQ(collection.sourceBytes, 0u);
}

TEST(PageCollection, ThePageIsKnownByBothItsAddresses) {
  Site site;
  PageCollection collection = site.Collection();
  collection.addresses.AddItem("/b.html");
  Page page = PageAt("/b.html", "text");
  page.facts.canonical = "/pretty?x=1&y=2";
  page.facts.image = "/" + std::string(kAddressLimit, 'x');
  PageEntry entry;
  ASSERT_EQ(AddPage(page, collection, entry), Reason::kNone);
  EXPECT_EQ(entry.address, "/pretty?x=1&amp;y=2");
  EXPECT_EQ(collection.addresses.PageAt("/pretty?x=1&y=2"), 0u);
  EXPECT_EQ(collection.addresses.PageAt("/b.html"), 0u);
  EXPECT_EQ(entry.image, "");  // too long to be linked
}

// A site whose pictures are pages, "/a.jpg" among them, and whose page calls that so.
struct SiteWithPictures : Site {
  SiteWithPictures() { config.endings[static_cast<size_t>(FileType::kPicture)] = {"jpg"}; }

  Reason AddShown(const std::vector<std::string>& texts, const Page& picture,
                  PageCollection& collection, PageEntry& entry) const {
    ItemList items;
    items.Add({"a.jpg", "/a.jpg", FileType::kPicture});
    items.Add({"b.html", "/b.html", FileType::kHtml});
    AddPictures(items, collection);
    Page page = PageAt("/b.html", "text");
    for (const std::string& text : texts) page.content.pictures.push_back({"/a.jpg", text});
    EXPECT_EQ(AddPage(page, collection, entry), Reason::kNone);
    return AddPage(picture, collection, entry);
  }
  // The words by which the page of that number is found, in their order.
  static std::string WordsOf(uint32_t page, PageCollection& collection) {
    std::string words;
    std::vector<Posting> found;
    collection.postings.ForEachSorted([&](const Posting& posting) {
      if (posting.page == page) found.push_back(posting);
    });
    std::ranges::sort(found, {}, &Posting::token);
    for (const Posting& posting : found) {
      const Word& word = collection.vocabulary.words[posting.word];
      words.append(TextOf(word, collection.vocabulary)).append("/");
      words += std::to_string(posting.zones & (kInTitle | kInDescription | kInAddress)) + " ";
    }
    return words;
  }
};

Page PictureAt(const std::string& address) {
  Page page = PageAt(address, "");
  page.content.body.clear();
  page.facts.title = "a.jpg";
  page.facts.fileType = FileType::kPicture;
  return page;
}

TEST(PageCollection, ASilentPictureIsThePageThatOthersMakeIt) {
  SiteWithPictures site;
  PageCollection collection = site.Collection();
  PageEntry entry;
  ASSERT_EQ(site.AddShown({"A \"heron\"", "Grey bird"}, PictureAt("/a.jpg"), collection, entry),
            Reason::kNone);
  EXPECT_EQ(entry.address, "/a.jpg");
  EXPECT_EQ(entry.title, "A &#34;heron&#34;");
  EXPECT_EQ(entry.description, "Grey bird");
  EXPECT_EQ(collection.pages[1].titleWords, 2u);
  EXPECT_EQ(collection.pages[1].bodyWords, 0u);
  EXPECT_EQ(SiteWithPictures::WordsOf(1, collection), "a/33 heron/1 grey/16 bird/16 ");
}

TEST(PageCollection, APictureThatNobodySpeaksOfIsNone) {
  SiteWithPictures site;
  PageCollection collection = site.Collection();
  PageEntry entry;
  EXPECT_EQ(site.AddShown({}, PictureAt("/a.jpg"), collection, entry), Reason::kNoText);
  // The name of its file says nothing.
  EXPECT_EQ(site.AddShown({"a.jpg"}, PictureAt("/a.jpg"), collection, entry), Reason::kNoText);
  EXPECT_EQ(collection.pages.size(), 2u);
  EXPECT_EQ(collection.addresses.PageAt("/a.jpg"), std::nullopt);
}

TEST(PageCollection, APictureIsFoundByItsOwnTextsAndThoseOfOthers) {
  SiteWithPictures site;
  PageCollection collection = site.Collection();
  PageEntry entry;
  Page picture = PictureAt("/a.jpg");
  picture.facts.title = picture.content.title = "Reeds";
  picture.content.body = {{"Ann", 0}};
  ASSERT_EQ(site.AddShown({"Reeds", "A heron"}, picture, collection, entry), Reason::kNone);
  EXPECT_EQ(entry.title, "Reeds");
  EXPECT_EQ(entry.description, "A heron");
  // What it says itself does not count twice.
  EXPECT_EQ(SiteWithPictures::WordsOf(1, collection), "ann/0 reeds/1 a/48 heron/16 ");
}

TEST(PageCollection, ThePicturesOwnDescriptionIsShown) {
  SiteWithPictures site;
  PageCollection collection = site.Collection();
  PageEntry entry;
  Page picture = PictureAt("/a.jpg");
  picture.content.description = "Its own";
  ASSERT_EQ(site.AddShown({"A heron"}, picture, collection, entry), Reason::kNone);
  EXPECT_EQ(entry.title, "a.jpg");
  EXPECT_EQ(entry.description, "Its own");
}

TEST(PageCollection, CountsTheValuesThatDoNotFitTheirField) {
  Site site;
  FieldRule price;
  price.name = price.meta = "price";
  price.kind = kMetaMoney;
  site.config.fields = {price};
  PageCollection collection = site.Collection();
  PageEntry entry;
  Page page = PageAt("/a.html", "text");
  page.content.metas = {{"price", "cheap"}};
  ASSERT_EQ(AddPage(page, collection, entry), Reason::kNone);
  page.facts.address = "/b.html";
  page.content.metas = {{"price", std::string(61, 'x')}};
  ASSERT_EQ(AddPage(page, collection, entry), Reason::kNone);
  const LeftOut::Group& group = collection.metaValues.groups.at({"price", Reason::kNoAmount});
  EXPECT_EQ(group.examples, (std::vector<std::string>{"a.html (\"cheap\")", "a.html (\"...\")"}));
}

TEST(PageCollection, NamesFieldsThatNoPageHas) {
  Site site;
  for (const char* name : {"Used", "unused"}) {
    FieldRule rule;
    rule.name = rule.meta = name;
    site.config.fields.push_back(rule);
  }
  PageCollection collection = site.Collection();
  PageEntry entry;
  Page page = PageAt("/a.html", "text");
  page.content.metas = {{"used", "x"}};
  ASSERT_EQ(AddPage(page, collection, entry), Reason::kNone);
  const std::vector<Finding> unused = UnusedFields(collection);
  ASSERT_EQ(unused.size(), 1u);
  EXPECT_EQ(unused[0].subject, "unused");
}

TEST(PageCollection, ACopyHandsItsCategoriesOn) {
  Site site;
  site.config.categories = {{"Own", {"b.html"}},    {"Equal", {"c.html"}},   {"Named", {"a.html"}},
                            {"Index page", {"d/"}}, {"Nowhere", {"e.html"}}, {"Folder", {"f/"}}};
  PageCollection collection = site.Collection();
  for (const char* item : {"/a.html", "/b.html", "/c.html", "/d/index.html", "/e.html"}) {
    collection.addresses.AddItem(item);
  }
  PageEntry entry;
  Page named = PageAt("/a.html", "other words");
  named.facts.canonical = "/b.html";
  EXPECT_EQ(AddPage(named, collection, entry), Reason::kCopy);
  const std::string text(200, 'x');
  ASSERT_EQ(AddPage(PageAt("/b.html", text), collection, entry), Reason::kNone);
  EXPECT_EQ(entry.categories, "\x01");
  EXPECT_EQ(AddPage(PageAt("/c.html", text), collection, entry), Reason::kEqual);
  EXPECT_EQ(AddPage(PageAt("/d/index.html", text), collection, entry), Reason::kEqual);
  Page ofNone = PageAt("/e.html", "other words");
  ofNone.facts.canonical = "/d/x.html";
  collection.addresses.AddItem("/d/x.html");  // which turns out to be no page
  EXPECT_EQ(AddPage(ofNone, collection, entry), Reason::kCopy);
  ASSERT_EQ(AddPage(PageAt("/f/index.html", "more"), collection, entry), Reason::kNone);
  EXPECT_EQ(entry.categories, "\x20");

  const std::vector<MoreCategories> more = CategoriesOfCopies(collection);
  ASSERT_EQ(more.size(), 3u);
  const char* kSets[] = {"\x04", "\x02", "\x08"};
  for (size_t i = 0; i < more.size(); ++i) {
    EXPECT_EQ(more[i].page, 0u);
    EXPECT_EQ(more[i].categories, kSets[i]);
  }
  const std::vector<Finding> unused = collection.rules.Unused();
  ASSERT_EQ(unused.size(), 1u);
  EXPECT_EQ(unused[0].subject, "Nowhere");
}

std::string LongText(const std::string& last) {
  std::string text;
  for (int i = 0; i < 2000; ++i) text += "word" + std::to_string(i) + " ";
  return text + last;
}

TEST(PageCollection, PagesOfNearlyTheSameTextAreToldOrLeftOut) {
  for (const NearDuplicates wish :
       {NearDuplicates::kReport, NearDuplicates::kKeep, NearDuplicates::kLeaveOut}) {
    Site site;
    site.config.nearDuplicates = wish;
    const bool leavesOut = wish == NearDuplicates::kLeaveOut;
    PageCollection collection = site.Collection();
    PageEntry entry;
    ASSERT_EQ(AddPage(PageAt("/other.html", "short"), collection, entry), Reason::kNone);
    ASSERT_EQ(AddPage(PageAt("/a.html", LongText("x")), collection, entry), Reason::kNone);
    EXPECT_EQ(entry.similarTo, std::nullopt);
    EXPECT_EQ(AddPage(PageAt("/b.html", LongText("y")), collection, entry),
              leavesOut ? Reason::kSimilar : Reason::kNone);
    if (!leavesOut) {
      const bool isTold = wish == NearDuplicates::kReport;
      EXPECT_EQ(entry.similarTo, isTold ? std::optional<uint32_t>(1) : std::nullopt);
    }
    // What leads to a page that is left out leads to the one that stands for it, and so does what
    // leads to its copy.
    EXPECT_EQ(AddPage(PageAt("/c.html", LongText("y")), collection, entry), Reason::kEqual);
    const uint32_t original = leavesOut ? 1 : 2;
    EXPECT_EQ(collection.addresses.PageAt("/b.html"), original);
    EXPECT_EQ(collection.addresses.PageAt("/c.html"), original);
    EXPECT_EQ(collection.pages.size(), leavesOut ? 2u : 3u);
  }
}

}  // namespace
}  // namespace vela::indexer
