// block_bytes.h: a page's block as bytes, to be kept from one run to the next.
//
// Little-endian. A number takes 1 to 10 bytes, 7 bits each, the lowest first, bit 7 set where
// another byte follows; a signed one is doubled before, and its bits turned over where it is
// negative. A text is the number of its bytes and these (tokens are one, see page_words.h); a list,
// the number of its entries and these.
//
//   1    kBlockVersion
//   n    the fields of PageBlock in their order; a page's path, address and so on as texts, lists
//   of
//        words, forms and signs before the texts of all of them
//   8    TextHash of what stands before
//
// A block is of use only where base address, character set, stemming, meta fields, content rules
// and extensions are those that it was made with; whoever keeps it has to know.
#pragma once

#include <string>
#include <string_view>

#include "indexer/collect/page_block.h"

namespace vela::indexer {

constexpr uint8_t kBlockVersion = 6;

std::string BlockBytes(const PageBlock& block);

// False when `bytes` are no whole block of this version; `block` is then empty. Every number in a
// block that was read stands for something in it, so that it can be joined; its texts are not
// looked into. What it takes is in proportion to `bytes`. Throws std::bad_alloc when there is no
// memory.
[[nodiscard]] bool ReadBlock(std::string_view bytes, PageBlock& block);

}  // namespace vela::indexer
