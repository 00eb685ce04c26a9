#include "indexer/write/section_packer.h"

#include <algorithm>
#include <cstring>

namespace vela::indexer {

namespace {

// Places that are tried for a copy.
constexpr int kMostTries = 16;

uint32_t HashOf(const char* at, int bits) {
  uint32_t three = 0;
  memcpy(&three, at, 3);
  return three * 0x9E37'79B1U >> (32 - bits);
}

}  // namespace

void SectionPacker::PutNumber(uint64_t number) {
  for (; number >= 0x80; number >>= 7) block_ += static_cast<char>(number | 0x80);
  block_ += static_cast<char>(number);
}

void SectionPacker::PutLiterals(std::string_view bytes) {
  for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), kSectionLiteralMost))) {
    const std::string_view some = bytes.substr(0, kSectionLiteralMost);
    block_ += static_cast<char>(some.size() - 1);
    block_ += some;
  }
}

SectionPacker::Copy SectionPacker::LongestCopy(size_t at) const {
  Copy longest;
  const size_t most = std::min(kSectionCopyMost, texts_.size() - at);
  if (most < kSectionCopyLeast) return longest;
  size_t place = last_[HashOf(texts_.data() + at, kHashBits)];
  for (int tries = 0; place != 0 && tries < kMostTries; ++tries, place = before_[place - 1]) {
    const size_t start = place - 1;
    if (at - start > kSectionCopyReach) break;
    size_t count = 0;
    while (count < most && texts_[start + count] == texts_[at + count]) ++count;
    if (count > longest.count) longest = {at - start, count};
    if (count == most) break;
  }
  return longest;
}

// The text from the place on can be copied from now on.
void SectionPacker::Learn(size_t at) {
  if (texts_.size() - at < kSectionCopyLeast) return;
  uint16_t& last = last_[HashOf(texts_.data() + at, kHashBits)];
  before_[at] = last;
  last = static_cast<uint16_t>(at + 1);
}

void SectionPacker::Add(uint64_t behind, std::string_view anchor, std::string_view heading) {
  ++count_;
  PutNumber(behind);
  PutNumber(anchor.size());
  if (anchor.empty()) return;
  PutNumber(heading.size());
  const size_t begin = texts_.size();
  texts_.append(anchor).append(heading);
  size_t written = begin;  // up to where there are steps
  for (size_t at = begin; at < texts_.size();) {
    const Copy copy = LongestCopy(at);
    Learn(at);
    // One that begins a byte later may be worth more.
    if (copy.count < kSectionCopyLeast || LongestCopy(at + 1).count > copy.count + 1) {
      ++at;
      continue;
    }
    PutLiterals(std::string_view(texts_).substr(written, at - written));
    const size_t distance = copy.behind - 1;
    block_ += static_cast<char>(0x80 | (copy.count - kSectionCopyLeast) << 2 | distance >> 8);
    block_ += static_cast<char>(distance);
    for (size_t i = 1; i < copy.count; ++i) Learn(at + i);
    at += copy.count;
    written = at;
  }
  PutLiterals(std::string_view(texts_).substr(written));
}

std::string_view SectionPacker::Finish() {
  count_ = 0;
  texts_.clear();
  std::ranges::fill(last_, 0);
  finished_.swap(block_);
  block_.clear();
  return finished_;
}

}  // namespace vela::indexer
