// title_mass.h: what the words of every page's title say together (format/word_weight.h).
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "indexer/collect/postings.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/words/word_forms.h"

namespace vela::indexer {

class TitleMasses {
 public:
  // `stopWords`, in UTF-8 with blanks between them, say nothing, as queries pass over them.
  TitleMasses(size_t pageCount, std::string_view stopWords, const Vocabulary& vocabulary,
              WordForms& forms);
  // Adds a word of the page, of that mass, if it makes up the title.
  void Add(const Posting& posting, uint32_t mass);
  // A query may write the joined words of a title as they are, or their parts: the lesser of the
  // two. Of a title of stop words alone, what these would say. At most kTitleMassLimit.
  uint32_t Of(uint32_t page) const;

 private:
  struct Title {
    uint32_t ofWords = 0;
    uint32_t ofParts = 0;
    uint32_t ofStopWords = 0;
  };
  std::vector<Title> titles_;
  std::vector<bool> isStopWord_;  // by number in the vocabulary
};

}  // namespace vela::indexer
