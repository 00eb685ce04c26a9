#include "index/page_text.h"

#include <algorithm>
#include <cstddef>

#include "index/byte_cursor.h"
#include "text/numbers.h"

namespace vela {

namespace {

constexpr uint64_t kReadSize = 128;

// Reads on behind what is buffered, so that at most kReadSize bytes are.
void FillBuffer(PageTextReader& reader, uint64_t buffered) {
  const uint64_t wanted = kReadSize - buffered;
  const uint64_t left =
      reader.bufferEnd < reader.file.size() ? reader.file.size() - reader.bufferEnd : 0;
  const uint64_t got = std::min(wanted, left);
  if (got < wanted) reader.atEnd = true;
  reader.bufferEnd += got;
}

}  // namespace

bool IsPageTextPlaceholder(std::string_view file) {
  constexpr size_t kBytesRead = 6;
  char start[kBytesRead + 1] = {};
  file.substr(0, kBytesRead).copy(start, kBytesRead);
  return start[0] == 'T' && start[2] == 'h' && start[4] == 'i' && start[6] == 's';
}

void SeekPageText(PageTextReader& reader, uint64_t position) {
  reader.position = position;
  reader.bufferEnd = position;
  reader.atEnd = false;
}

int32_t ReadPageTextToken(PageTextReader& reader, PageTextToken& token) {
  token = {};
  if (reader.tokenSize < 1) return 0;
  const auto size = static_cast<uint64_t>(reader.tokenSize);
  const uint64_t buffered = reader.bufferEnd - reader.position;
  if (buffered < size) {
    if (buffered == 0 && reader.atEnd) return 0;
    FillBuffer(reader, buffered);
  }
  if (reader.bufferEnd - reader.position < size) return 0;
  const auto start = static_cast<size_t>(reader.position);
  const auto tokenSize = static_cast<size_t>(size);
  const size_t wordWidth = tokenSize - kTokenVariantWidth;
  token.word = WrapToUint32(ReadLittleEndian(reader.file, start, wordWidth));
  token.variant = static_cast<uint8_t>(reader.file[start + wordWidth]);
  reader.position += size;
  return reader.tokenSize;
}

}  // namespace vela
