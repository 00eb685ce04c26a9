#include "index/page_sections.h"

#include <algorithm>

namespace vela {

namespace {

// Records that are read at once.
constexpr uint64_t kAtOnce = 64;

// What stands `part` of `whole` between the two numbers; `low` where `whole` is 0.
uint64_t Between(uint64_t low, uint64_t high, uint64_t part, uint64_t whole) {
  if (whole == 0) return low;
  const double share = static_cast<double>(std::min(part, whole)) / static_cast<double>(whole);
  return std::min(low + static_cast<uint64_t>(share * static_cast<double>(high - low)), high);
}

}  // namespace

void SectionsFile::Open(const IndexDirectory& directory, const Settings& settings,
                        uint64_t pageTextSize) {
  Close();
  if (!file_.Open(directory, kSectionsFileName) || !Use(settings.LookupGeneration, pageTextSize)) {
    Close();
  }
}

void SectionsFile::Open(std::string_view bytes, int32_t generation, uint64_t pageTextSize) {
  Close();
  file_.Open(bytes);
  if (!Use(generation, pageTextSize)) Close();
}

bool SectionsFile::Use(int32_t generation, uint64_t pageTextSize) {
  SectionsHeader header;
  if (generation <= 0 || !file_.Read(0, sizeof header, &header)) return false;
  const uint64_t rest = file_.size() - sizeof header;
  if (header.magic != kSectionsMagic || header.generation != static_cast<uint64_t>(generation) ||
      header.pageTextSize != pageTextSize || header.count > rest / sizeof(SectionRecord)) {
    return false;
  }
  const uint64_t recordBytes = header.count * sizeof(SectionRecord);
  if (rest - recordBytes != header.textBytes) return false;
  count_ = header.count;
  textStart_ = sizeof header + recordBytes;
  textBytes_ = header.textBytes;
  pageTextSize_ = pageTextSize;
  return true;
}

void SectionsFile::Close() {
  file_.Close();
  count_ = 0;
}

// The last record that does not begin behind the place. Sections are spread over the text nearly as
// its places are, so that the first guess is a good one; every other time the middle is looked at,
// which comes to an end however they are spread.
bool SectionsFile::FindRecord(uint64_t position, SectionRecord& record) const {
  uint64_t low = 0;  // the first record behind the place is from here on ...
  uint64_t high = count_;
  uint64_t lowPosition = 0;
  uint64_t highPosition = pageTextSize_;
  bool isFound = false;
  for (bool guesses = true; low < high; guesses = !guesses) {
    const uint64_t middle =
        guesses && lowPosition <= position && lowPosition < highPosition
            ? Between(low, high, position - lowPosition, highPosition - lowPosition)
            : low + (high - low) / 2;
    const uint64_t size = std::min(kAtOnce, high - low);
    const uint64_t first = std::clamp(middle, low + size / 2, high - (size - size / 2)) - size / 2;
    SectionRecord records[kAtOnce];
    if (!file_.Read(sizeof(SectionsHeader) + first * sizeof(SectionRecord),
                    static_cast<size_t>(size) * sizeof(SectionRecord), records)) {
      return false;
    }
    const SectionRecord* const end = records + size;
    const SectionRecord* const behind = std::upper_bound(
        static_cast<const SectionRecord*>(records), end, position,
        [](uint64_t place, const SectionRecord& each) { return place < each.position; });
    if (behind != records) {
      record = behind[-1];
      isFound = true;
      low = first + static_cast<uint64_t>(behind - records);
      lowPosition = record.position;
    }
    if (behind != end) {
      high = first + static_cast<uint64_t>(behind - records);
      highPosition = behind->position;
    }
  }
  return isFound;
}

bool SectionsFile::Find(uint32_t page, uint64_t position, PageSection& section) const {
  SectionRecord record;
  if (!FindRecord(position, record)) return false;
  const size_t length = size_t{record.anchorLength} + record.headingLength;
  if (record.page != page || record.anchorLength == 0 || record.text > textBytes_ ||
      length > textBytes_ - record.text) {
    return false;
  }
  if (text_.size() < length && !text_.TryAllocate(length)) return false;
  if (!file_.Read(textStart_ + record.text, length, text_.data())) return false;
  const std::string_view text(text_.data(), length);
  section.anchor = text.substr(0, record.anchorLength);
  section.heading = text.substr(record.anchorLength);
  return true;
}

}  // namespace vela
