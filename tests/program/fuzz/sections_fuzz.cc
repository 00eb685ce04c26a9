// sections_fuzz.cc: the reader of the sections of pages. Input: the records and texts of the file;
// what says that it belongs to the index is put right, so that what is read behind it is tried,
// too.
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
  for (uint32_t page = 0; page < 4; ++page) {
    for (uint64_t position = 0; position < kPageTextSize; position += 9) {
      PageSection section;
      if (!sections.Find(page, position, section)) continue;
      VELA_CHECK(!section.anchor.empty());
      // Both stand in the file, one behind the other.
      const std::string text = std::string(section.anchor) + std::string(section.heading);
      VELA_CHECK(file.find(text) != std::string_view::npos);
    }
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
  // The first byte says how many records there are.
  header.count = input.empty() ? 0 : static_cast<unsigned char>(input[0]);
  const std::string_view rest = input.substr(input.empty() ? 0 : 1);
  if (header.count * sizeof(SectionRecord) > rest.size()) return 0;
  header.textBytes = rest.size() - header.count * sizeof(SectionRecord);
  std::string file(sizeof header, '\0');
  memcpy(file.data(), &header, sizeof header);
  file += rest;
  CheckFinds(file);
  return 0;
}
