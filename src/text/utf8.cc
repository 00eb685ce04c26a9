#include "text/utf8.h"

namespace vela {

namespace {

// The length of the sequence that the byte leads; 0 when it leads none.
size_t SequenceLength(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

bool IsCharacter(char32_t c, size_t length) {
  if (length == 3) return c >= 0x800 && (c < 0xD800 || c > 0xDFFF);
  return length == 2 || (c >= 0x10000 && c <= 0x10FFFF);
}

}  // namespace

char32_t DecodeCharacter(std::string_view text, size_t at, size_t& length) {
  static constexpr unsigned char kLeadMask[] = {0, 0, 0x1F, 0x0F, 0x07};
  const auto lead = static_cast<unsigned char>(text[at]);
  length = 1;
  if (lead < 0x80) return lead;
  const size_t wanted = SequenceLength(lead);
  if (wanted == 0 || wanted > text.size() - at) return kReplacementCharacter;
  char32_t c = lead & kLeadMask[wanted];
  for (size_t i = 1; i < wanted; ++i) {
    const auto byte = static_cast<unsigned char>(text[at + i]);
    if ((byte & 0xC0) != 0x80) return kReplacementCharacter;
    c = c << 6 | (byte & 0x3Fu);
  }
  if (!IsCharacter(c, wanted)) return kReplacementCharacter;
  length = wanted;
  return c;
}

}  // namespace vela
