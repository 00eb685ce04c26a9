// anchor_bytes_fuzz.cc: the links and places of a page that are kept between runs. Input: these.
#include <string>

#include "indexer/state/anchor_bytes.h"
#include "program/fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  const std::string_view bytes = Text(data, size);
  indexer::PageAnchors anchors;
  if (!indexer::ReadAnchors(bytes, anchors)) {
    VELA_CHECK(anchors.places.empty() && anchors.links.empty());
    return 0;
  }
  // What was taken is what was written.
  VELA_CHECK(indexer::AnchorBytes(anchors) == bytes);
  return 0;
}
