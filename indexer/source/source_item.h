// source_item.h: what a source of pages offers, before it is read.
#pragma once

#include <string>

#include "format/page_info.h"

namespace vela::indexer {

struct SourceItem {
  // What messages call it. Of a folder: from there on, "/" between the names, as the file system
  // has it.
  std::string path;
  std::string address;  // made by PageAddress
  FileType type = FileType::kHtml;
  std::string file = {};       // like `path`, links resolved; empty where that is the same
  bool isXml = false;          // of kHtml: web servers send it as XML
  std::string mediaType = {};  // that its server gives, in lower case; empty for files
};

}  // namespace vela::indexer
