// page_tokens.h: one page becomes tokens for the page text and postings for the word map.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "indexer/collect/postings.h"
#include "indexer/collect/sign_entries.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/extract/page.h"
#include "indexer/words/word_cut.h"
#include "indexer/words/word_forms.h"

namespace vela::indexer {

// One token of the page text. Until the dictionary's order is known signs have the number that
// SignEntries gave, and a word has kWordBase plus its number in the vocabulary.
constexpr uint32_t kWordBase = kSignNumberLimit;
struct PageToken {
  uint32_t number = 0;
  uint8_t variant = 0;
};

// How long a page is, and where its tokens begin.
struct PageLengths {
  uint64_t firstToken = 0;  // counted from the start of the page text
  uint32_t bodyWords = 0;
  uint32_t titleWords = 0;
};

// The tokens and words of one page; kept from page to page for its memory.
struct PageTokens {
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
  SignGap gap;
};

// The texts of a page that its words are cut from.
struct PageTexts {
  const PageContent& content;
  std::string_view title;  // the one shown for the page
  std::string_view addressText;
};

// What the words and signs of all pages join.
struct SiteWords {
  WordForms& forms;  // gives a word the form of the dictionary
  Vocabulary& vocabulary;
  SignEntries& signs;
};

// Cuts the page of that number and fills `out`.
void CutPage(const PageTexts& page, uint32_t pageNumber, const SiteWords& site, PageTokens& out);

}  // namespace vela::indexer
