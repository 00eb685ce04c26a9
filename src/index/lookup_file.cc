#include "index/lookup_file.h"

namespace vela {

namespace {

// A table of whole blocks.
struct LookupBlockRoom {
  char bytes[kLookupBlockRoom];
};

template <typename Record>
bool HoldsTable(const LookupTablePlace& place, size_t blocks) {
  constexpr size_t kPerBlock = kLookupRecordsPerBlock<Record>;
  return place.firstBlock <= blocks &&
         place.count <= (blocks - static_cast<size_t>(place.firstBlock)) * kPerBlock;
}

}  // namespace

void LookupFile::Open(const IndexDirectory& directory, const Settings& settings) {
  Close();
  if (settings.LookupGeneration <= 0 || !file_.Open(directory, kLookupFileName, false)) return;
  Use(file_.bytes(), static_cast<uint64_t>(settings.LookupGeneration));
}

void LookupFile::Open(std::string_view bytes, int32_t generation) {
  Close();
  if (generation > 0) Use(bytes, static_cast<uint64_t>(generation));
}

void LookupFile::Use(std::string_view bytes, uint64_t generation) {
  const size_t blocks = bytes.size() / kLookupBlockSize;
  if (blocks == 0 || !sound_.TryAllocate(blocks / 64 + 1)) return Close();
  bytes_ = bytes.substr(0, blocks * kLookupBlockSize);
  if (!CheckBlock(0)) return Close();
  memcpy(&header_, bytes_.data(), sizeof header_);
  if (header_.magic != kLookupMagic || header_.version != kLookupVersion ||
      header_.generation != generation || !HoldsTables()) {
    Close();
  }
}

bool LookupFile::HoldsTables() const {
  const size_t blocks = bytes_.size() / kLookupBlockSize;
  return HoldsTable<LookupWordStarts>(header_.wordStarts, blocks) &&
         HoldsTable<LookupBlockRoom>(header_.sortedWords, blocks) &&
         HoldsTable<LookupKey>(header_.wordGuide, blocks) &&
         HoldsTable<LookupSpelling>(header_.spellingGuide, blocks) &&
         HoldsTable<LookupText>(header_.texts, blocks) &&
         HoldsTable<WordPairs>(header_.pairs, blocks);
}

void LookupFile::Close() {
  file_.Close();
  bytes_ = {};
  sound_.Release();
}

bool LookupFile::CheckBlock(size_t block) const {
  const std::string_view bytes = bytes_.substr(block * kLookupBlockSize, kLookupBlockSize);
  uint64_t written = 0;
  memcpy(&written, bytes.data() + kLookupBlockRoom, sizeof written);
  if (Checksum(bytes.substr(0, kLookupBlockRoom), block) != written) return false;
  sound_[block / 64] |= uint64_t{1} << (block % 64);
  return true;
}

bool IsFileOf(const LookupFileFacts& facts, std::string_view bytes) {
  return facts.size != 0 && facts.size == bytes.size() && facts.sample == FileSample(bytes);
}

bool IsFileOf(const LookupFileFacts& facts, const FileImage& file, size_t size) {
  if (facts.size == 0 || facts.size != size || size > file.bytes().size()) return false;
  if (size <= kWholeSample) return IsFileOf(facts, file.bytes().substr(0, size));
  uint64_t sum = size;
  for (size_t i = 0; i < kSamplePieces; ++i) {
    char piece[kSamplePiece];
    if (!file.CopyTo(piece, SamplePieceStart(size, i), sizeof piece)) return false;
    sum = Checksum({piece, sizeof piece}, sum);
  }
  return sum == facts.sample;
}

}  // namespace vela
