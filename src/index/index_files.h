// index_files.h: the set of index files that a search request uses.
#pragma once

#include "index/page_info.h"
#include "index/recommended.h"
#include "index/spelling.h"
#include "output/response.h"
#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

inline constexpr char kWordMapFileName[] = "vela_wordmap.vdat";

// Each file is open, and its bytes valid, from OpenIndexFiles until it is closed or released.
struct IndexFiles {
  FileImage pageData;
  RecommendedTies recommended;  // only with Recommended 1
  PageTable pages;
  FileImage pageText;  // only with DisplayContext or AllowExactPhrase 1
  FileImage wordMap;
  SpellingTable spelling;  // only with Spelling 1
};

// Opens the files in order and checks them. False when one is missing or wrong: its message has
// been written, and the request must be ended.
[[nodiscard]] bool OpenIndexFiles(IndexFiles& files, const IndexDirectory& directory,
                                  const Settings& settings, Response& response);

void CloseIndexFiles(IndexFiles& files);

}  // namespace vela
