#include "index/corrections.h"

#include <algorithm>
#include <cstring>

#include "index/byte_cursor.h"
#include "text/ascii.h"

namespace vela {

namespace {

constexpr size_t kLetterSets = sizeof(CorrectionHeader);

constexpr size_t PagesTable(size_t words) {
  return kLetterSets + words * kCorrectionLetterSetWidth;
}
constexpr size_t StartsTable(size_t words) {
  return PagesTable(words) + words * kCorrectionPagesWidth;
}
constexpr size_t TextsTable(size_t words) {
  return StartsTable(words) + (words + 1) * kCorrectionStartWidth;
}

bool IsLetter(char c) { return IsLower(c) || static_cast<unsigned char>(c) >= 0x80; }

}  // namespace

void CorrectionFile::Open(const IndexDirectory& directory) {
  Close();
  if (file_.Open(directory, kCorrectionsFileName, false)) Use(file_.bytes());
}

void CorrectionFile::Open(std::string_view bytes) {
  Close();
  Use(bytes);
}

void CorrectionFile::Close() {
  file_.Close();
  bytes_ = {};
}

void CorrectionFile::Use(std::string_view bytes) {
  if (bytes.size() < sizeof header_) return;
  memcpy(&header_, bytes.data(), sizeof header_);
  const auto& groups = header_.groups;
  if (header_.magic != kCorrectionsMagic || header_.words > kCorrectionWordLimit ||
      groups.back() != header_.words || !std::is_sorted(groups.begin(), groups.end()) ||
      bytes.size() != TextsTable(header_.words) + header_.textBytes) {
    return;
  }
  bytes_ = bytes;
}

uint32_t CorrectionFile::LetterSetAt(uint32_t word) const {
  uint32_t set = 0;
  memcpy(&set, bytes_.data() + kLetterSets + word * kCorrectionLetterSetWidth, sizeof set);
  return set;
}

uint32_t CorrectionFile::PagesOf(uint32_t word) const {
  return static_cast<uint32_t>(ReadLittleEndian(
      bytes_, PagesTable(header_.words) + word * kCorrectionPagesWidth, kCorrectionPagesWidth));
}

std::string_view CorrectionFile::TextOf(uint32_t word, bool utf8, WordLetters& letters) const {
  const size_t place = StartsTable(header_.words) + word * kCorrectionStartWidth;
  const size_t start = ReadLittleEndian(bytes_, place, kCorrectionStartWidth);
  const size_t end = ReadLittleEndian(bytes_, place + kCorrectionStartWidth, kCorrectionStartWidth);
  if (start > end || end > header_.textBytes) return {};
  const std::string_view text = bytes_.substr(TextsTable(header_.words) + start, end - start);
  if (!std::all_of(text.begin(), text.end(), IsLetter) || !ReadLetters(text, utf8, letters)) {
    return {};
  }
  return text;
}

}  // namespace vela
