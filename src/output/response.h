// response.h: the bytes that go to the web server at once, ahead of or around the page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vela {

// Standard output, buffered here and written in large pieces. Writes to a closed pipe are dropped.
struct Response {
  static constexpr size_t kBufferSize = 32768;
  char buffer[kBufferSize] = {};
  size_t filled = 0;
  int descriptor = 1;
  bool xml = false;     // the request is answered as XML: errors are wrapped
  bool broken = false;  // a write failed: nothing more is written
};

// Formats and writes at once; at most kFormattedLimit bytes. Nothing is escaped, as in sections.h.
// The count written, -1 on failure.
[[gnu::format(printf, 2, 3)]] int32_t WriteOut(Response& response, const char* format, ...);

// Writes the text unchanged, whatever its length.
void WriteRaw(Response& response, std::string_view text);

// Hands everything buffered to the web server.
void Flush(Response& response);

// What follows an error in XML mode.
enum class ErrorEnd { kPlain, kLineFeed };

// Writes the message of an error; in XML mode between "<vela:error>" and "</vela:error>", and with
// kLineFeed a line feed behind that.
void WriteError(Response& response, std::string_view message, ErrorEnd end);

}  // namespace vela
