#include "indexer/link_check.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

constexpr char kBase[] = "https://x.example/a/";

struct LinkedPages {
  support::ScratchDirectory scratch;
  SiteListing listing;
  std::vector<std::string> pages;
  bool hasFolder = true;

  void Add(const std::string& path, const std::string& html) {
    WriteFile(scratch.path() / path, html);
    listing.items.Add({.path = path, .address = kBase + path});
    pages.push_back(html);
  }
  // "PATH -> ADDRESS" of each link that leads nowhere, "!" behind one without its place.
  std::string Broken() const {
    LinkCheck check({.base = kBase, .folder = hasFolder ? scratch.path() : ""}, listing);
    // Pages may come in any order.
    for (size_t i = pages.size(); i-- > 0;) {
      FileContent file;
      file.bytes = pages[i];
      const std::optional<PageAnchors> anchors = AnchorsOfItem(listing.items[i], file);
      if (anchors.has_value()) check.AddPage(listing.items[i], *anchors);
    }
    CanonicalAddresses addresses(kBase);
    for (const SourceItem& item : listing.items) addresses.AddItem(item.address);
    addresses.Note(std::string(kBase) + "canonical", 0);
    std::string lines;
    for (const BrokenLink& link : check.Finish(addresses).found) {
      lines += link.path + " -> " + link.address + (link.noPlace ? "!\n" : "\n");
    }
    return lines;
  }
};

TEST(LinkCheck, KnowsWhatIsThere) {
  const struct {
    const char* what;
    const char* link;
    const char* broken;  // behind "p.html -> https://x.example/a/"
  } kCases[] = {
      {"a page", "q.html", ""},
      {"a page with a query", "q.html?x=1", ""},
      {"no page", "gone.html", "gone.html\n"},
      {"no page, with a place", "gone.html#x", "gone.html#x\n"},
      {"a place", "q.html#here", ""},
      {"an encoded place", "q.html#%68ere", ""},
      {"no place", "q.html#There", "q.html#There!\n"},
      {"the top", "q.html#Top", ""},
      {"words of the page", "q.html#:~:text=words", ""},
      {"a place and words", "q.html#gone:~:text=words", "q.html#gone!\n"},
      {"its own place", "#own", ""},
      {"no own place", "#gone", "p.html#gone!\n"},
      {"a folder with a page", "sub/", ""},
      {"a place in it", "sub/#in", ""},
      {"no place in it", "sub/#out", "sub/#out!\n"},
      {"a folder without a page", "pictures/", ""},
      {"a file that is no page", "pictures/a%20b.png", ""},
      {"no file", "pictures/c.png", "pictures/c.png\n"},
      {"a place in what is no page", "pictures/a%20b.png#x", ""},
      {"the canonical address of a page", "canonical", ""},
      {"above the site", "../gone.html", nullptr},
      {"another site", "https://y.example/a/gone.html", nullptr},
      {"out of the folder", "..%2f..%2f..%2f..%2f..%2f..%2f..%2f..%2fetc/passwd",
       "..%2F..%2F..%2F..%2F..%2F..%2F..%2F..%2Fetc/passwd\n"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    LinkedPages site;
    WriteFile(site.scratch.path() / "pictures/a b.png", "");
    site.Add("p.html", "<p id=own><a href='" + std::string(c.link) + "'>link</a>");
    site.Add("q.html", "<p id=here>");
    site.Add("sub/index.html", "<p id=in>");
    const bool isBroken = c.broken != nullptr && *c.broken != '\0';
    EXPECT_EQ(site.Broken(), isBroken ? "p.html -> " + std::string(kBase) + c.broken : "");
  }
}

// Not all of such a site needs to be known.
TEST(LinkCheck, OfAFetchedSiteOnlyWhatIsGoneIsNowhere) {
  LinkedPages site;
  site.hasFolder = false;
  site.Add("p.html", "<a href=gone.html>1</a><a href=unknown.html>2</a><a href=q.html#no>3</a>");
  site.Add("q.html", "x");
  AddLeftOut(site.listing.leftOut, Reason::kPageGone, std::string(kBase) + "gone.html");
  AddLeftOut(site.listing.leftOut, Reason::kServerError, std::string(kBase) + "unknown.html");
  EXPECT_EQ(site.Broken(),
            "p.html -> https://x.example/a/gone.html\np.html -> https://x.example/a/q.html#no!\n");
}

}  // namespace
}  // namespace vela::indexer
