#include "indexer/write/sections_writer.h"

#include <string_view>
#include <vector>

#include "format/sections.h"
#include "indexer/write/out_file.h"
#include "indexer/write/section_packer.h"

namespace vela::indexer {

namespace {

template <typename Record>
std::string_view BytesOf(const Record& record) {
  return {reinterpret_cast<const char*>(&record), sizeof record};
}

// Writes blocks one behind the other. The guide of one waits for the next, which says where it
// ends.
class BlockWriter {
 public:
  explicit BlockWriter(OutFile& file) : file_(file) {}

  void Add(uint64_t position, std::string_view anchor, std::string_view heading) {
    if (packer_.IsFullFor(anchor.size() + heading.size())) End(position);
    if (packer_.empty()) {
      guides_.push_back({.position = position, .start = static_cast<uint32_t>(written_)});
      former_ = position;
    }
    packer_.Add(position - former_, anchor, heading);
    former_ = position;
  }
  // Ends the block at hand; the next one begins at `position`.
  void End(uint64_t position) {
    const std::string_view block = packer_.Finish();
    guides_.back().sum = SectionBlockSum(block, guides_.back().position, position);
    file_.Write(block);
    written_ += block.size();
  }

  uint64_t written() const { return written_; }
  const std::vector<SectionGuide>& guides() const { return guides_; }

 private:
  OutFile& file_;
  SectionPacker packer_;
  std::vector<SectionGuide> guides_;
  uint64_t written_ = 0;  // bytes of blocks
  uint64_t former_ = 0;   // position of the section before
};

}  // namespace

uint64_t WriteSections(const std::filesystem::path& path, SiteSections& sections,
                       const SectionsOwner& owner) {
  if (sections.size() == 0 || owner.generation <= 0) return 0;
  SectionsHeader header = {.generation = static_cast<uint64_t>(owner.generation),
                           .pageTextSize = owner.pageTextSize};
  OutFile file(path);
  file.Write(BytesOf(header));  // as it is by now
  BlockWriter blocks(file);
  sections.ForEach(
      [&](const SiteSection& section, std::string_view anchor, std::string_view heading) {
        const bool isOfUse = anchor.size() + heading.size() <= kSectionTextRoom;
        blocks.Add(section.token * owner.tokenBytes, isOfUse ? anchor : "", isOfUse ? heading : "");
      });
  blocks.End(UINT64_MAX);
  for (const SectionGuide& guide : blocks.guides()) file.Write(BytesOf(guide));
  header.blockBytes = blocks.written();
  header.count = blocks.guides().size();
  file.Replace(0, BytesOf(header));
  return file.Finish();
}

}  // namespace vela::indexer
