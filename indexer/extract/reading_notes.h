// reading_notes.h: how one page is read, for an owner who asks (--explain-page). Where a budget
// brings such notes along, the readers of markup fill them; a usual run has none.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "indexer/extract/page_text.h"

namespace vela::indexer {

// By what the character set of a page was found.
enum class CharsetOrigin : uint8_t {
  kNone,
  kMark,          // a byte-order mark
  kUnicodeBytes,  // the bytes are text as UTF-16 or UTF-32
  kServer,        // the answer of the server
  kPage,          // the markup
  kSwitches,      // the sequences of ISO-2022-JP
  kValidUtf8,     // the bytes are valid as such
  kStatistics,    // it fits the bytes best
  kLastResort,
};

// Why a part of a page is no text of it.
enum class PartReason : uint8_t {
  kNavigation,
  kFrame,  // header, footer or aside of the page
  kTools,
  kSkipLink,
  kHidden,
  kUnread,  // scripts, form controls and the like
  kTemplate,
  kSelector,  // exclude_elements
  kIgnored,   // data-vela-ignore
  kRemark,    // between vela:off and vela:on
  kOutside,   // of what was chosen, or of the main part
};

struct LeftOutPart {
  PartReason reason = PartReason::kUnread;
  std::string element;    // its tag, with id, class and role; empty where it is none
  uint32_t selector = 0;  // of kSelector: its number (SiteConfig::selectors)
  std::string text;       // as it stands in the markup
};

// Why the text of a link counts for nothing.
enum class LinkReason : uint8_t { kSurrounding, kNoFollow, kNoText, kTooLong };

struct RefusedLink {
  LinkReason reason = LinkReason::kNoText;
  std::string address;  // as the page gives it
};

struct MarkupNotes {
  std::vector<LeftOutPart> parts;                   // in the order in which they begin
  std::array<std::string, kTextRegionCount> texts;  // of no part
  std::string pictureTexts;                         // of those, alternative texts
  std::vector<RefusedLink> links;
  bool countsFrame = false;  // there is no text but in parts of kFrame, which is the page's then
};

struct ReadingNotes {
  CharsetOrigin charsetOrigin = CharsetOrigin::kNone;
  std::string charset;
  MarkupNotes markup;
};

}  // namespace vela::indexer
