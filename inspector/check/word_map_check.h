// word_map_check.h: the check of the word map (format/word_map.h), with the dictionary that points
// into it and the page text that it points into.
#pragma once

#include "inspector/check/check_input.h"
#include "inspector/check/page_text_check.h"

namespace vela::inspector {

void CheckWordMap(const CheckInput& input, const TextStarts& texts);

// Where a record of a list of pages is wrong: its page, its place in the page text, its score. For
// lists of other files, too.
class RecordCheck {
 public:
  // `hasBlocks`: each record names a block of the page's text. Several words side by side need not
  // share one.
  RecordCheck(const CheckInput& input, const TextStarts& texts, std::string_view file,
              bool hasBlocks)
      : input_(input), texts_(texts), file_(file), hasBlocks_(hasBlocks) {}

  // Checks the records, which begin at byte `at` of the file, of the word or words `name`. False
  // when their pages do not ascend, or one is none.
  bool Check(const WordList& list, uint64_t at, std::string_view name) const;

 private:
  bool CheckPlace(const WordMapRecord& record, Place place, std::string_view name) const;
  void CheckScore(const WordMapRecord& record, Place place, std::string_view name) const;

  const CheckInput& input_;
  const TextStarts& texts_;
  std::string_view file_;
  bool hasBlocks_;
};

}  // namespace vela::inspector
