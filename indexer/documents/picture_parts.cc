#include "indexer/documents/picture_parts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "index/byte_cursor.h"

namespace vela::indexer {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kExifHead = "Exif\0\0"sv;

uint64_t TakeBigEndian(ByteCursor& cursor, size_t width) {
  uint64_t value = 0;
  for (const char c : Take(cursor, width)) value = value << 8 | static_cast<unsigned char>(c);
  return value;
}

void Keep(std::string_view found, std::string_view& part) {
  if (part.empty()) part = found;
}

std::string_view WithoutHead(std::string_view exif) {
  return exif.starts_with(kExifHead) ? exif.substr(kExifHead.size()) : exif;
}

// The text up to a NUL, which is passed; bad without one.
std::string_view TakeToNul(ByteCursor& cursor) {
  const size_t end = cursor.rest.find('\0');
  if (end == cursor.rest.npos) cursor.bad = true;
  const std::string_view taken = Take(cursor, end == cursor.rest.npos ? 0 : end);
  Take(cursor, 1);
  return taken;
}

// The resource of IPTC among those of a segment: "8BIM", a number in 2 bytes, a name with its
// length in one, the length of the data in 4, the data; name and data end at even places.
std::string_view IptcOf(std::string_view resources) {
  constexpr uint64_t kIptc = 0x0404;
  ByteCursor cursor{resources};
  while (!cursor.bad && Take(cursor, 4) == "8BIM") {
    const uint64_t number = TakeBigEndian(cursor, 2);
    const size_t name = TakeBigEndian(cursor, 1);
    Take(cursor, name + (name + 1) % 2);
    const size_t size = TakeBigEndian(cursor, 4);
    const std::string_view data = Take(cursor, size);
    if (number == kIptc) return data;
    if (size % 2 == 1) Take(cursor, 1);
  }
  return {};
}

// Segments: 0xFF, the marker, the length in 2 bytes with these, the data.
void ReadJpeg(std::string_view bytes, PictureParts& parts) {
  constexpr uint64_t kPicture = 0xDA;
  constexpr uint64_t kEnd = 0xD9;
  constexpr uint64_t kExifOrXmp = 0xE1;
  constexpr uint64_t kResources = 0xED;
  constexpr std::string_view kXmpHead = "http://ns.adobe.com/xap/1.0/\0"sv;
  constexpr std::string_view kResourcesHead = "Photoshop 3.0\0"sv;
  ByteCursor cursor{bytes.substr(2)};
  while (!cursor.bad) {
    if (TakeBigEndian(cursor, 1) != 0xFF) return;
    uint64_t marker = 0xFF;
    while (marker == 0xFF && !cursor.bad) marker = TakeBigEndian(cursor, 1);
    if (marker == kPicture || marker == kEnd) return;
    const uint64_t length = TakeBigEndian(cursor, 2);
    if (length < 2) return;
    const std::string_view data = Take(cursor, length - 2);
    if (marker == kExifOrXmp && data.starts_with(kExifHead)) Keep(WithoutHead(data), parts.exif);
    if (marker == kExifOrXmp && data.starts_with(kXmpHead)) {
      Keep(data.substr(kXmpHead.size()), parts.xmp);
    }
    if (marker == kResources && data.starts_with(kResourcesHead)) {
      Keep(IptcOf(data.substr(kResourcesHead.size())), parts.iptc);
    }
  }
}

// What iTXt holds: keyword, NUL, whether it is packed, how, language, NUL, keyword, NUL, text.
void ReadPngText(std::string_view data, PictureParts& parts) {
  ByteCursor cursor{data};
  const std::string_view keyword = TakeToNul(cursor);
  const bool isPacked = TakeBigEndian(cursor, 1) != 0;
  Take(cursor, 1);
  TakeToNul(cursor);
  TakeToNul(cursor);
  if (cursor.bad || isPacked) return;
  if (keyword == "XML:com.adobe.xmp") {
    Keep(cursor.rest, parts.xmp);
  } else {
    parts.texts.emplace_back(keyword, cursor.rest);
  }
}

// Chunks: the length of the data in 4 bytes, a type of 4, the data, 4 bytes to check it by.
void ReadPng(std::string_view bytes, PictureParts& parts) {
  constexpr size_t kTextLimit = 100;  // texts
  ByteCursor cursor{bytes.substr(8)};
  while (!cursor.bad && parts.texts.size() < kTextLimit) {
    const size_t size = TakeBigEndian(cursor, 4);
    const std::string_view type = Take(cursor, 4);
    const std::string_view data = Take(cursor, size);
    Take(cursor, 4);
    if (type == "eXIf") Keep(WithoutHead(data), parts.exif);
    if (type == "iTXt") ReadPngText(data, parts);
    if (type == "tEXt" && data.find('\0') != data.npos) {
      const size_t keyword = data.find('\0');
      parts.texts.emplace_back(data.substr(0, keyword), data.substr(keyword + 1));
    }
    if (type == "IEND") return;
  }
}

// Chunks: a type of 4 bytes, the length of the data in 4, the data, which ends at an even place.
void ReadWebp(std::string_view bytes, PictureParts& parts) {
  ByteCursor cursor{bytes.substr(12)};
  while (!cursor.bad && !cursor.rest.empty()) {
    const std::string_view type = Take(cursor, 4);
    const auto size = static_cast<size_t>(TakeLittleEndian(cursor, 4));
    const std::string_view data = Take(cursor, size);
    if (size % 2 == 1) Take(cursor, 1);
    if (type == "EXIF") Keep(WithoutHead(data), parts.exif);
    if (type == "XMP ") Keep(data, parts.xmp);
  }
}

// GIF, AVIF, HEIC and SVG.
bool IsSilentFormat(std::string_view bytes) {
  constexpr size_t kHead = 1024;  // of SVG: declarations and comments stand before its element
  constexpr std::array kBrands = {"avif"sv, "avis"sv, "heic"sv, "heix"sv, "mif1"sv};
  if (bytes.starts_with("GIF87a"sv) || bytes.starts_with("GIF89a"sv)) return true;
  if (bytes.size() >= 12 && bytes.substr(4, 4) == "ftyp"sv) {
    return std::ranges::find(kBrands, bytes.substr(8, 4)) != kBrands.end();
  }
  const size_t start = bytes.find_first_not_of("\xEF\xBB\xBF \t\r\n"sv);
  return start < kHead && bytes[start] == '<' &&
         bytes.substr(0, kHead).find("<svg"sv) != bytes.npos;
}

}  // namespace

bool FindPictureParts(std::string_view bytes, PictureParts& parts) {
  if (bytes.starts_with("\xFF\xD8\xFF"sv)) {
    ReadJpeg(bytes, parts);
  } else if (bytes.starts_with("\x89PNG\r\n\x1A\n"sv)) {
    ReadPng(bytes, parts);
  } else if (bytes.starts_with("RIFF"sv) && bytes.substr(0, 12).ends_with("WEBP"sv)) {
    ReadWebp(bytes, parts);
  } else if (bytes.starts_with("II*\0"sv) || bytes.starts_with("MM\0*"sv)) {
    parts.exif = bytes;
  } else {
    return IsSilentFormat(bytes);
  }
  return true;
}

}  // namespace vela::indexer
