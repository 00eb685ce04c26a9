// written.h: everything that a function writes to a response.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "output/response.h"
#include "program/fuzz/check.h"

namespace vela::fuzz {

// A file in memory that stands for standard output.
class Sink {
 public:
  Sink() : descriptor_(memfd_create("response", 0)) {}
  ~Sink() { close(descriptor_); }
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;

  int descriptor() const { return descriptor_; }
  std::string Bytes() const {
    std::string bytes(static_cast<size_t>(lseek(descriptor_, 0, SEEK_END)), '\0');
    VELA_CHECK(pread(descriptor_, bytes.data(), bytes.size(), 0) ==
               static_cast<ssize_t>(bytes.size()));
    return bytes;
  }

 private:
  int descriptor_;
};

template <typename Function>
std::string Written(Function function) {
  const Sink sink;
  const auto response = std::make_unique<Response>();
  response->descriptor = sink.descriptor();
  function(*response);
  Flush(*response);
  return sink.Bytes();
}

}  // namespace vela::fuzz
