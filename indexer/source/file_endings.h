// file_endings.h: the endings of names by which files are known to be pages, and of which type.
#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "format/page_info.h"

namespace vela::indexer {

// What follows the last dot of a name, in lower case, for each FileType.
using FileEndings = std::array<std::vector<std::string>, kFileTypeCount>;

inline constexpr std::string_view kHtmlEndings[] = {"html", "htm", "xhtml", "xht", "shtml"};
// Of those, what web servers send as XML, whoever gave them.
inline constexpr std::string_view kXmlEndings[] = {"xhtml", "xht"};
inline constexpr std::string_view kTextEndings[] = {"txt", "text", "md"};

struct FileTypeEndings {
  FileType type;
  std::string_view key;  // of [site] in the configuration, where an owner gives others
  std::span<const std::string_view> endings;
};

inline constexpr FileTypeEndings kFileTypeEndings[] = {
    {FileType::kHtml, "html", kHtmlEndings},
    {FileType::kText, "text", kTextEndings},
};

constexpr bool EachTypeHasItsEndings() {
  for (size_t i = 0; i < std::size(kFileTypeEndings); ++i) {
    if (kFileTypeEndings[i].type != static_cast<FileType>(i)) return false;
  }
  return std::size(kFileTypeEndings) == kFileTypeCount;
}
static_assert(EachTypeHasItsEndings());

// Those that hold when the owner gives none.
inline FileEndings DefaultFileEndings() {
  FileEndings all;
  for (const auto& [type, key, endings] : kFileTypeEndings) {
    all[static_cast<size_t>(type)].assign(endings.begin(), endings.end());
  }
  return all;
}

}  // namespace vela::indexer
