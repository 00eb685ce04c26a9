#include "indexer/words/word_breaks.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/uscript.h>
#include <unicode/utext.h>

#include "indexer/report/index_error.h"

namespace vela::indexer {

struct WordBreaks::Iterator {
  std::unique_ptr<icu::BreakIterator> words;
  UText text = UTEXT_INITIALIZER;

  ~Iterator() { utext_close(&text); }
};

WordBreaks::WordBreaks() = default;
WordBreaks::~WordBreaks() = default;
WordBreaks::WordBreaks(WordBreaks&&) noexcept = default;
WordBreaks& WordBreaks::operator=(WordBreaks&&) noexcept = default;

bool IsWrittenWithoutBlanks(char32_t c) {
  if (c < 0x0E00) return false;
  UErrorCode status = U_ZERO_ERROR;
  switch (uscript_getScript(static_cast<UChar32>(c), &status)) {
    case USCRIPT_HAN:
    case USCRIPT_HIRAGANA:
    case USCRIPT_KATAKANA:
    case USCRIPT_THAI:
    case USCRIPT_LAO:
    case USCRIPT_KHMER:
    case USCRIPT_MYANMAR:
      return true;
    default:
      return false;
  }
}

const std::vector<uint32_t>& WordBreaks::EndsOf(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  if (iterator_ == nullptr) {
    iterator_ = std::make_unique<Iterator>();
    iterator_->words.reset(icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
  }
  utext_openUTF8(&iterator_->text, text.data(), static_cast<int64_t>(text.size()), &status);
  if (U_SUCCESS(status)) iterator_->words->setText(&iterator_->text, status);
  if (U_FAILURE(status)) {
    throw IndexError(ExitStatus::kFailed,
                     std::string("ICU cannot tell words apart: ") + u_errorName(status) +
                         ". Its data (the package with libicudata) is damaged or incomplete.");
  }
  ends_.clear();
  icu::BreakIterator& words = *iterator_->words;
  words.first();
  for (int32_t end = words.next(); end != icu::BreakIterator::DONE; end = words.next()) {
    ends_.push_back(static_cast<uint32_t>(end));
  }
  return ends_;
}

}  // namespace vela::indexer
