// page.h: one page as it was read, before its words are cut.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "indexer/source/source_item.h"

namespace vela::indexer {

// In the place of a weight: that of the heading, if it is one.
inline constexpr uint8_t kWeightOfHeading = 255;

// A stretch of the page's text. All text is clean UTF-8 (see CleanText).
struct TextRun {
  std::string text;
  uint8_t headingLevel = 0;  // 1 to 6 inside h1 to h6; 0 elsewhere
  std::string anchor = {};   // by which an address leads to this heading or defined term; or empty
  uint8_t weight = kWeightOfHeading;  // 1 to 6: its words weigh as in such a heading; 0: as in text
};

// As the words of which heading those of the run weigh, 1 to 6; 0: of none.
inline uint8_t WeightLevel(const TextRun& run) {
  if (run.weight == kWeightOfHeading || run.weight == 0) {
    return run.weight == 0 ? uint8_t{0} : run.headingLevel;
  }
  return run.headingLevel == 0 ? run.weight : std::min(run.weight, run.headingLevel);
}

// A meta element: its name in lower case, and its content, one line, trimmed. One that has another
// attribute in the place of a name is called by that: its property, "itemprop:datemodified",
// "http-equiv:refresh".
using MetaElement = std::pair<std::string, std::string>;

// A link in the content of a page, to another page or another place.
struct PageLink {
  std::string address;  // as the page gives it; of a Page whole and encoded, without a fragment
  std::string text;     // one line, trimmed; never empty
};

// A longer text of a link tells of what it leads to, and is no name for it.
inline constexpr size_t kLinkTextLimit = 200;

// A picture that a page shows, or leads to by another one.
struct PagePicture {
  std::string address;  // as in PageLink
  std::string text;     // its alternative text: one line, trimmed; never empty
};

// Of an alternative text, in bytes; a longer one is cut.
inline constexpr size_t kPictureTextLimit = 1000;

// What came of what the owner says about the content of pages (docs/content.md).
struct ContentUse {
  uint32_t rule = 0;         // of the configuration that held: 0, or 1 on for one of [[content]]
  uint32_t excluded = 0;     // elements, and stretches between remarks, left out
  bool isChosen = false;     // the text is that of chosen elements alone
  bool lacksChosen = false;  // none of those that the rule chooses holds text
  bool isLeftOff = false;    // what the remark "vela:off" begins has no end
  std::vector<uint32_t> selectors = {};  // that fit something, by number, each once

  bool operator==(const ContentUse&) const = default;
};

struct PageContent {
  std::string title;               // one line, trimmed; empty when the page has none
  std::string description;         // the same, of the meta element
  std::string canonical;           // as the page gives it, not resolved; empty when it gives none
  std::string base;                // href of the base element, the same way
  std::vector<MetaElement> metas;  // all that have a name and a content, in the page's order
  std::string language;            // that it names, as DeclaredLanguage has it; or empty
  std::string time;                // of the first time element: its datetime, else its text
  std::vector<TextRun> body;       // in reading order
  std::vector<PageLink> links;     // with texts up to kLinkTextLimit bytes, in the page's order
  std::vector<PagePicture> pictures;  // the same, where pictures are pages
  float linkShare = 0;                // of its text, what stands in links to other pages; 0 to 1
  ContentUse use;
  std::string markupFault;  // where and why a page that browsers take for XML is none; else empty
};

// Whether there is anything to find the page by, beside its address.
inline bool SaysAnything(const PageContent& page) {
  return !page.body.empty() || !page.title.empty() || !page.description.empty();
}

// The content of the first meta element of that name; empty when there is none.
inline std::string_view MetaContent(const PageContent& page, std::string_view name) {
  for (const auto& [elementName, content] : page.metas) {
    if (elementName == name) return content;
  }
  return {};
}

// What is known of the page beside its text.
struct PageFacts {
  std::string path;       // of its item, for messages
  std::string address;    // of its item
  std::string canonical;  // the address that it names as its own, whole and encoded; or empty
  std::string title;      // the one to show for it; plain text
  std::string image;      // whole address of the picture that stands for it, or empty
  std::string language;   // "en", "pt": the one it names, else the one it is in; or empty
  uint64_t fileSize = 0;  // bytes
  int64_t time = 0;       // of its date, seconds since 1970; 0 for none
  int64_t ownTime = 0;    // the same when the time of its file is not taken for a date
  int64_t fileTime = 0;   // when its file was changed
  FileType fileType = FileType::kHtml;
};

struct Page {
  PageContent content;
  PageFacts facts;
};

}  // namespace vela::indexer
