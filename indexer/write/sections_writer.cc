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

uint64_t WriteSections(const std::filesystem::path& path, const SiteSections& sections,
                       const SectionsOwner& owner) {
  if (sections.sections.empty() || owner.generation <= 0) return 0;
  OutFile file(path);
  WriteRecord(file, SectionsHeader{.generation = static_cast<uint64_t>(owner.generation),
                                   .pageTextSize = owner.pageTextSize,
                                   .count = sections.sections.size(),
                                   .textBytes = sections.texts.size()});
  for (const SiteSection& section : sections.sections) {
    WriteRecord(file, SectionRecord{.position = section.token * owner.tokenBytes,
                                    .page = section.page,
                                    .text = section.text,
                                    .anchorLength = section.anchorLength,
                                    .headingLength = section.headingLength});
  }
  file.Write(sections.texts);
  return file.Finish();
}

}  // namespace vela::indexer
