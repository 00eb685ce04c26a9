// picture_parts.h: where a picture keeps what it says of itself.
//
// JPEG has it in segments before the picture, PNG and WebP in chunks, TIFF in its directories. What
// is cut short or damaged holds what stands before that. GIF, AVIF, HEIC and SVG are pictures of
// which nothing is taken.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vela::indexer {

// Views into the picture; the first of each kind.
struct PictureParts {
  std::string_view exif;                                             // a TIFF structure
  std::string_view xmp;                                              // XML
  std::string_view iptc;                                             // datasets of IIM
  std::vector<std::pair<std::string_view, std::string_view>> texts;  // of PNG: keyword and text
};

// False when `bytes` begin as none of these formats does.
[[nodiscard]] bool FindPictureParts(std::string_view bytes, PictureParts& parts);

}  // namespace vela::indexer
