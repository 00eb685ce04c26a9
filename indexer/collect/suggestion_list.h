// suggestion_list.h: what the search box completes: the titles, headings and frequent phrases of
// the site.
//
// It is collected in bounded memory, about 20 MB at most: of the texts met, those that come up
// most often stay.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "indexer/collect/number_table.h"
#include "indexer/collect/running_text.h"
#include "indexer/collect/text_store.h"
#include "indexer/extract/page.h"

namespace vela::indexer {

// What one page offers.
struct PageSuggestions {
  struct Text {
    std::string text;        // 1 to kSuggestedBytesLimit bytes
    bool isHeading = false;  // else a name that a list defines
  };
  std::string title;  // at most kTitleBytesLimit bytes
  std::vector<Text> texts;
  RunningText running;  // made by PageCutter
};

constexpr size_t kTitleBytesLimit = 300;      // of which what all titles end in is taken off
constexpr size_t kSuggestedBytesLimit = 100;  // more is no help in a list below a search box

// What the page offers besides its running text; `title` is the one shown for it.
PageSuggestions SuggestionsOf(const PageContent& page, const std::string& title);

class SuggestionList {
 public:
  // Takes what one page offers.
  void AddPage(const PageSuggestions& page);

  // Bytes that it takes, nearly.
  size_t memory() const;

  // The texts in the order in which they are to be offered: titles, then headings, then names (what
  // lists define), then phrases; of each kind those that more pages offer first, among equals the
  // shorter ones, then by their bytes. No two differ in case alone. Numbers of parts, signs that
  // link to a heading and what many titles end in ("... | Ashdale Library") are taken off; a phrase
  // that begins or ends with one of `stopWords`, blanks between them, or that is on most pages is
  // left out. Plain text on one line, without double quotes and backslashes, which the search
  // program would put into a script. Ends the collection.
  std::vector<std::string> Take(std::string_view stopWords);

 private:
  // In the order in which they are offered.
  enum class Kind : uint8_t { kTitle, kHeading, kName, kPhrase };
  static constexpr uint32_t kNone = NumberTable::kNone;
  // The texts stand in `texts_`.
  struct Entry {
    std::string_view key;   // in lower case
    std::string_view text;  // as it was met first
    uint64_t weight = 0;    // pages that have it
    uint32_t lastPage = 0;  // counted from 1, of the page that counted it last
    Kind kind = Kind::kPhrase;
  };
  // How often a phrase has been met, before it is worth keeping its text, and its entry from then
  // on, which is found without putting its text together.
  struct PhraseCount {
    uint32_t check = 0;  // tells phrases of one place apart
    uint32_t lastPage = 0;
    uint32_t pages = 0;
    uint32_t entry = kNone;
  };
  // A word of the page's running text.
  struct PhraseWord {
    uint32_t at = 0;    // where it begins in `pageTexts_`
    uint8_t bytes = 0;  // of it
    uint64_t hash = 0;  // of the word in lower case
    // The hashes of phrases of two words and of three, as far as their first word makes them.
    uint64_t beginsTwo = 0;
    uint64_t beginsThree = 0;
  };

  static constexpr size_t kPhraseWordLimit = 3;
  struct Phrase {
    uint64_t hash = 0;
    uint32_t count = 0;                                 // of its words
    std::array<uint32_t, kPhraseWordLimit> words = {};  // their places in `words_`
  };

  // The number of the entry; kNone where there is none, or where it may have been dropped at once.
  uint32_t Add(std::string_view text, uint64_t weight, Kind kind);
  void Count(Entry& entry, uint64_t weight) const;
  void AddEdgeWords(const std::string& text);
  void AddPhrases(const RunningText& running);
  void AddPhrase(const Phrase& phrase);
  void CountPhrase(const Phrase& phrase);
  void CountWaiting();
  void DropRarest();
  std::string WithoutEnding(const std::string& title) const;

  uint32_t page_ = 0;
  std::vector<Entry> entries_;
  NumberTable table_;  // of `entries_`, by their keys
  TextStore texts_;
  std::unordered_map<std::string, uint32_t> endings_;
  std::unordered_set<std::string> edgeWords_;  // first and last words of titles and headings
  std::vector<PhraseCount> counts_;
  std::string_view pageTexts_;     // of the words of the page's running text
  std::vector<PhraseWord> words_;  // of the running text of the page, kept for its memory
  // Phrases whose places are on their way into the processor's cache, the first one at
  // `nextPhrase_`.
  std::array<Phrase, 8> waiting_;
  size_t nextPhrase_ = 0;
  std::string key_;     // scratch
  std::string phrase_;  // the same
};

}  // namespace vela::indexer
