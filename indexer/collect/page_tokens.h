// page_tokens.h: the words of a page get the numbers of the site: tokens for the page text and
// postings for the word map.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "format/page_text.h"
#include "indexer/collect/number_bytes.h"
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

// A stretch of a page's text, with its words and signs as the site numbers them. It refers to what
// holds only while it is taken.
struct TextStretch {
  // As PageWords has them, among the forms and signs of this stretch.
  std::string_view tokens = {};
  uint32_t tokenCount = 0;
  std::span<const PageToken> forms = {};
  std::span<const PageToken> signs = {};
  uint32_t end = kNone32;  // the token behind them: kRunEndWord, kPageEndWord, or kNone32 for none
};

// Takes the stretches of the pages, in their order.
using TextSink = std::function<void(const TextStretch&)>;

// Calls `use(token)` for every token of the stretch, the one behind them included. `forms` and
// `signs` stand for those of the stretch, and may be of another type; `ofNumber(number)` is the
// token of a reserved number.
template <typename Token, typename OfNumber, typename Use>
void ForEachToken(const TextStretch& stretch, std::span<const Token> forms,
                  std::span<const Token> signs, OfNumber ofNumber, Use use) {
  for (std::string_view rest = stretch.tokens; !rest.empty();) {
    const uint32_t token = TakeNumber(rest);
    if (token == kRunEndToken) {
      use(ofNumber(kRunEndWord));
    } else {
      use(token % 2 != 0 ? signs[token / 2] : forms[token / 2 - 1]);
    }
  }
  if (stretch.end != kNone32) use(ofNumber(stretch.end));
}

// The same for the tokens as they are.
template <typename Use>
void ForEachToken(const TextStretch& stretch, Use use) {
  ForEachToken(
      stretch, stretch.forms, stretch.signs,
      [](uint32_t number) {
        return PageToken{number, 0};
      },
      use);
}

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

  std::vector<uint32_t> numbers;   // of the words, in the vocabulary
  std::vector<uint64_t> hashes;    // of their texts
  std::vector<PageToken> ofForms;  // beside the forms
  std::vector<PageToken> ofSigns;  // beside the signs
};

// What the words and signs of all pages join.
struct SiteWords {
  Vocabulary& vocabulary;
  SignEntries& signs;
  const TextSink& sink;
};

// Joins the page of that number, higher than those before, to the site; its text has then gone to
// the sink. Its words stand in `stretches`, one behind the other, each a run of its own where it is
// not empty: those of the page itself come first, those of its address last.
void JoinWords(std::initializer_list<const PageWords*> stretches, uint32_t pageNumber,
               const SiteWords& site, PageTokens& out);

}  // namespace vela::indexer
