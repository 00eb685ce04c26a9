// source_item.h: what a source of pages offers, before it is read.
#pragma once

#include <cstdint>
#include <string>

namespace vela::indexer {

// As the page information has it; extract/file_types reads each.
enum class FileType : uint8_t { kHtml = 0, kText = 1 };  // below FileTypePluginStart

struct SourceItem {
  std::string path;  // from the site's folder on, "/" between the names, as the file system has it
  std::string address;  // made by PageAddress
  FileType type = FileType::kHtml;
};

}  // namespace vela::indexer
