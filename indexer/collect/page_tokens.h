// page_tokens.h: the words of a page get the numbers of the site: tokens for the page text and
// postings for the word map.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "indexer/collect/page_words.h"
#include "indexer/collect/postings.h"
#include "indexer/collect/sign_entries.h"
#include "indexer/collect/vocabulary.h"

namespace vela::indexer {

// One token of the page text. Until the dictionary's order is known signs have the number that
// SignEntries gave, and a word has kWordBase plus its number in the vocabulary.
constexpr uint32_t kWordBase = kSignNumberLimit;
struct PageToken {
  uint32_t number = 0;
  uint8_t variant = 0;
};

// Takes the tokens of a page, in their order and in portions.
using TokenSink = std::function<void(const std::vector<PageToken>&)>;

// How long a page is, and where its tokens begin.
struct PageLengths {
  uint64_t firstToken = 0;  // counted from the start of the page text
  uint32_t bodyWords = 0;
  uint32_t titleWords = 0;
  float linkShare = 0;  // of its text, what stands in links to other pages; 0 to 1
};

// The tokens and postings of one page; kept from page to page for its memory.
struct PageTokens {
  uint32_t tokenCount = 0;        // of the page, of its address, and the end of the page
  std::vector<Posting> postings;  // in order of the words' first appearance

  std::vector<PageToken> tokens;   // those not handed on yet
  std::vector<uint32_t> numbers;   // of the words, in the vocabulary
  std::vector<uint64_t> hashes;    // of their texts
  std::vector<PageToken> ofForms;  // beside the forms
  std::vector<PageToken> ofSigns;  // beside the signs
};

// What the words and signs of all pages join.
struct SiteWords {
  Vocabulary& vocabulary;
  SignEntries& signs;
  const TokenSink& sink;
};

// Joins the page of that number, higher than those before, to the site; all its tokens have then
// gone to the sink. `address` are the words of its address, which stand at the end.
void JoinWords(const PageWords& page, const PageWords& address, uint32_t pageNumber,
               const SiteWords& site, PageTokens& out);

}  // namespace vela::indexer
