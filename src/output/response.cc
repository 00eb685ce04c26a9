#include "output/response.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "output/grow_text.h"

namespace vela {

namespace {

void WriteAll(Response& response, const char* bytes, size_t count) {
  while (count > 0 && !response.broken) {
    const ssize_t written = write(response.descriptor, bytes, count);
    if (written < 0) {
      if (errno == EINTR) continue;
      response.broken = true;
      return;
    }
    bytes += written;
    count -= static_cast<size_t>(written);
  }
}

}  // namespace

int32_t WriteOut(Response& response, const char* format, ...) {
  if (format == nullptr) return -1;
  char scratch[kFormattedLimit + 1];
  va_list arguments;
  va_start(arguments, format);
  const int32_t formatted = vsnprintf(scratch, sizeof scratch, format, arguments);
  va_end(arguments);
  if (formatted < 0) return -1;
  const int32_t kept = std::min(formatted, kFormattedLimit);
  WriteRaw(response, {scratch, static_cast<size_t>(kept)});
  return kept;
}

void WriteRaw(Response& response, std::string_view text) {
  if (text.size() > Response::kBufferSize - response.filled) Flush(response);
  if (text.size() >= Response::kBufferSize) {
    WriteAll(response, text.data(), text.size());
    return;
  }
  text.copy(response.buffer + response.filled, text.size());
  response.filled += text.size();
}

void Flush(Response& response) {
  const size_t count = response.filled;
  response.filled = 0;
  WriteAll(response, response.buffer, count);
}

void WriteError(Response& response, std::string_view message, ErrorEnd end) {
  if (response.xml) WriteRaw(response, "<vela:error>");
  WriteRaw(response, message);
  if (!response.xml) return;
  WriteRaw(response, end == ErrorEnd::kLineFeed ? "</vela:error>\n" : "</vela:error>");
}

}  // namespace vela
