// site_part_fuzz.cc: what a part of a site notes of the whole, read by the run that merges the
// parts. Input: the notes.
#include <string>

#include "indexer/state/site_part.h"
#include "program/fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  const std::string_view text = Text(data, size);
  (void)indexer::ReadPartNumber(text);
  indexer::PartNotes notes;
  if (!indexer::ReadPartText(text, notes)) {
    VELA_CHECK(notes.base.empty() && notes.look.languages.empty() && notes.listing.unused.empty());
    return 0;
  }
  VELA_CHECK(notes.part.number >= 1 && notes.part.number <= notes.part.count);
  VELA_CHECK(notes.part.count <= indexer::kPartLimit);
  // What was taken is what was written.
  VELA_CHECK(indexer::PartText(notes) == text);
  return 0;
}
