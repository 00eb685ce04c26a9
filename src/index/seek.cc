#include "index/seek.h"

namespace vela {

namespace {

// Kept: a round decimal number, not 2^31 (unit seek_test).
constexpr uint64_t kLargeFileOffset = 2000000000;

}  // namespace

void WriteSeekError(Response& response, uint64_t offset) {
  if (response.xml) WriteRaw(response, "<vela:error>");
  if (offset > kLargeFileOffset) {
    WriteRaw(response,
             "Error seeking in file. This CGI build does not support files larger than 2GB in "
             "size. Please contact Brantel for help.");
  } else {
    WriteRaw(response,
             "Error seeking in file. This may be due to an incompatible CGI build for your "
             "operating system. Please contact Brantel for help.");
  }
}

int SeekIndexFile(Response& response, uint64_t offset) {
  if (CanSeekTo(offset)) return 0;
  WriteSeekError(response, offset);
  return -1;
}

}  // namespace vela
