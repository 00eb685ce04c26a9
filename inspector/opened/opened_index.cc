#include "inspector/opened/opened_index.h"

#include <sys/stat.h>

#include <algorithm>

#include "format/dictionary.h"
#include "format/page_data.h"
#include "format/page_text.h"
#include "format/settings_file.h"
#include "format/word_map.h"
#include "search/lookup.h"

namespace vela::inspector {

void OpenIndex(OpenedIndex& index, std::string_view path) {
  OpenIndexDirectory(index.directory, path);
  if (index.settingsFile.Open(index.directory, kSettingsFileName, false)) {
    index.settingsStatus = ReadSettings(index.settings, index.settingsFile.bytes());
  }
  // A file that is not there stays without bytes; the checks say so.
  static_cast<void>(index.pageData.Open(index.directory, kPageDataFileName, false));
  static_cast<void>(index.pageText.Open(index.directory, kPageTextFileName, false));
  static_cast<void>(index.wordMap.Open(index.directory, kWordMapFileName, false));
  if (index.settingsStatus == SettingsStatus::kCannotOpen) return;
  index.pagesStatus = LoadPageInfo(index.pages, index.directory, index.settings, index.noLookup);
  if (index.dictionaryFile.Open(index.directory, kDictionaryFileName, false)) {
    index.dictionaryResult =
        index.dictionary.Load(index.dictionaryFile.bytes(), index.settings, index.noLookup);
  }
}

uint32_t PageCount(const OpenedIndex& index) {
  if (index.pagesStatus != LoadStatus::kOk) return 0;
  return static_cast<uint32_t>(std::max(index.pages.pageCount, 0));
}

uint32_t WordCount(const OpenedIndex& index) {
  if (index.dictionaryResult.status != DictionaryStatus::kOk) return 0;
  return static_cast<uint32_t>(std::max(index.dictionary.size(), 0));
}

bool IsSearchedWord(const OpenedIndex& index, uint32_t word) {
  return word < WordCount(index) && static_cast<int64_t>(word) >= FirstSearchedWord(index.settings);
}

WordList ListOf(const OpenedIndex& index, uint32_t word) {
  WordList list;
  if (word >= WordCount(index)) return list;
  const int64_t offset = index.dictionary.EntryAt(static_cast<int32_t>(word)).offset;
  if (offset == kNoWordList ||
      ReadWordList(index.wordMap.bytes(), offset, list) != WordListStatus::kOk) {
    return {};
  }
  return list;
}

std::optional<WordMapRecord> RecordOf(const WordList& list, uint32_t page) {
  int32_t low = 0;
  for (int32_t high = list.size(); low < high;) {
    const int32_t middle = low + (high - low) / 2;
    if (RecordAt(list, middle).page < page) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (low == list.size() || RecordAt(list, low).page != page) return {};
  return RecordAt(list, low);
}

PageTexts TextsOf(const OpenedIndex& index, uint32_t page) {
  PageTexts texts;
  if (page >= PageCount(index)) return texts;
  if (!ReadPageData(index.pageData.bytes(), PageDataOffset(index.pages, page), texts)) return {};
  return texts;
}

uint64_t FileSize(const OpenedIndex& index, std::string_view name) {
  struct stat status = {};
  const bool isFile =
      fstatat(index.directory.descriptor, std::string(name).c_str(), &status, 0) == 0 &&
      S_ISREG(status.st_mode);
  return isFile ? static_cast<uint64_t>(status.st_size) : 0;
}

}  // namespace vela::inspector
