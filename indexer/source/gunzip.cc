#include "indexer/source/gunzip.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>

namespace vela::indexer {

namespace {

// Any of gzip and zlib, with the largest window there is.
constexpr int kWindowOfBoth = 15 + 32;

class Inflater {
 public:
  Inflater() {
    if (inflateInit2(&stream, kWindowOfBoth) != Z_OK) throw std::bad_alloc();
  }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;
  ~Inflater() { inflateEnd(&stream); }

  z_stream stream = {};
};

}  // namespace

GunzipStatus Gunzip(std::string_view bytes, size_t limit, std::string& out) {
  out.clear();
  if (bytes.size() > std::numeric_limits<uInt>::max()) return GunzipStatus::kTooLarge;
  Inflater inflater;
  z_stream& stream = inflater.stream;
  // zlib reads only, whatever the type says.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  std::array<char, size_t{1} << 16> piece;
  while (true) {
    stream.next_out = reinterpret_cast<Bytef*>(piece.data());
    stream.avail_out = static_cast<uInt>(piece.size());
    const int result = inflate(&stream, Z_NO_FLUSH);
    const size_t got = piece.size() - stream.avail_out;
    const size_t room = limit - out.size();
    out.append(piece.data(), std::min(got, room));
    if (got > room) return GunzipStatus::kTooLarge;
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
    if (result == Z_STREAM_END) {
      // What follows the last member and is none is no part of it.
      if (!LooksGzipped({reinterpret_cast<const char*>(stream.next_in), stream.avail_in})) {
        return GunzipStatus::kOk;
      }
      inflateReset(&stream);
    } else if (result != Z_OK) {
      return GunzipStatus::kDamaged;
    }
  }
}

}  // namespace vela::indexer
