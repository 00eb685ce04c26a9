// completions.h: the reader of the beginnings of words of suggestions (format/completions.h). The
// file is not trusted: what does not belong to the autocomplete file or reaches beyond a file is as
// if it were not there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "format/completions.h"
#include "settings/index_directory.h"

namespace vela {

class Completions {
 public:
  // Opens the file, and the autocomplete file that it belongs to. False when there is none to use.
  [[nodiscard]] bool Open(const IndexDirectory& directory);
  // The same over bytes in memory, which must outlive the reader.
  [[nodiscard]] bool Open(std::string_view bytes, std::string_view autocomplete);

  // How many suggestions are given that begin with what is typed, and how many of the others.
  static constexpr size_t kMostOfEach = 10;

  // Finds suggestions in which words begin with every word of `typed`, which is folded
  // (text/completion_fold.h). Those that begin with all of it come before others, each in the order
  // of the autocomplete file. They are as that file has them, and valid while this lives. Returns
  // how many.
  size_t Find(std::string_view typed, std::span<std::string_view, 2 * kMostOfEach> found) const;

 private:
  [[nodiscard]] bool Use(std::string_view bytes, std::string_view autocomplete);
  CompletionLine LineAt(uint64_t i) const;
  CompletionBeginning BeginningAt(uint64_t i) const;
  std::string_view TextFrom(const CompletionBeginning& beginning) const;
  // The beginnings that go on with the text: from the first of the pair up to the second.
  std::pair<uint64_t, uint64_t> RangeOf(std::string_view text) const;
  std::string_view SuggestionOf(const CompletionLine& line) const;
  bool HoldsAll(const CompletionLine& line, std::string_view typed) const;

  FileImage file_;
  FileImage autocompleteFile_;
  std::string_view autocomplete_;
  std::string_view lines_;
  std::string_view beginnings_;
  std::string_view texts_;
  uint64_t lineCount_ = 0;
  uint64_t beginningCount_ = 0;
};

}  // namespace vela
