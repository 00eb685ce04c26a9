#include "index/page_sections.h"

#include <cstring>

namespace vela {

void SectionsFile::Open(const IndexDirectory& directory, const Settings& settings,
                        uint64_t pageTextSize) {
  Close();
  if (!file_.Open(directory, kSectionsFileName, false) ||
      !Use(file_.bytes(), settings.LookupGeneration, pageTextSize)) {
    Close();
  }
}

void SectionsFile::Open(std::string_view bytes, int32_t generation, uint64_t pageTextSize) {
  Close();
  if (!Use(bytes, generation, pageTextSize)) Close();
}

bool SectionsFile::Use(std::string_view bytes, int32_t generation, uint64_t pageTextSize) {
  SectionsHeader header;
  if (generation <= 0 || bytes.size() < sizeof header) return false;
  memcpy(&header, bytes.data(), sizeof header);
  bytes.remove_prefix(sizeof header);
  if (header.magic != kSectionsMagic || header.generation != static_cast<uint64_t>(generation) ||
      header.pageTextSize != pageTextSize || header.count > bytes.size() / sizeof(SectionRecord)) {
    return false;
  }
  const auto recordBytes = static_cast<size_t>(header.count) * sizeof(SectionRecord);
  if (bytes.size() - recordBytes != header.textBytes) return false;
  count_ = header.count;
  records_ = bytes.substr(0, recordBytes);
  texts_ = bytes.substr(recordBytes);
  return true;
}

void SectionsFile::Close() {
  file_.Close();
  records_ = texts_ = {};
  count_ = 0;
}

SectionRecord SectionsFile::RecordAt(uint64_t i) const {
  SectionRecord record;
  memcpy(&record, records_.data() + i * sizeof record, sizeof record);
  return record;
}

bool SectionsFile::Find(uint32_t page, uint64_t position, PageSection& section) const {
  uint64_t low = 0;  // the first record behind the place
  for (uint64_t high = count_; low < high;) {
    const uint64_t middle = low + (high - low) / 2;
    if (RecordAt(middle).position <= position) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (low == 0) return false;
  const SectionRecord record = RecordAt(low - 1);
  const size_t length = size_t{record.anchorLength} + record.headingLength;
  if (record.page != page || record.anchorLength == 0 || record.text > texts_.size() ||
      length > texts_.size() - record.text) {
    return false;
  }
  const std::string_view text = texts_.substr(record.text, length);
  section.anchor = text.substr(0, record.anchorLength);
  section.heading = text.substr(record.anchorLength);
  return true;
}

}  // namespace vela
