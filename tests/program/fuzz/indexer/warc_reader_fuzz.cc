// warc_reader_fuzz.cc: the pages in a web archive. Input: the archive, not packed.
#include <algorithm>

#include "indexer/source/warc_reader.h"
#include "program/fuzz/check.h"

namespace vela::fuzz {
namespace {

constexpr uint64_t kPageLimit = 10000;

// The bytes of all pages, read in pieces of that size.
std::string PagesOf(std::string_view bytes, size_t piece, bool& isDamaged) {
  indexer::WarcReader reader(
      [bytes, piece](std::span<char> into) mutable {
        const size_t got = std::min({piece, into.size(), bytes.size()});
        std::copy_n(bytes.data(), got, into.data());
        bytes.remove_prefix(got);
        return got;
      },
      kPageLimit);
  std::string pages;
  indexer::ArchivedPage page;
  while (reader.Next(page)) {
    VELA_CHECK(page.address.starts_with("http"));
    VELA_CHECK(page.answer.bytes.size() <= kPageLimit + (size_t{64} << 10));
    pages += page.address + '\n' + page.answer.bytes + '\n';
  }
  isDamaged = reader.isDamaged();
  return pages;
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela::fuzz;
  const std::string_view bytes = Text(data, size);
  bool isDamaged = false;
  bool isDamagedInPieces = false;
  const std::string pages = PagesOf(bytes, size + 1, isDamaged);
  VELA_CHECK(pages == PagesOf(bytes, 13, isDamagedInPieces));
  VELA_CHECK(isDamaged == isDamagedInPieces);
  return 0;
}
