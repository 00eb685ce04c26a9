#include "indexer/collect/page_words.h"

namespace vela::indexer {

size_t MemoryOf(const PageWords& words) {
  return sizeof words + words.words.capacity() * sizeof(WordOfPage) +
         words.forms.capacity() * sizeof(FormOfPage) +
         words.signs.capacity() * sizeof(SignsOfPage) + words.wordTexts.capacity() +
         words.formTexts.capacity() + words.signTexts.capacity() + words.tokens.capacity();
}

}  // namespace vela::indexer
