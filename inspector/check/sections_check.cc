#include "inspector/check/sections_check.h"

#include <cstring>
#include <string>
#include <string_view>

#include "format/sections.h"
#include "inspector/check/stored_texts.h"
#include "inspector/findings/plain_text.h"

namespace vela::inspector {

namespace {

class SectionRecords {
 public:
  SectionRecords(const CheckInput& input, const TextStarts& texts, std::string_view bytes)
      : input_(input), texts_(texts), bytes_(bytes) {}

  void Run() {
    SectionsHeader header;
    if (bytes_.size() >= sizeof header) memcpy(&header, bytes_.data(), sizeof header);
    if (bytes_.size() < sizeof header || header.magic != kSectionsMagic ||
        header.count > (bytes_.size() - sizeof header) / sizeof(SectionRecord) ||
        bytes_.size() - sizeof header - header.count * sizeof(SectionRecord) != header.textBytes) {
      return Add(
          Fault::kUnreadable, kWholeFile,
          "its header does not fit its size of " + CountOfText(bytes_.size(), "byte", "bytes"));
    }
    const OpenedIndex& index = input_.index;
    if (header.generation != static_cast<uint64_t>(index.settings.LookupGeneration) ||
        header.pageTextSize != index.pageText.bytes().size()) {
      Add(Fault::kOtherFile, kWholeFile, "it belongs to another page text or other settings");
    }
    textBytes_ = bytes_.substr(bytes_.size() - static_cast<size_t>(header.textBytes));
    for (uint64_t i = 0; i < header.count; ++i) {
      SectionRecord record;
      const uint64_t at = sizeof header + i * sizeof record;
      memcpy(&record, bytes_.data() + at, sizeof record);
      CheckRecord(record, Byte(at), i == 0);
    }
  }

 private:
  void Add(Fault fault, Place place, std::string detail) {
    input_.findings.Add(fault, kSectionsFileName, place, std::move(detail));
  }

  void CheckRecord(const SectionRecord& record, Place place, bool isFirst) {
    if (!isFirst && record.position < former_) {
      Add(Fault::kWrongOrder, place,
          "byte " + std::to_string(record.position) + " of the page text behind byte " +
              std::to_string(former_));
    }
    former_ = record.position;
    CheckPlace(record, place);
    const size_t length = size_t{record.anchorLength} + record.headingLength;
    if (record.text > textBytes_.size() || length > textBytes_.size() - record.text) {
      return Add(Fault::kBeyondEnd, place, "the texts of a section");
    }
    const std::string_view text = textBytes_.substr(record.text, length);
    const std::string_view anchor = text.substr(0, record.anchorLength);
    const std::string_view heading = text.substr(record.anchorLength);
    if (!IsCleanText(anchor, true)) Add(Fault::kBadText, place, "the anchor " + Quoted(anchor));
    if (!IsCleanText(heading, IsUtf8(input_.index.settings))) {
      Add(Fault::kBadText, place, "the heading " + Quoted(heading));
    }
    if (heading.find_first_of("<>") != heading.npos) {
      Add(Fault::kUnsafeText, place, "the heading " + Quoted(heading));
    }
  }

  // A record may stand at the end of the text of its page, too.
  void CheckPlace(const SectionRecord& record, Place place) {
    if (texts_.empty()) return;
    if (record.page >= PageCount(input_.index) || record.page + size_t{1} >= texts_.size()) {
      return Add(Fault::kUnknownPage, place, "page " + std::to_string(record.page));
    }
    const auto width = static_cast<uint64_t>(input_.index.settings.DictIDLen);
    if (record.position < texts_[record.page] || record.position > texts_[record.page + 1] ||
        record.position % width != 0) {
      Add(Fault::kMisplaced, place,
          "byte " + std::to_string(record.position) + " of the page text is not of page " +
              std::to_string(record.page));
    }
  }

  const CheckInput& input_;
  const TextStarts& texts_;
  std::string_view bytes_;
  std::string_view textBytes_;
  uint64_t former_ = 0;  // the position before
};

}  // namespace

void CheckSections(const CheckInput& input, const TextStarts& texts) {
  FileImage file;
  if (!file.Open(input.index.directory, kSectionsFileName, false)) return;  // may be absent
  SectionRecords(input, texts, file.bytes()).Run();
}

}  // namespace vela::inspector
