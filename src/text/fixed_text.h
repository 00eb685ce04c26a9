// fixed_text.h: text of a fixed greatest size, cut silently by bytes.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace vela {

// N counts the terminator: at most N - 1 bytes are kept, the rest is dropped. Always terminated.
template <size_t N>
struct FixedText {
  static_assert(N > 0);
  static constexpr size_t kCapacity = N - 1;  // bytes that can be kept
  char bytes[N] = {};
};

// The text up to its terminator.
template <size_t N>
std::string_view View(const FixedText<N>& t) {
  return {t.bytes, strnlen(t.bytes, N - 1)};
}

template <size_t N>
bool IsEmpty(const FixedText<N>& t) {
  return t.bytes[0] == '\0';
}

template <size_t N>
void Clear(FixedText<N>& t) {
  t.bytes[0] = '\0';
}

template <size_t N>
void Append(FixedText<N>& t, std::string_view s) {
  const size_t used = View(t).size();
  const size_t added = s.copy(t.bytes + used, N - 1 - used);
  t.bytes[used + added] = '\0';
}

template <size_t N>
void Set(FixedText<N>& t, std::string_view s) {
  Clear(t);
  Append(t, s);
}

// Formats behind what is there, with the same cut.
template <size_t N>
[[gnu::format(printf, 2, 3)]] void Appendf(FixedText<N>& t, const char* format, ...) {
  const size_t used = View(t).size();
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(t.bytes + used, N - used, format, arguments);
  va_end(arguments);
}

}  // namespace vela
