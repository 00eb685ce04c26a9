// opened_index.h: an index directory with its files, as the checks and the listings read it.
//
// Nothing is taken on trust: where the search program would use the lookup file instead of a pass
// over another, there is a pass here. A file that cannot be opened has no bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "index/dictionary.h"
#include "index/index_files.h"
#include "index/lookup_file.h"
#include "index/page_data.h"
#include "index/page_info.h"
#include "index/word_map.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "settings/settings_file.h"

namespace vela::inspector {

struct OpenedIndex {
  IndexDirectory directory;
  SettingsStatus settingsStatus = SettingsStatus::kCannotOpen;
  Settings settings;
  FileImage settingsFile;
  FileImage dictionaryFile;
  FileImage pageData;
  FileImage pageText;
  FileImage wordMap;
  LookupFile noLookup;  // closed
  PageTable pages;
  LoadStatus pagesStatus = LoadStatus::kCannotOpen;
  Dictionary dictionary;
  DictionaryResult dictionaryResult = {DictionaryStatus::kCannotOpen};
};

// Opens the directory. Of what cannot be read the status says so and the record is at rest.
void OpenIndex(OpenedIndex& index, std::string_view path);

// 0 where the page info cannot be used.
uint32_t PageCount(const OpenedIndex& index);
// 0 where the dictionary cannot be used.
uint32_t WordCount(const OpenedIndex& index);

// Whether the number is that of a word of pages, not one of the reserved entries.
bool IsSearchedWord(const OpenedIndex& index, uint32_t word);

// The list of a word; empty where it has none or it does not lie in the word map.
WordList ListOf(const OpenedIndex& index, uint32_t word);

// The record of the page in a list by page; none where the page does not have the word.
std::optional<WordMapRecord> RecordOf(const WordList& list, uint32_t page);

// The texts of a page; empty where its line is none.
PageTexts TextsOf(const OpenedIndex& index, uint32_t page);

// Bytes of a file of the directory; 0 where there is none.
uint64_t FileSize(const OpenedIndex& index, std::string_view name);

}  // namespace vela::inspector
