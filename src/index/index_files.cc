#include "index/index_files.h"

#include "format/index_directory.h"
#include "index/page_data.h"
#include "index/page_text.h"

namespace vela {

namespace {

LoadStatus OpenFile(FileImage& file, const IndexDirectory& directory, const char* name) {
  return file.Open(directory, name, false) ? LoadStatus::kOk : LoadStatus::kCannotOpen;
}

LoadStatus OpenPageText(FileImage& file, const IndexDirectory& directory) {
  const LoadStatus status = OpenFile(file, directory, kPageTextFileName);
  if (status != LoadStatus::kOk || !IsPageTextPlaceholder(file.bytes())) return status;
  file.Close();
  return LoadStatus::kPlaceholder;
}

LoadStatus OpenIndexFile(IndexFiles& files, IndexFile file, const IndexDirectory& directory,
                         const Settings& settings) {
  switch (file) {
    case IndexFile::kPageData:
      return OpenFile(files.pageData, directory, kPageDataFileName);
    case IndexFile::kRecommended:
      if (settings.Recommended != 1) break;
      return LoadRecommended(files.recommended, directory, settings);
    case IndexFile::kPageInfo:
      return LoadPageInfo(files.pages, directory, settings, files.lookup);
    case IndexFile::kPageText:
      if (!NeedsPageText(settings)) break;
      return OpenPageText(files.pageText, directory);
    case IndexFile::kWordMap:
      return OpenFile(files.wordMap, directory, kWordMapFileName);
    case IndexFile::kSpelling:
      if (settings.Spelling != 1) break;
      return LoadSpelling(files.spelling, directory, settings, files.lookup);
  }
  return LoadStatus::kOk;
}

}  // namespace

OpenResult OpenIndexFiles(IndexFiles& files, const IndexDirectory& directory,
                          const Settings& settings) {
  files.lookup.Open(directory, settings);
  for (IndexFile file : {IndexFile::kPageData, IndexFile::kRecommended, IndexFile::kPageInfo,
                         IndexFile::kPageText, IndexFile::kWordMap, IndexFile::kSpelling}) {
    const LoadStatus status = OpenIndexFile(files, file, directory, settings);
    if (status != LoadStatus::kOk) return {status, file};
  }
  if (settings.SectionLinks == 1) {
    files.sections.Open(directory, settings, files.pageText.bytes().size());
  }
  if (settings.Synonyms > 0) files.synonyms.Open(directory);
  return {};
}

void CloseIndexFiles(IndexFiles& files) {
  files.pageData.Close();
  files.pageText.Close();
  files.wordMap.Close();
  files.recommended = RecommendedTies();
  files.spelling.file.Close();
  files.spelling.lookup = nullptr;
  files.synonyms.Close();
  files.pages.file.Close();
  files.pages.image = {};
  files.pages.pageCount = 0;
  files.pages.starts.Release();
  files.lookup.Close();
  files.sections.Close();
}

}  // namespace vela
