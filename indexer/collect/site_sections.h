// site_sections.h: the sections of long pages that addresses lead to, as pages join.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "indexer/collect/page_tokens.h"
#include "indexer/extract/page.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// One of them, or where the running text of a page ends: then without an anchor.
struct SiteSection {
  uint64_t token = 0;  // counted from the start of the page text
  uint32_t page = 0;
  uint32_t text = 0;  // of SiteSections::texts
  uint16_t anchorLength = 0;
  uint16_t headingLength = 0;
};

// Takes about 80 bytes of memory a section.
struct SiteSections {
  std::vector<SiteSection> sections;  // in the order of the page text
  std::string texts;                  // anchor and heading of each, one behind the other
};

// Adds those of a page that joined as `number`, whose text begins at `firstToken`. A page that a
// visitor overlooks at a glance has none, nor has the heading of the whole page.
void AddSections(const PageTexts& page, const PageTokens& tokens, uint32_t number,
                 uint64_t firstToken, const IndexCharset& charset, SiteSections& sections);

}  // namespace vela::indexer
