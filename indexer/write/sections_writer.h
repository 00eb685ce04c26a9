// sections_writer.h: the sections of long pages (format/sections.h).
#pragma once

#include <cstdint>
#include <filesystem>

#include "indexer/collect/site_sections.h"

namespace vela::indexer {

// What the file belongs to.
struct SectionsOwner {
  int32_t generation = 0;  // LookupGeneration
  uint64_t pageTextSize = 0;
  size_t tokenBytes = 0;  // DictIDLen
};

// Writes the file and returns its size; none, and 0, when there are no sections or no generation.
uint64_t WriteSections(const std::filesystem::path& path, SiteSections& sections,
                       const SectionsOwner& owner);

}  // namespace vela::indexer
