// fingerprint.h: whether two things are the same, told without keeping them: 128 bits (XXH3), alike
// on every machine. They find changes; they keep nobody from making two things alike on purpose.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace vela::indexer {

struct Fingerprint {
  uint64_t high = 0;
  uint64_t low = 0;
  auto operator<=>(const Fingerprint&) const = default;
};

Fingerprint FingerprintOf(std::string_view bytes);

// 32 digits and letters.
std::string TextOf(const Fingerprint& fingerprint);

// Of several values, in their order and each in its bounds.
class FingerprintOfAll {
 public:
  void Add(std::string_view text) {
    Add(uint64_t{text.size()});
    values_ += text;
  }
  void Add(uint64_t number) { values_ += std::to_string(number) + ";"; }
  Fingerprint Finish() const { return FingerprintOf(values_); }

 private:
  std::string values_;
};

}  // namespace vela::indexer
