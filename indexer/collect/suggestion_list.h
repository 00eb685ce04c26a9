// suggestion_list.h: what the search box completes: the titles, headings and frequent phrases of
// the site.
//
// It is collected in bounded memory, about 20 MB at most: of the texts met, those that come up
// most often stay.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "indexer/extract/page.h"

namespace vela::indexer {

class SuggestionList {
 public:
  // Takes what one page offers; `title` is the one shown for it.
  void AddPage(const PageContent& page, const std::string& title);

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
  struct Entry {
    std::string text;       // as it was met first
    uint64_t weight = 0;    // pages that have it
    uint32_t lastPage = 0;  // counted from 1, of the page that counted it last
    Kind kind = Kind::kPhrase;
  };
  // How often a phrase has been met, before it is worth keeping its text.
  struct PhraseCount {
    uint32_t check = 0;  // tells phrases of one place apart
    uint32_t lastPage = 0;
    uint32_t pages = 0;
  };
  // A word of the running text and the same in lower case.
  struct PhraseWord {
    std::string text;
    std::string lower;
  };

  void Add(const std::string& text, uint64_t weight, Kind kind);
  void AddEdgeWords(const std::string& text);
  void AddPhrases(std::string_view text);
  void AddPhrase(size_t words);
  void DropRarest();
  std::string WithoutEnding(const std::string& title) const;

  uint32_t page_ = 0;
  std::unordered_map<std::string, Entry> entries_;  // by the text in lower case
  std::unordered_map<std::string, uint32_t> endings_;
  std::unordered_set<std::string> edgeWords_;  // first and last words of titles and headings
  std::vector<PhraseCount> counts_;
  std::vector<PhraseWord> words_;  // the last ones of the running text
};

}  // namespace vela::indexer
