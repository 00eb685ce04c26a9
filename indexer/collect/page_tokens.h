// page_tokens.h: one page becomes tokens for the page text and postings for the word map.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "indexer/collect/postings.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/extract/page.h"
#include "indexer/words/word_cut.h"
#include "indexer/words/word_forms.h"

namespace vela::indexer {

// One token of the page text. Reserved numbers are final; a word has kWordBase plus its number in
// the vocabulary until the dictionary's order is known.
constexpr uint32_t kWordBase = 4096;
struct PageToken {
  uint32_t number = 0;
  uint8_t variant = 0;
};

// The words and tokens of one page; kept from page to page for its memory.
struct PageWords {
  std::vector<PageToken> tokens;  // body, title, description, address; a page end closes them
  std::vector<Posting> postings;  // in order of the words' first appearance
  uint32_t bodyWords = 0;         // words of the running text
  uint32_t titleWords = 0;        // different ones

  // A found form at its place, before the page's blocks are known.
  struct Occurrence {
    uint32_t word = 0;  // number in the vocabulary
    uint32_t token = 0;
    uint32_t place = 0;  // of its word among the body's words
    uint8_t zone = 0;    // one Zone bit, 0 for plain text
    bool inBody = false;
  };
  std::vector<Occurrence> occurrences;
  std::vector<uint32_t> lastTokens;  // beside `postings`: the token counted last
  std::vector<uint32_t> places;      // of the chunk's tokens among the body's words
  std::vector<uint32_t> written;     // of the chunk's tokens among the page's tokens
  ChunkTokens chunk;
};

// Cuts `page` and fills `words`; new words join the vocabulary in the form that `forms` gives them.
// `title` is the one shown for the page, `address` the text of its address.
void CutPage(const PageContent& page, const std::string& title, const std::string& address,
             uint32_t pageNumber, WordForms& forms, Vocabulary& vocabulary, PageWords& words);

}  // namespace vela::indexer
