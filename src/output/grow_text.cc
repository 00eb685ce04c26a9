#include "output/grow_text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace vela {

GrowText::GrowText(GrowText&& other) noexcept { *this = std::move(other); }

GrowText& GrowText::operator=(GrowText&& other) noexcept {
  if (this != &other) {
    free(text_);
    text_ = std::exchange(other.text_, nullptr);
    textLength_ = std::exchange(other.textLength_, 0);
    capacity_ = std::exchange(other.capacity_, 0);
    length_ = std::exchange(other.length_, 0);
  }
  return *this;
}

GrowText::~GrowText() { free(text_); }

bool GrowText::TryCreate(int32_t capacity) {
  *this = GrowText();
  text_ = static_cast<char*>(malloc(static_cast<size_t>(std::max(capacity, 1))));
  if (text_ == nullptr) return false;
  text_[0] = '\0';
  capacity_ = std::max(capacity, 1);
  return true;
}

int32_t GrowText::Appendf(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int32_t result = AppendFormatted(format, arguments);
  va_end(arguments);
  return result;
}

int32_t GrowText::AppendFormatted(const char* format, va_list arguments) {
  if (format == nullptr || text_ == nullptr) return -1;
  char scratch[kFormattedLimit + 1];
  const int32_t formatted = vsnprintf(scratch, sizeof scratch, format, arguments);
  if (formatted < 0) return -1;
  return Put({scratch, static_cast<size_t>(std::min(formatted, kFormattedLimit))}, formatted);
}

int32_t GrowText::AppendRaw(std::string_view text) {
  if (text_ == nullptr || text.size() > INT32_MAX) return -1;
  return Put(text.substr(0, kFormattedLimit), static_cast<int32_t>(text.size()));
}

int32_t GrowText::Put(std::string_view kept, int32_t asked) {
  const int64_t needed = int64_t{length_} + asked;
  if (needed >= capacity_) {
    int64_t grown = int64_t{capacity_} + capacity_ / 2;
    if (needed > grown) grown = needed + 1;
    if (grown > INT32_MAX) return -1;
    // The terminator gets a byte of its own: the text may fill the capacity.
    char* text = static_cast<char*>(realloc(text_, static_cast<size_t>(grown) + 1));
    if (text == nullptr) return -1;
    text_ = text;
    capacity_ = static_cast<int32_t>(grown);
  }
  kept.copy(text_ + textLength_, kept.size());
  textLength_ += kept.size();
  text_[textLength_] = '\0';
  length_ = static_cast<int32_t>(needed);
  return asked;
}

void GrowText::Clear() {
  if (text_ != nullptr) text_[0] = '\0';
  textLength_ = 0;
  length_ = 0;
}

}  // namespace vela
