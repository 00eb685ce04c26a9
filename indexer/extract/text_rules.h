// text_rules.h: what an element means for the text inside it.
#pragma once

#include <string_view>

#include "indexer/extract/html_tokens.h"
#include "indexer/extract/page_text.h"
#include "indexer/extract/selector_set.h"

namespace vela::indexer {

// What one element does to the text inside it, whatever stands around it.
struct ElementRole {
  bool breaksWords = false;  // a block: no word goes on across its edges
  bool leavesOut = false;    // nothing in it is text
  bool isInert = false;      // a template: nothing in it is part of the page at all
  bool isFrame = false;      // surrounds the content of the page
  bool isHeader = false;     // of the page; a frame
  bool isHeadline = false;   // the heading of the page, to keep even in its header
  bool enclosesContent = false;
  bool isLink = false;                // leads to another page
  bool isTime = false;                // its text is the time of the page
  bool isFact = false;                // an item or property of microdata
  bool isNavigation = false;          // and is content all the same
  bool isMain = false;                // what the page calls its main part
  bool isChosen = false;              // by the owner, as the content
  uint8_t headingLevel = 0;           // 1 to 6; 0: as around it
  uint32_t section = 0;               // see TextStyle; 0: as around it
  uint8_t weight = kWeightOfHeading;  // see TextStyle; kWeightOfHeading: as around it
  uint64_t selectorParts = 0;         // see SelectorFit
  uint32_t part = 0;                  // see TextState
};

// What holds for text at some place.
struct TextState {
  bool isLeftOut = false;
  bool isInert = false;
  bool isInHeader = false;  // in the header of the page, and in nothing else that frames it
  bool isInLink = false;    // to another page
  bool isInNavigation = false;
  bool isOfPage = true;  // no part of the page's content encloses it
  TextStyle style;
  SelectorPath path;
  uint32_t part = 0;  // of MarkupNotes::parts, from 1 on; 0: none, or nobody asks
  PageText::Strand strand = PageText::kPageStrand;
};

// The state inside an element of that role which stands where `around` holds.
TextState StateInside(const TextState& around, const ElementRole& role);

// Whether the attributes hide the element from visitors. What hides the whole page does not count:
// a script shows it later.
bool IsHidden(const Tag& tag);

// True when the list `text`, in lower case, parted by blanks, commas or semicolons, holds `word`.
bool HoldsWord(std::string_view text, std::string_view word);

// Whether declarations of a style attribute hide its element: the last one of a property counts.
bool HidesByStyle(std::string_view style);

}  // namespace vela::indexer
