// word_breaks.h: the words of scripts that are written without blanks between them: Chinese,
// Japanese, Thai, Lao, Khmer and Burmese, by ICU's dictionaries.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace vela::indexer {

bool IsWrittenWithoutBlanks(char32_t c);

// Loads the dictionaries when it is first asked.
class WordBreaks {
 public:
  WordBreaks();
  ~WordBreaks();
  WordBreaks(WordBreaks&&) noexcept;
  WordBreaks& operator=(WordBreaks&&) noexcept;

  // Where the words of `text` (UTF-8, without blanks) end: bytes from its start, ascending, the
  // last being its length. No character is cut. Holds until the next call.
  const std::vector<uint32_t>& EndsOf(std::string_view text);

 private:
  struct Iterator;
  std::unique_ptr<Iterator> iterator_;
  std::vector<uint32_t> ends_;
};

}  // namespace vela::indexer
