// index_builder.h: writes a small index directory from a few readable lines.
//
// The builder counts what the settings must say about the other files (NumPages, PageInfoSize,
// NumKeywords and the like), so a test names only what it is about. Everything it derives can be
// set to something else or left out, and the finished files can be cut, patched or replaced, which
// is how the damaged directories of the tests are made. All files are little-endian.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vela::support {

// The language keys in the fixed order of the program, with the short texts the tests use.
struct LanguageText {
  const char* key;
  const char* text;
};
inline constexpr size_t kLanguageTextCount = 49;
extern const LanguageText kLanguageTexts[kLanguageTextCount];

// One record of the page-info file and one line of the page-data file.
struct PageFields {
  std::string url = {};
  std::string title = {};
  std::string description = {};
  std::string image = {};
  uint32_t fileSize = 0;  // bytes
  uint32_t dateTime = 0;  // seconds since 1970
  uint8_t boost = 0;      // tenths, 0 leaves the score alone
  uint8_t fileType = 0;
  std::string categoryBits = {};  // NumCatBytes bytes, stored as they stand
  std::string metaData = {};      // stored as it stands
};

// One occurrence record of the word map.
struct Occurrence {
  uint32_t page = 0;
  uint8_t score = 0;
  uint8_t flags = 0;
  uint64_t position = 0;  // in the page-text file, 40 bits: a byte offset, or
  bool isToken = false;   // the number of a token, times DictIDLen
};

// One token of the page-text file.
struct PageTextToken {
  uint32_t word = 0;
  uint8_t variant = 0;
};

class IndexBuilder {
 public:
  // A directory with no pages, no words, the language texts and no other setting.
  IndexBuilder();

  // Settings. `value` is written as it stands, so a text value brings its quotes along. A key that
  // was set before keeps its line; SettingsLine adds a raw line behind all keys.
  IndexBuilder& Set(std::string_view key, std::string_view value);
  IndexBuilder& Drop(std::string_view key);
  IndexBuilder& SettingsLine(std::string_view line);

  // Pages are numbered in the order of the calls.
  IndexBuilder& Page(const PageFields& page);

  // Dictionary words are numbered in the order of the calls, the reserved ones included.
  // A word without occurrences has no list; WordWithOffset names a list by hand, and
  // WordWithEmptyList points at a list of no records.
  IndexBuilder& Word(std::string_view word, const std::vector<Occurrence>& occurrences = {});
  IndexBuilder& WordWithOffset(std::string_view word, std::string_view offset);
  IndexBuilder& WordWithEmptyList(std::string_view word);
  // A variant spelling of the word added last.
  IndexBuilder& Variant(std::string_view variant);

  // Appends tokens to the page-text file; their width follows DictIDLen.
  IndexBuilder& Tokens(const std::vector<PageTextToken>& tokens);

  // The number of a dictionary word. Throws std::runtime_error when there is no such word.
  uint32_t WordNumber(std::string_view word) const;

  // One line of the spelling, the recommended and the autocomplete file. A recommended page is
  // given by its number; its line need not be there yet.
  IndexBuilder& Spelling(std::string_view key, const std::vector<int64_t>& words);
  IndexBuilder& Recommend(size_t page, std::string_view keywords);
  IndexBuilder& Suggest(std::string_view suggestion);

  // Replaces a whole file, or adds one that the builder does not know. The name may lie in a
  // folder.
  IndexBuilder& File(std::string_view name, std::string_view bytes);

  // Changes to the finished files, made in the order of the calls.
  IndexBuilder& Omit(std::string_view name);
  IndexBuilder& Directory(std::string_view name);  // a directory stands in the file's place
  IndexBuilder& Folder(std::string_view name);     // one more directory, empty
  IndexBuilder& Link(std::string_view name, std::string_view target);  // a symbolic link does
  IndexBuilder& Cut(std::string_view name, size_t length);
  IndexBuilder& Patch(std::string_view name, size_t offset, std::string_view bytes);
  IndexBuilder& AppendTo(std::string_view name, std::string_view bytes);

  // The number in force for a key, 0 when it is not set.
  int64_t Number(std::string_view key) const;

  // Name and bytes of every file. Throws std::runtime_error when a change names no such file.
  std::map<std::string, std::string> Files() const;

  // Writes the directory, which is created when it is missing.
  void WriteTo(const std::filesystem::path& directory) const;

 private:
  struct WordLine {
    std::string word;
    std::string offset;  // empty: computed from the list
    bool hasList = false;
    std::vector<Occurrence> occurrences;
    std::vector<std::string> variants;
  };
  struct RecommendedLine {
    size_t page = 0;
    std::string keywords;
  };
  struct Change {
    enum class Kind { kOmit, kDirectory, kLink, kCut, kPatch, kAppend } kind;
    std::string name;
    size_t at = 0;  // length of a cut, offset of a patch
    std::string bytes;
  };

  std::string SettingsFile(const std::map<std::string, std::string>& derived) const;
  bool IsSet(std::string_view key) const;

  std::vector<std::pair<std::string, std::string>> settings_;
  std::set<std::string, std::less<>> dropped_;
  std::vector<std::string> settingsLines_;
  std::vector<PageFields> pages_;
  std::vector<WordLine> words_;
  std::vector<PageTextToken> tokens_;
  std::vector<std::string> spellingLines_;
  std::vector<RecommendedLine> recommendedLines_;
  std::vector<std::string> suggestions_;
  std::vector<std::string> folders_;
  std::map<std::string, std::string> files_;
  std::vector<Change> changes_;
};

}  // namespace vela::support
