// word_forms.h: what becomes of a cut word before it enters the dictionary: folding, the character
// set of the index and stemming, through the search program's own stemmer.
#pragma once

#include <string>
#include <string_view>

#include "indexer/words/index_charset.h"
#include "text/fixed_text.h"
#include "text/stemmer.h"

namespace vela::indexer {

// Whether there is a stemmer of that number of text/stemmer.h for the character set.
bool HasStemmer(const IndexCharset& charset, int32_t algorithm);

class WordForms {
 public:
  // `stemming` is a number of text/stemmer.h, or -1 for none. Throws IndexError (usage) when there
  // is no such stemmer for the character set. `charset` must outlive the record.
  WordForms(const IndexCharset& charset, int32_t stemming);

  // The dictionary's word for a lower-cased one (at most kWordBytesLimit bytes): its stem, in the
  // character set. A word with characters that the set lacks is written with references, which no
  // query finds but a snippet shows; it is empty when that grows too long. The view holds as
  // long as `lower`, until the next call of Base or FoundBase.
  std::string_view Base(std::string_view lower);
  // The word as the page writes it, in the character set. The view holds until the next call.
  std::string_view Surface(std::string_view surface);
  // The dictionary's word for a form that only helps to find another; empty when the set lacks one
  // of its characters. The view holds as that of Base.
  std::string_view FoundBase(std::string_view lower);

 private:
  std::string_view Folded(std::string_view lower);
  std::string_view Stemmed(std::string_view word);

  const IndexCharset& charset_;
  bool stems_ = false;
  bool isTurkish_ = false;
  Stemmer stemmer_;
  FixedText<2086> stem_;
  std::string folded_;
  std::string base_;
  std::string surface_;
};

}  // namespace vela::indexer
