// sections_fuzz.cc: the reader of the sections of pages. Input: the blocks and guides of the file;
// what says that it belongs to the index, and the checksums of the blocks, are put right, so that
// what is read behind them is tried, too.
#include <cstring>
#include <string>

#include "index/page_sections.h"
#include "program/fuzz/check.h"

namespace vela::fuzz {
namespace {

constexpr uint64_t kPageTextSize = 1000;

void CheckFinds(std::string_view file) {
  SectionsFile sections;
  sections.Open(file, 1, kPageTextSize);
  for (uint64_t position = 0; position < kPageTextSize; position += 9) {
    PageSection section;
    if (!sections.Find(position, section)) continue;
    VELA_CHECK(!section.anchor.empty());
    VELA_CHECK(section.anchor.size() + section.heading.size() <= kSectionTextRoom);
    const std::string found = std::string(section.anchor) + "#" + std::string(section.heading);
    VELA_CHECK(sections.Find(position, section));
    VELA_CHECK(found == std::string(section.anchor) + "#" + std::string(section.heading));
  }
}

// With the checksums of its blocks, as far as they lie in the file.
void Seal(std::string& file, const SectionsHeader& header) {
  const size_t guides = sizeof header + static_cast<size_t>(header.blockBytes);
  SectionGuide next = {.position = UINT64_MAX, .start = static_cast<uint32_t>(header.blockBytes)};
  for (size_t i = static_cast<size_t>(header.count); i-- > 0;) {
    SectionGuide guide;
    const size_t at = guides + i * sizeof guide;
    memcpy(&guide, file.data() + at, sizeof guide);
    if (guide.start <= next.start && next.start <= header.blockBytes) {
      const std::string_view block =
          std::string_view(file).substr(sizeof header + guide.start, next.start - guide.start);
      guide.sum = SectionBlockSum(block, guide.position, next.position);
      memcpy(file.data() + at, &guide, sizeof guide);
    }
    next = guide;
  }
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  CheckFinds(input);
  SectionsHeader header;
  header.generation = 1;
  header.pageTextSize = kPageTextSize;
  // The first byte says how many blocks there are.
  header.count = input.empty() ? 0 : static_cast<unsigned char>(input[0]);
  const std::string_view rest = input.substr(input.empty() ? 0 : 1);
  if (header.count * sizeof(SectionGuide) > rest.size()) return 0;
  header.blockBytes = rest.size() - header.count * sizeof(SectionGuide);
  std::string file(sizeof header, '\0');
  memcpy(file.data(), &header, sizeof header);
  file += rest;
  Seal(file, header);
  CheckFinds(file);
  return 0;
}
