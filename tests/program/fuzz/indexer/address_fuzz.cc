// address_fuzz.cc: the addresses of pages. Input: a line with the site's address, a line with the
// path of a file below it, then what a link on that page says.
#include <string>

#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/words/clean_text.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/clean_text.h"

namespace vela::fuzz {
namespace {

int HexValue(char c) {
  const size_t value = std::string_view("0123456789ABCDEF").find(c);
  return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

// The bytes that the escapes of an address stand for.
std::string Unescaped(std::string_view address) {
  std::string bytes;
  for (size_t i = 0; i < address.size(); ++i) {
    if (address[i] != '%') {
      bytes += address[i];
      continue;
    }
    VELA_CHECK(i + 2 < address.size());
    const int high = HexValue(address[i + 1]);
    const int low = HexValue(address[i + 2]);
    VELA_CHECK(high >= 0 && low >= 0);
    bytes += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return bytes;
}

// "/" where the line is no address of a site.
std::string BaseOf(std::string_view line) {
  std::string base = "/";
  try {
    base = indexer::CheckedBaseUrl(std::string(line));
    VELA_CHECK(base.ends_with('/'));
    VELA_CHECK(indexer::CheckedBaseUrl(base) == base);
  } catch (const indexer::IndexError& error) {
    VELA_CHECK(error.status == indexer::ExitStatus::kUsage && base == "/");
  }
  return base;
}

void CheckStored(std::string_view address) {
  const std::string stored = indexer::StoredAddress(address);
  VELA_CHECK(stored.find_first_of(" \"'<>|\\`\r\n") == stored.npos);
  CheckClean(stored);
}

void CheckPageAddress(const std::string& base, std::string_view path) {
  const std::string address = indexer::PageAddress(base, path);
  VELA_CHECK(Unescaped(address.substr(base.size())) == path);  // reads back
  VELA_CHECK(indexer::IsBelow(address, base));
  VELA_CHECK(indexer::InSpellingOf(base, address) == address);
  VELA_CHECK(indexer::AsEncoded(address) == address);
  CheckOneLine(indexer::AddressText(address, base));
  CheckStored(address);
}

void CheckReference(const std::string& page, std::string_view reference) {
  const std::string encoded = indexer::AsEncoded(reference);
  VELA_CHECK(indexer::AsEncoded(encoded) == encoded);
  const std::string address = indexer::ResolveAddress(page, encoded);
  VELA_CHECK(indexer::ResolveAddress(page, reference).find('#') == std::string::npos);
  if (address.empty()) return;
  VELA_CHECK(!page.starts_with('/') || !address.starts_with("//"));
  VELA_CHECK(indexer::ResolveAddress(page, address) == address);
  CheckStored(address);
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view reference = Text(data, size);
  const std::string base = BaseOf(TakeLine(reference));
  const std::string_view path = TakeLine(reference);
  CheckPageAddress(base, path);
  CheckReference(indexer::PageAddress(base, path), reference);
  return 0;
}
