// zone.h: the parts of a page.
#pragma once

#include <cstdint>

namespace vela::indexer {

// Where on its page a word stands, apart from the running text.
enum Zone : uint8_t {
  kInTitle = 1,
  kInMainHeading = 2,   // h1
  kInHeading = 4,       // h2, h3
  kInSmallHeading = 8,  // h4 to h6
  kInDescription = 16,
  kInAddress = 32,
  kTitleWord = 64,   // written in the title, no part of another word there
  kTitlePart = 128,  // of those that make up the title when joined words are cut: no joined word
};

}  // namespace vela::indexer
