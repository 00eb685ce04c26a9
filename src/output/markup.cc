#include "output/markup.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "text/ascii.h"
#include "text/edit.h"

namespace vela {

namespace {

struct Reference {
  char character;
  std::string_view text;
};

// The ampersand goes first, so that the references put in later are not escaped again.
constexpr Reference kReferences[] = {
    {'&', "&#38;"}, {'<', "&#60;"}, {'>', "&#62;"}, {'"', "&#34;"}, {'\'', "&#39;"},
};

std::string_view ReferenceFor(char c) {
  for (const Reference& reference : kReferences) {
    if (reference.character == c) return reference.text;
  }
  return {};
}

}  // namespace

size_t HtmlEscape(char* text, size_t length, size_t capacity, char* scratch) {
  for (const Reference& reference : kReferences) {
    ReplaceAll(text, &length, capacity, scratch, {&reference.character, 1}, reference.text);
  }
  return length;
}

size_t EscapeRequestText(std::string_view text, char* out, size_t capacity) {
  size_t written = 0;
  for (char c : text) {
    const std::string_view reference = ReferenceFor(c);
    const std::string_view piece = reference.empty() ? std::string_view(&c, 1) : reference;
    if (written + piece.size() >= capacity) break;
    piece.copy(out + written, piece.size());
    written += piece.size();
  }
  if (capacity > 0) out[written] = '\0';
  return written;
}

size_t UrlEncode(std::string_view text, char* out, size_t capacity) {
  size_t written = 0;
  for (char c : text) {
    if (written + 1 >= capacity) break;
    if (IsAlphaNumeric(c) || c == '-' || c == '_') {
      out[written++] = c;
    } else if (c == ' ') {
      out[written++] = '+';
    } else {
      const auto byte = static_cast<unsigned char>(c);
      char code[4];
      const auto digits = static_cast<size_t>(snprintf(code, sizeof code, "%%%X", byte));
      const size_t kept = std::min(digits, capacity - 1 - written);
      memcpy(out + written, code, kept);
      written += kept;
      if (byte < 16) break;
    }
  }
  if (capacity > 0) out[written] = '\0';
  return written;
}

bool IsUnsafeInAddress(char c) {
  constexpr std::string_view kUnsafe = "\"'<>&\\";
  return IsControl(c) || kUnsafe.find(c) != kUnsafe.npos;
}

}  // namespace vela
