#include "index/synonyms.h"

#include <algorithm>
#include <cstring>

#include "index/byte_cursor.h"

namespace vela {

namespace {

constexpr size_t kKeys = sizeof(SynonymHeader);

}  // namespace

void SynonymFile::Open(const IndexDirectory& directory) {
  Close();
  if (file_.Open(directory, kSynonymsFileName, false)) Use(file_.bytes());
}

void SynonymFile::Open(std::string_view bytes) {
  Close();
  Use(bytes);
}

void SynonymFile::Close() {
  file_.Close();
  bytes_ = {};
}

void SynonymFile::Use(std::string_view bytes) {
  if (bytes.size() < sizeof header_) return;
  memcpy(&header_, bytes.data(), sizeof header_);
  static_assert(sizeof(size_t) > sizeof header_.keys, "sums of sizes cannot overflow");
  alternatives_ = kKeys + (size_t{header_.keys} + 1) * kSynonymKeySize;
  records_ = alternatives_ + (size_t{header_.alternatives} + 1) * kSynonymAlternativeSize;
  texts_ = records_ + size_t{header_.records} * kWordMapRecordSize;
  if (header_.magic != kSynonymsMagic || bytes.size() != texts_ + header_.textBytes) return;
  bytes_ = bytes;
}

uint32_t SynonymFile::Number(size_t at) const {
  return static_cast<uint32_t>(ReadLittleEndian(bytes_, at, kSynonymNumberWidth));
}

std::string_view SynonymFile::Text(uint32_t start, uint32_t end) const {
  if (start > end || end > header_.textBytes) return {};
  return bytes_.substr(texts_ + start, end - start);
}

std::string_view SynonymFile::KeyAt(uint32_t key) const {
  const size_t at = kKeys + key * kSynonymKeySize;
  return Text(Number(at), Number(at + kSynonymKeySize));
}

SynonymRange SynonymFile::Find(std::string_view key) const {
  if (!isOpen()) return {};
  uint32_t low = 0;
  uint32_t high = header_.keys;
  while (low < high) {
    const uint32_t middle = low + (high - low) / 2;
    if (KeyAt(middle) < key) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (low == header_.keys || KeyAt(low) != key) return {};
  const size_t at = kKeys + low * kSynonymKeySize + kSynonymNumberWidth;
  const uint32_t first = Number(at);
  const uint32_t end = Number(at + kSynonymKeySize);
  if (first > end || end > header_.alternatives) return {};
  const auto limit = static_cast<uint32_t>(kSynonymAlternativesLimit);
  return {first, first + std::min(end - first, limit)};
}

Synonym SynonymFile::At(uint32_t alternative) const {
  const size_t at = alternatives_ + alternative * kSynonymAlternativeSize;
  const size_t next = at + kSynonymAlternativeSize;
  Synonym synonym;
  synonym.text = Text(Number(at), Number(next));
  synonym.weight = std::min(Number(at + 2 * kSynonymNumberWidth), kWholeSynonymWeight);
  const uint32_t first = Number(at + kSynonymNumberWidth);
  const uint32_t end = Number(next + kSynonymNumberWidth);
  if (first > end || end > header_.records) return {};
  synonym.records.bytes =
      bytes_.substr(records_ + first * kWordMapRecordSize, (end - first) * kWordMapRecordSize);
  return synonym;
}

}  // namespace vela
