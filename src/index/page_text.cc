#include "index/page_text.h"

#include <cstddef>

namespace vela {

bool IsPageTextPlaceholder(std::string_view file) {
  constexpr size_t kBytesRead = 6;
  char start[kBytesRead + 1] = {};
  file.substr(0, kBytesRead).copy(start, kBytesRead);
  return start[0] == 'T' && start[2] == 'h' && start[4] == 'i' && start[6] == 's';
}

}  // namespace vela
