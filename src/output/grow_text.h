// grow_text.h: the growable text behind the output sections and the results.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <string_view>

namespace vela {

// One write keeps at most this many bytes, formatted or raw; the rest is cut.
inline constexpr int32_t kFormattedLimit = 10239;

// Owns `text`, NUL-terminated, or null before TryCreate and after a release. Move-only.
// `length` counts the bytes that were asked to be appended, so that a write which was cut at
// kFormattedLimit still counts in full; it decides about growth only, the text ends at its NUL.
class GrowText {
 public:
  GrowText() = default;
  GrowText(const GrowText&) = delete;
  GrowText& operator=(const GrowText&) = delete;
  GrowText(GrowText&& other) noexcept;
  GrowText& operator=(GrowText&& other) noexcept;
  ~GrowText();

  // An empty text with room for `capacity` bytes (at least 1); false when memory is out.
  [[nodiscard]] bool TryCreate(int32_t capacity);

  // Formats and appends. The full length of the formatted text, or -1 when formatting or growing
  // failed or there is no text; then nothing was appended. Grows when the new length reaches the
  // capacity: to one and a half of it, or to what is needed where that is more.
  [[gnu::format(printf, 2, 3)]] int32_t Appendf(const char* format, ...);
  int32_t AppendFormatted(const char* format, va_list arguments);

  // Appends the text as it stands, otherwise as Appendf does with "%s".
  int32_t AppendRaw(std::string_view text);

  void Clear();  // empties the text, keeps the capacity

  std::string_view view() const { return {text_, textLength_}; }
  bool exists() const { return text_ != nullptr; }
  int32_t capacity() const { return capacity_; }
  int32_t length() const { return length_; }

 private:
  // Appends what is kept of a write of `asked` bytes; `asked`, or -1 when growing failed.
  int32_t Put(std::string_view kept, int32_t asked);

  char* text_ = nullptr;
  size_t textLength_ = 0;  // bytes really there
  int32_t capacity_ = 0;
  int32_t length_ = 0;
};

}  // namespace vela
