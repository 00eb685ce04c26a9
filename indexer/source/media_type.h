// media_type.h: what a server says that it sends (Content-Type), and which pages that makes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "format/page_info.h"
#include "indexer/source/file_endings.h"

namespace vela::indexer {

struct MediaType {
  std::string name;     // "text/html", in lower case; empty when none is given
  std::string charset;  // in lower case; empty when none is given
};

// Reads the value of a Content-Type field: `text/html; charset="utf-8"`.
MediaType ReadMediaType(std::string_view field);

// The type of page that it is, if it is one that has endings. `path` ends as the address does,
// before any "?": where the server does not know what it sends (no type, or
// application/octet-stream), the ending of its name says it; so it does where it is a kind of text.
std::optional<FileType> PageType(std::string_view mediaType, std::string_view path,
                                 const FileEndings& endings);

// Whether browsers take a page of that type for XML.
bool IsXmlType(std::string_view mediaType);

// Whether it is what pages are made with and shown beside, such as pictures and styles, and not
// worth a line of the summary.
bool IsFurnitureType(std::string_view mediaType);

}  // namespace vela::indexer
