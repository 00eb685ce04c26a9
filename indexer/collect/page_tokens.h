// page_tokens.h: one page becomes tokens for the page text and postings for the word map.
// Tokens are handed on as the page is cut; what is kept grows with its different words only.
#pragma once

#include <csignal>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "indexer/collect/postings.h"
#include "indexer/collect/sign_entries.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/collect/word_places.h"
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

// Takes the tokens of a page, in order and in portions.
using TokenSink = std::function<void(const std::vector<PageToken>&)>;

// How long a page is, and where its tokens begin.
struct PageLengths {
  uint64_t firstToken = 0;  // counted from the start of the page text
  uint32_t bodyWords = 0;
  uint32_t titleWords = 0;
  float linkShare = 0;  // of its text, what stands in links to other pages; 0 to 1
};

// Where a run of text begins that an address leads to.
struct SectionStart {
  uint32_t token = 0;  // among the page's tokens
  uint32_t run = 0;    // of the body
};

// The tokens and words of one page; kept from page to page for its memory.
struct PageTokens {
  uint32_t tokenCount = 0;        // of body, title, description, address, and the page end
  std::vector<Posting> postings;  // in order of the words' first appearance
  uint32_t bodyWords = 0;         // words of the running text
  uint32_t titleWords = 0;        // different ones
  uint32_t bodyTokens = 0;        // of the running text
  std::vector<SectionStart> sections;

  // Where a token of the chunk went. A sign, and a word that could not be written, has no token.
  struct ChunkWord {
    uint32_t token = kNone32;  // its place among the page's tokens
    uint32_t place = 0;        // among the body's words
    uint32_t word = 0;         // its number in the vocabulary
  };
  // What is known of a word of the page beside its posting.
  struct PageWord {
    uint32_t lastToken = kNone32;  // the one counted last
    LastPlaces places;
    bool isTitleWord = false;  // written in the title
  };
  std::vector<PageWord> pageWords;    // beside `postings`
  std::vector<PlaceOfWord> places;    // the older ones kept, by the place of the word's posting
  std::vector<PageToken> tokens;      // those not handed on yet; tokenCount counts them
  std::vector<ChunkWord> chunkWords;  // beside the chunk's tokens
  ChunkTokens chunk;
  SignGap gap;
  bool afterPiece = false;  // the token written last is a piece of a script without blanks
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
  const TokenSink& sink;
  RunCut runs = RunCut::kWords;
  bool endsHeadings = false;  // with a full stop, where they end with no sign of their own
  const volatile std::sig_atomic_t* stop = nullptr;  // not owned; null: nobody can stop it
};

// Cuts the page of that number and fills `out`; all its tokens have gone to the sink. False: it was
// stopped, and what joined the site is of half a page.
[[nodiscard]] bool CutPage(const PageTexts& page, uint32_t pageNumber, const SiteWords& site,
                           PageTokens& out);

}  // namespace vela::indexer
