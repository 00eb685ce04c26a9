// lookup_file.h: the reader of the tables by which a request finds what it asks for
// (format/lookup.h). The file is not trusted: what it says is used only from blocks whose checksum
// is right, and whoever uses a position checks that it lies in its file.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "format/lookup.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"

namespace vela {

class LookupFile {
 public:
  // Opens the file of the directory when the settings name its generation; otherwise, and when it
  // is not what it should be, it stays closed.
  void Open(const IndexDirectory& directory, const Settings& settings);
  // The same over bytes in memory, which must outlive the reader.
  void Open(std::string_view bytes, int32_t generation);
  void Close();

  bool isOpen() const { return !bytes_.empty(); }

  // Meaningful only while it is open.
  const LookupHeader& header() const { return header_; }

  // Record `i` of the table at `place`, one of the header's. False when there is none or its block
  // is damaged.
  template <typename Record>
  [[nodiscard]] bool Read(const LookupTablePlace& place, size_t i, Record& record) const {
    if (i >= place.count) return false;
    constexpr size_t kPerBlock = kLookupRecordsPerBlock<Record>;
    const size_t block = place.firstBlock + i / kPerBlock;
    if (!IsSound(block)) return false;
    const size_t at = block * kLookupBlockSize + i % kPerBlock * sizeof(Record);
    memcpy(&record, bytes_.data() + at, sizeof record);
    return true;
  }

  // What block `i` of the table at `place`, one of the header's that counts blocks, holds; empty
  // when there is none or it is damaged.
  std::string_view Block(const LookupTablePlace& place, size_t i) const {
    if (i >= place.count || !IsSound(place.firstBlock + i)) return {};
    return bytes_.substr((place.firstBlock + i) * kLookupBlockSize, kLookupBlockRoom);
  }

  // Where the line of base word `word` begins in the dictionary. False as for Read.
  [[nodiscard]] bool ReadWordStart(size_t word, size_t& start) const {
    LookupWordStarts starts;
    if (!Read(header_.wordStarts, word / kLookupStartsAtOnce, starts)) return false;
    start = starts.At(word % kLookupStartsAtOnce);
    return true;
  }

 private:
  void Use(std::string_view bytes, uint64_t generation);
  bool HoldsTables() const;
  bool IsSound(size_t block) const {
    const uint64_t bit = uint64_t{1} << (block % 64);
    return (sound_[block / 64] & bit) != 0 || CheckBlock(block);
  }
  bool CheckBlock(size_t block) const;

  FileImage file_;
  std::string_view bytes_;  // whole blocks; empty while closed
  LookupHeader header_;
  mutable OwnedArray<uint64_t> sound_;  // one bit a block that has been checked
};

// Whether `bytes` are the file that the tables were made from.
bool IsFileOf(const LookupFileFacts& facts, std::string_view bytes);
// The same of the first `size` bytes of `file`; where it is mapped, its pieces are copied.
bool IsFileOf(const LookupFileFacts& facts, const FileImage& file, size_t size);

}  // namespace vela
