#include "inspector/check/sections_check.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "format/sections.h"
#include "index/page_sections.h"
#include "inspector/check/stored_texts.h"
#include "inspector/findings/plain_text.h"

namespace vela::inspector {

namespace {

class SectionBlocks {
 public:
  SectionBlocks(const CheckInput& input, const TextStarts& texts, std::string_view bytes)
      : input_(input), texts_(texts), bytes_(bytes) {}

  void Run() {
    if (bytes_.size() >= sizeof header_) memcpy(&header_, bytes_.data(), sizeof header_);
    const size_t rest = bytes_.size() - std::min(bytes_.size(), sizeof header_);
    if (rest == 0 || header_.magic != kSectionsMagic || header_.blockBytes > rest ||
        header_.count != (rest - header_.blockBytes) / sizeof(SectionGuide) ||
        (rest - header_.blockBytes) % sizeof(SectionGuide) != 0) {
      return Add(
          Fault::kUnreadable, kWholeFile,
          "its header does not fit its size of " + CountOfText(bytes_.size(), "byte", "bytes"));
    }
    const Settings& settings = input_.index.settings;
    if (header_.generation != static_cast<uint64_t>(settings.LookupGeneration) ||
        header_.pageTextSize != input_.index.pageText.bytes().size()) {
      Add(Fault::kOtherFile, kWholeFile, "it belongs to another page text or other settings");
    }
    for (uint64_t i = 0; i < header_.count; ++i) CheckBlock(i);
    if (end_ != kNoEnd) Add(Fault::kMisplaced, kWholeFile, "the last section does not end");
  }

 private:
  static constexpr uint64_t kNoEnd = UINT64_MAX;

  void Add(Fault fault, Place place, std::string detail) {
    input_.findings.Add(fault, kSectionsFileName, place, std::move(detail));
  }

  SectionGuide GuideAt(uint64_t i) const {
    SectionGuide guide = {.position = UINT64_MAX,
                          .start = static_cast<uint32_t>(header_.blockBytes)};
    if (i == header_.count) return guide;
    memcpy(&guide, bytes_.data() + sizeof header_ + header_.blockBytes + i * sizeof guide,
           sizeof guide);
    return guide;
  }

  void CheckBlock(uint64_t number) {
    const SectionGuide guide = GuideAt(number);
    const SectionGuide next = GuideAt(number + 1);
    const uint64_t at = sizeof header_ + guide.start;
    if (guide.start > next.start || next.start > header_.blockBytes ||
        next.start - guide.start > kSectionBlockRoom) {
      return Add(Fault::kBeyondEnd, Byte(at), "block " + std::to_string(number));
    }
    const std::string_view bytes = bytes_.substr(at, next.start - guide.start);
    if (SectionBlockSum(bytes, guide.position, next.position) != guide.sum) {
      Add(Fault::kBadChecksum, Byte(at), "block " + std::to_string(number));
    }
    if (guide.position < former_ || guide.position > next.position) {
      Add(Fault::kWrongOrder, Byte(at),
          "a block of byte " + std::to_string(guide.position) + " of the page text");
    }
    char room[kSectionTextRoom];
    SectionBlock block(bytes, guide.position, room);
    size_t count = 0;
    for (PageSection section; block.Next(UINT64_MAX, section); ++count) {
      former_ = block.position();
      CheckSection(section, block.position(), Byte(at));
    }
    if (block.isBad()) Add(Fault::kBeyondEnd, Byte(at), "a section");
    if (count == 0 || count > kSectionsPerBlock) {
      Add(Fault::kWrongCount, Byte(at), CountOfText(count, "section", "sections") + " in a block");
    }
  }

  void CheckSection(const PageSection& section, uint64_t position, Place place) {
    CheckPosition(section, position, place);
    if (!IsCleanText(section.anchor, true)) {
      Add(Fault::kBadText, place, "the anchor " + Quoted(section.anchor));
    }
    if (!IsCleanText(section.heading, IsUtf8(input_.index.settings))) {
      Add(Fault::kBadText, place, "the heading " + Quoted(section.heading));
    }
    if (section.heading.find_first_of("<>") != section.heading.npos) {
      Add(Fault::kUnsafeText, place, "the heading " + Quoted(section.heading));
    }
  }

  // The sections of a page end in its text, or where that does.
  void CheckPosition(const PageSection& section, uint64_t position, Place place) {
    if (texts_.empty()) return;
    const auto width = static_cast<uint64_t>(input_.index.settings.DictIDLen);
    const auto behind = std::ranges::upper_bound(texts_, position);
    const bool endsText = section.anchor.empty() && position == texts_.back();
    if (position > end_ || position % width != 0 || (behind == texts_.end() && !endsText)) {
      Add(Fault::kMisplaced, place,
          "byte " + std::to_string(position) + " of the page text is not of the page");
    }
    end_ = section.anchor.empty() || behind == texts_.end() ? kNoEnd : *behind;
  }

  const CheckInput& input_;
  const TextStarts& texts_;
  std::string_view bytes_;
  SectionsHeader header_;
  uint64_t former_ = 0;  // the position before
  uint64_t end_ =
      kNoEnd;  // of the page of the section before, which goes on until there is another
};

}  // namespace

void CheckSections(const CheckInput& input, const TextStarts& texts) {
  FileImage file;
  if (!file.Open(input.index.directory, kSectionsFileName, false)) return;  // may be absent
  SectionBlocks(input, texts, file.bytes()).Run();
}

}  // namespace vela::inspector
