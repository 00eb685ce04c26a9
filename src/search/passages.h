// passages.h: the pieces of a page's text that answer a query (the setting Passages).
//
// The words of the query are looked for in the page text by their numbers. A piece is shown where
// most of them, the rare ones before the common, stand closest together, in running text rather
// than in lists, and from the beginning of a sentence where one is near.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "index/dictionary.h"
#include "search/ranking.h"
#include "search/term_search.h"
#include "settings/settings.h"

namespace vela {

// The dictionary words that stand for the words of a query, those they are joined with ("json.load"
// for "json") included. Of what a query asks for beyond its room it knows nothing.
class PassageWords {
 public:
  using Terms = uint32_t;  // one bit a word of the query, in its order
  static constexpr size_t kTermLimit = 16;

  // The terms must outlive this.
  void Collect(std::span<const SearchedTerm> terms, const Dictionary& dictionary,
               const Settings& settings);

  // Which words of the query the dictionary word stands for.
  Terms TermsOf(uint32_t word) const { return MayKnow(word) ? Find(word) : 0; }
  // False only when it stands for none.
  bool MayKnow(uint32_t word) const {
    return (filter_[word / 64 % kFilterWords] >> (word % 64) & 1) != 0;
  }
  // Those that are no part of a phrase, of which every occurrence answers the query.
  Terms singleTerms() const { return single_; }
  // How much a word of the query tells, from its rareness. At least 1.
  int32_t WeightOf(size_t term) const { return weights_[term]; }
  // Whether the number is that of a word that stands on most pages, and is no number.
  bool IsCommon(uint32_t word) const {
    return word - firstWord_ < kCommonWords && (common_ >> (word - firstWord_) & 1) != 0;
  }

  // One dictionary word more for a term. Without room it is left out.
  void Add(uint32_t word, Terms terms);
  // The words that stand where the search found its terms on a page: one that none of the terms is
  // known by was found by another form of a term that is written at none of these places.
  void AddFound(std::span<const uint32_t> words, const Dictionary& dictionary);

 private:
  static constexpr size_t kSlots = 512;  // a power of two
  static constexpr size_t kWordLimit = 200;
  static constexpr size_t kFilterWords = 64;
  static constexpr uint32_t kCommonWords = 64;

  struct Slot {
    uint32_t word = 0;
    Terms terms = 0;  // 0: empty
  };
  static size_t SlotOf(uint32_t word) { return word * 0x9E37'79B1U >> 23; }
  Terms Find(uint32_t word) const;
  // The terms outside of phrases that stand between the joints of a joined word.
  Terms PartsIn(std::string_view text) const;
  void AddTerm(std::string_view word, const Dictionary& dictionary, int32_t from);
  void AddListed(std::string_view beginning, std::string_view word, Terms term,
                 const Dictionary& dictionary);

  std::array<Slot, kSlots> slots_ = {};
  std::array<uint64_t, kFilterWords> filter_ = {};
  std::array<int32_t, kTermLimit> weights_ = {};
  std::array<std::string_view, kTermLimit> texts_ = {};  // of terms outside of phrases
  size_t words_ = 0;
  size_t terms_ = 0;
  Terms single_ = 0;
  uint32_t firstWord_ = 0;
  uint64_t common_ = 0;  // one bit a word from firstWord_ on
};

// Whether a text holds a letter: one of ASCII, or any character beyond.
bool IsLetterText(std::string_view text);

struct PassagePiece {
  uint64_t start = 0;  // in the page text file
  int32_t tokens = 0;
};

// What is shown of a page.
struct PassagePlan {
  static constexpr size_t kPieceLimit = 2;
  std::array<PassagePiece, kPieceLimit> pieces = {};
  int32_t count = 0;
  bool isInText = false;  // words of the query stand in the page's running text; otherwise the
                          // piece is how that begins
  uint64_t answer = 0;    // in the page text file: the first of the words that stand closest
  PassageWords words;     // as they were met on this page
};

// What the plan is made from.
struct PassageInput {
  const Settings& settings;
  const Dictionary& dictionary;
  std::string_view pageText;
  const PassageWords& words;
};

// Reads a few thousand tokens of the page at most; where its running text has none of the words,
// all ahead of its title.
void PlanPassages(const PassageInput& input, const ResultEntry& entry, PassagePlan& plan);

}  // namespace vela
