// check.h: what the fuzz targets share: a check that stops the run, and input cut into lines.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

// The entry that libFuzzer and the replaying `main` call.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace vela::fuzz {

// Ends the process when a property does not hold, in every build.
#define VELA_CHECK(property)                                                        \
  do {                                                                              \
    if (!(property)) {                                                              \
      fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #property); \
      abort();                                                                      \
    }                                                                               \
  } while (false)

inline std::string_view Text(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Takes the first line off the input, without its line feed.
inline std::string_view TakeLine(std::string_view& input) {
  const size_t feed = input.find('\n');
  const std::string_view line = input.substr(0, feed);
  input = feed == std::string_view::npos ? std::string_view() : input.substr(feed + 1);
  return line;
}

}  // namespace vela::fuzz
