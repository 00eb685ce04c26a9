#include "index/page_sections.h"

#include <algorithm>

namespace vela {

namespace {

// Guides that are read at once.
constexpr uint64_t kAtOnce = 64;

// What stands `part` of `whole` between the two numbers; `low` where `whole` is 0.
uint64_t Between(uint64_t low, uint64_t high, uint64_t part, uint64_t whole) {
  if (whole == 0) return low;
  const double share = static_cast<double>(std::min(part, whole)) / static_cast<double>(whole);
  return std::min(low + static_cast<uint64_t>(share * static_cast<double>(high - low)), high);
}

}  // namespace

uint64_t SectionBlock::ReadNumber() {
  if (!cursor_.rest.empty() && static_cast<unsigned char>(cursor_.rest.front()) < 0x80) {
    const auto number = static_cast<unsigned char>(cursor_.rest.front());
    cursor_.rest.remove_prefix(1);
    return number;
  }
  uint64_t number = 0;
  for (int shift = 0; shift < 64; shift += 7) {
    const uint64_t byte = TakeLittleEndian(cursor_, 1);
    number |= (byte & 0x7F) << shift;
    if (byte < 0x80) return number;
  }
  cursor_.bad = true;
  return 0;
}

// Adds a text of that length to the others.
bool SectionBlock::ReadText(size_t length) {
  if (length > kSectionTextRoom - used_) return false;
  const char* from = cursor_.rest.data();
  const char* const fromEnd = from + cursor_.rest.size();
  char* to = texts_ + used_;
  char* const toEnd = to + length;
  while (to < toEnd) {
    if (fromEnd - from < 2) return false;
    const auto first = static_cast<unsigned char>(*from++);
    if (first < kSectionLiteralMost) {
      const ptrdiff_t count = first + 1;
      if (count > fromEnd - from || count > toEnd - to) return false;
      to = std::copy_n(from, count, to);
      from += count;
      continue;
    }
    const ptrdiff_t behind = ((first & 3) << 8 | static_cast<unsigned char>(*from++)) + 1;
    const ptrdiff_t count = (first >> 2 & 31) + static_cast<ptrdiff_t>(kSectionCopyLeast);
    if (behind > to - texts_ || count > toEnd - to) return false;
    // Byte by byte: the copy may reach into itself.
    for (const char* const end = to + count; to < end; ++to) *to = *(to - behind);
  }
  used_ += length;
  cursor_.rest.remove_prefix(static_cast<size_t>(from - cursor_.rest.data()));
  return true;
}

bool SectionBlock::Next(uint64_t last, PageSection& section) {
  if (cursor_.bad || cursor_.rest.empty()) return false;
  position_ += ReadNumber();
  const uint64_t anchor = ReadNumber();
  const uint64_t heading = anchor != 0 ? ReadNumber() : 0;
  if (cursor_.bad || position_ > last) return false;
  const char* const text = texts_ + used_;
  if (anchor > kSectionTextRoom || heading > kSectionTextRoom ||
      !ReadText(static_cast<size_t>(anchor + heading))) {
    cursor_.bad = true;
    return false;
  }
  section.anchor = {text, static_cast<size_t>(anchor)};
  section.heading = {text + anchor, static_cast<size_t>(heading)};
  return true;
}

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
  if (generation <= 0 || !file_.Read(0, sizeof header_, &header_)) return false;
  const uint64_t rest = file_.size() - sizeof header_;
  return header_.magic == kSectionsMagic &&
         header_.generation == static_cast<uint64_t>(generation) &&
         header_.pageTextSize == pageTextSize && header_.blockBytes <= rest &&
         header_.count == (rest - header_.blockBytes) / sizeof(SectionGuide) &&
         (rest - header_.blockBytes) % sizeof(SectionGuide) == 0;
}

void SectionsFile::Close() {
  file_.Close();
  header_ = {};
}

// The last block that does not begin behind the place. They are spread over the text nearly as its
// places are, so that the first guess is a good one; every other time the middle is looked at,
// which comes to an end however they are spread.
bool SectionsFile::FindBlock(uint64_t position, Block& block) const {
  uint64_t low = 0;  // the first block behind the place is from here on ...
  uint64_t high = header_.count;
  uint64_t lowPosition = 0;
  uint64_t highPosition = header_.pageTextSize;
  SectionGuide behind = {.position = UINT64_MAX};
  uint64_t behindStart = header_.blockBytes;
  bool isFound = false;
  for (bool guesses = true; low < high; guesses = !guesses) {
    const uint64_t middle =
        guesses && lowPosition <= position && lowPosition < highPosition
            ? Between(low, high, position - lowPosition, highPosition - lowPosition)
            : low + (high - low) / 2;
    const uint64_t size = std::min(kAtOnce, high - low);
    const uint64_t first = std::clamp(middle, low + size / 2, high - (size - size / 2)) - size / 2;
    SectionGuide guides[kAtOnce];
    if (!file_.Read(sizeof header_ + header_.blockBytes + first * sizeof(SectionGuide),
                    static_cast<size_t>(size) * sizeof(SectionGuide), guides)) {
      return false;
    }
    const SectionGuide* const end = guides + size;
    const SectionGuide* const next = std::upper_bound(
        static_cast<const SectionGuide*>(guides), end, position,
        [](uint64_t place, const SectionGuide& each) { return place < each.position; });
    if (next != guides) {
      block.guide = next[-1];
      isFound = true;
      low = first + static_cast<uint64_t>(next - guides);
      lowPosition = block.guide.position;
    }
    if (next != end) {
      behind = *next;
      behindStart = next->start;
      high = first + static_cast<uint64_t>(next - guides);
      highPosition = next->position;
    }
  }
  block.end = behind.position;
  block.bytes = behindStart - block.guide.start;
  return isFound && block.guide.start <= behindStart && behindStart <= header_.blockBytes;
}

bool SectionsFile::Find(uint64_t position, PageSection& section) const {
  Block block;
  if (!FindBlock(position, block) || block.bytes > kSectionBlockRoom) return false;
  if (room_.empty() && !room_.TryAllocate(kSectionBlockRoom + kSectionTextRoom)) return false;
  const auto size = static_cast<size_t>(block.bytes);
  if (!file_.Read(sizeof header_ + block.guide.start, size, room_.data())) return false;
  const std::string_view bytes(room_.data(), size);
  const uint64_t begin = block.guide.position;
  if (SectionBlockSum(bytes, begin, block.end) != block.guide.sum) return false;
  SectionBlock sections(bytes, begin, room_.data() + kSectionBlockRoom);
  bool isFound = false;
  for (PageSection next; sections.Next(position, next); isFound = true) section = next;
  return isFound && !sections.isBad() && !section.anchor.empty();
}

}  // namespace vela
