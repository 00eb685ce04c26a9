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

  // The texts in the order in which they are to be offered: those that more pages offer first, a
  // title counting for four pages that hold a phrase and a heading for two; by their bytes among
  // equals. No two differ in case alone. What most titles end in ("... | Ashdale Library") is taken
  // off. Plain text on one line, without double quotes and backslashes, which the search program
  // would put into a script. Ends the collection.
  std::vector<std::string> Take();

 private:
  struct Entry {
    std::string text;  // as it was met first
    uint64_t weight = 0;
    uint32_t lastPage = 0;  // counted from 1, of the page that counted it last
    bool isPhrase = false;
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

  void Add(const std::string& text, uint64_t weight, bool isPhrase);
  void AddEdgeWords(const std::string& text);
  void AddPhrases(std::string_view text);
  void AddPhrase(size_t words);
  void DropRarest();
  std::string CommonEnding() const;

  uint32_t page_ = 0;
  std::unordered_map<std::string, Entry> entries_;  // by the text in lower case
  std::unordered_map<std::string, uint32_t> endings_;
  std::unordered_set<std::string> edgeWords_;  // first and last words of titles and headings
  std::vector<PhraseCount> counts_;
  std::vector<PhraseWord> words_;  // the last ones of the running text
};

}  // namespace vela::indexer
