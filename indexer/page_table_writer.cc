#include "indexer/page_table_writer.h"

#include <algorithm>
#include <limits>

#include "text/lower.h"

namespace vela::indexer {

namespace {

// With an address of 2083 bytes and the four "|" a line stays below the 7260 bytes that the search
// program reads.
constexpr size_t kMaxTitleBytes = 1000;
constexpr size_t kMaxDescriptionBytes = 2000;
constexpr size_t kRecordBytes = 17;
constexpr std::string_view kEllipsis = "\u2026";

std::string_view Escaped(char c) {
  switch (c) {
    case '&':
      return "&#38;";
    case '<':
      return "&#60;";
    case '>':
      return "&#62;";
    case '"':
      return "&#34;";
    case '\'':
      return "&#39;";
    case '|':
      return "&#124;";
    default:
      return {};
  }
}

}  // namespace

std::string StoredText(std::string_view text, size_t maxBytes) {
  std::string out;
  size_t wordEnd = 0;  // of the last whole word that leaves room for the ellipsis
  size_t characterEnd = 0;
  for (size_t i = 0; i < text.size();) {
    const size_t length =
        std::min(Utf8Length(static_cast<unsigned char>(text[i])), text.size() - i);
    const bool blank = static_cast<unsigned char>(text[i]) <= 0x20;
    if (out.size() + kEllipsis.size() <= maxBytes) {
      characterEnd = out.size();
      if (blank) wordEnd = out.size();
    }
    const std::string_view escaped = Escaped(text[i]);
    if (blank) {
      out += ' ';
    } else if (!escaped.empty()) {
      out += escaped;
    } else {
      out += text.substr(i, length);
    }
    i += length;
    if (out.size() > maxBytes) {
      out.resize(wordEnd > maxBytes / 2 ? wordEnd : characterEnd);
      out += kEllipsis;
      return out;
    }
  }
  return out;
}

PageTableWriter::PageTableWriter(const std::filesystem::path& info,
                                 const std::filesystem::path& data)
    : info_(info), data_(data) {}

void PageTableWriter::AddPage(const PageEntry& page) {
  constexpr auto kMaxSize = std::numeric_limits<uint32_t>::max();
  constexpr auto kMaxTime = std::numeric_limits<int32_t>::max();
  info_.WriteNumber(kRecordBytes, 2);
  info_.WriteNumber(data_.size(), 5);
  info_.WriteNumber(std::min<uint64_t>(page.fileSize, kMaxSize), 4);
  const bool dated = page.modifiedTime > 0 && page.modifiedTime <= kMaxTime;
  info_.WriteNumber(dated ? static_cast<uint64_t>(page.modifiedTime) : 0, 4);
  info_.WriteNumber(0, 1);
  info_.WriteNumber(static_cast<uint64_t>(page.fileType), 1);

  data_.Write(page.address);
  data_.Write("|");
  data_.Write(StoredText(page.title, kMaxTitleBytes));
  data_.Write("|");
  data_.Write(StoredText(page.description, kMaxDescriptionBytes));
  data_.Write("||\n");
}

PageTableWriter::Sizes PageTableWriter::Finish() {
  Sizes sizes;
  sizes.infoBytes = info_.Finish();
  sizes.dataBytes = data_.Finish();
  return sizes;
}

}  // namespace vela::indexer
