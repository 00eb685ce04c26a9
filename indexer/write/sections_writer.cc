#include "indexer/write/sections_writer.h"

#include <string_view>

#include "format/sections.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

namespace {

template <typename Record>
void WriteRecord(OutFile& file, const Record& record) {
  file.Write({reinterpret_cast<const char*>(&record), sizeof record});
}

}  // namespace

uint64_t WriteSections(const std::filesystem::path& path, SiteSections& sections,
                       const SectionsOwner& owner) {
  if (sections.size() == 0 || owner.generation <= 0) return 0;
  OutFile file(path);
  WriteRecord(file, SectionsHeader{.generation = static_cast<uint64_t>(owner.generation),
                                   .pageTextSize = owner.pageTextSize,
                                   .count = sections.size(),
                                   .textBytes = sections.textBytes()});
  const auto write = [&](const SiteSection& section) {
    WriteRecord(file, SectionRecord{.position = section.token * owner.tokenBytes,
                                    .page = section.page,
                                    .text = section.text,
                                    .anchorLength = section.anchorLength,
                                    .headingLength = section.headingLength});
  };
  sections.ForEach(write, [&](std::string_view texts) { file.Write(texts); });
  return file.Finish();
}

}  // namespace vela::indexer
