// embedded_files.h: the files of the assets folder, as part of the program.
#pragma once

#include <span>
#include <string_view>

namespace vela::indexer {

struct EmbeddedFile {
  std::string_view name;  // without a directory: "vela_search.css", "english.vlang"
  std::string_view content;
};

// In the order of the names of the assets folder.
std::span<const EmbeddedFile> EmbeddedFiles();

// The file of that name, or null.
inline const EmbeddedFile* FindEmbeddedFile(std::string_view name) {
  for (const EmbeddedFile& file : EmbeddedFiles()) {
    if (file.name == name) return &file;
  }
  return nullptr;
}

}  // namespace vela::indexer
