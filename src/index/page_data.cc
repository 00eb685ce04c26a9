#include "index/page_data.h"

#include "format/page_data.h"
#include "settings/index_directory.h"

namespace vela {

namespace {

std::string_view LineAt(std::string_view file, uint64_t offset) {
  if (offset >= file.size()) return {};
  LineReader reader{file.substr(static_cast<size_t>(offset))};
  std::string_view line;
  return ReadLine(reader, kPageDataLineLimit, line) ? line : std::string_view();
}

bool TakeField(std::string_view& line, std::string_view& field) {
  const size_t end = line.find(kPageDataFieldEnd);
  if (end == line.npos) return false;
  field = line.substr(0, end);
  line.remove_prefix(end + 1);
  return true;
}

}  // namespace

uint64_t PageDataLineLength(std::string_view file, uint64_t offset) {
  return LineAt(file, offset).size();
}

bool ReadPageData(std::string_view file, uint64_t offset, PageTexts& texts) {
  std::string_view line = UpToNul(LineAt(file, offset));
  PageTexts read;
  texts = {};
  if (!TakeField(line, read.url) || !TakeField(line, read.title) ||
      !TakeField(line, read.description) || !TakeField(line, read.image)) {
    return false;
  }
  read.url = read.url.substr(0, kAddressLimit);
  read.image = read.image.substr(0, kAddressLimit);
  texts = read;
  return true;
}

bool ReadPageUrl(std::string_view file, uint64_t offset, std::string_view& url) {
  std::string_view line = UpToNul(LineAt(file, offset));
  url = {};
  std::string_view field;
  if (!TakeField(line, field) || field.empty()) return false;
  url = field.substr(0, kAddressLimit);
  return true;
}

}  // namespace vela
