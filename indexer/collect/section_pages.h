// section_pages.h: the sections of a long page, as pages of their own (section_pages).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "indexer/extract/page.h"

namespace vela::indexer {

// One of them: what the page says from a heading on, with the facts of the whole page.
struct SectionPage {
  std::string anchor;  // by which an address leads to the heading; 1 to kSectionAnchorLimit bytes
  Page page;           // its title is "Heading - Title of the page"
};

// A longer anchor begins no section.
constexpr size_t kSectionAnchorLimit = 200;

// Bytes that an anchor takes behind an address at most, each encoded.
constexpr size_t SectionAddressBytes() { return 1 + 3 * kSectionAnchorLimit; }

// Takes the sections out of a page of more than `words` words. What comes before the first of them
// stays, and title, description and links do; the sections together with it are the text of the
// page, in its order. A section begins at a heading h1 to h3 with an anchor; one of few words takes
// in those behind it until it has more. The heading of the whole page begins none. Empty, and the
// page as it was: it is shorter, or has no such headings.
std::vector<SectionPage> TakeSections(Page& page, uint32_t words);

}  // namespace vela::indexer
