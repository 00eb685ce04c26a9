// index_files.h: the set of index files that a search request uses.
#pragma once

#include <cstdint>

#include "index/load_status.h"
#include "index/lookup_file.h"
#include "index/page_info.h"
#include "index/page_sections.h"
#include "index/recommended.h"
#include "index/spelling.h"
#include "index/synonyms.h"
#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

// Each file is open, and its bytes valid, from OpenIndexFiles until it is closed or released.
struct IndexFiles {
  LookupFile lookup;  // closed where there is none to use
  FileImage pageData;
  RecommendedTies recommended;  // only with Recommended 1
  PageTable pages;
  FileImage pageText;  // only with DisplayContext, AllowExactPhrase or CutRuns 1
  FileImage wordMap;
  SpellingTable spelling;  // only with Spelling 1
  SectionsFile sections;   // only with SectionLinks 1; closed where there is none to use
  SynonymFile synonyms;    // only with Synonyms above 0; closed where there is none to use
};

// In the order in which they are opened, behind the lookup file.
enum class IndexFile : uint8_t {
  kPageData,
  kRecommended,
  kPageInfo,
  kPageText,
  kWordMap,
  kSpelling,
};

struct OpenResult {
  LoadStatus status = LoadStatus::kOk;
  IndexFile file = IndexFile::kPageData;  // the one at fault, when not kOk
};

// Opens the files in order and checks them, up to the first that is missing or wrong.
[[nodiscard]] OpenResult OpenIndexFiles(IndexFiles& files, const IndexDirectory& directory,
                                        const Settings& settings);

void CloseIndexFiles(IndexFiles& files);

}  // namespace vela
