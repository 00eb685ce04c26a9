#include "text/text_list.h"

#include <algorithm>

namespace vela {

bool TextList::TryAdd(std::string_view text) {
  const auto index = static_cast<size_t>(count_);
  if (used_ + text.size() + 1 > UINT32_MAX) return false;
  if (used_ + text.size() + 1 > bytes_.size() &&
      !bytes_.TryResize(std::max<size_t>(used_ + text.size() + 1, bytes_.size() * 2))) {
    return false;
  }
  if (index == starts_.size() && !starts_.TryResize(std::max<size_t>(16, index * 2))) return false;
  starts_[index] = static_cast<uint32_t>(used_);
  text.copy(bytes_.data() + used_, text.size());
  used_ += text.size();
  bytes_[used_++] = '\0';
  ++count_;
  return true;
}

}  // namespace vela
