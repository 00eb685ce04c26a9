#include "indexer/collect/stop_words.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "indexer/config/embedded_files.h"
#include "settings/setting_keys.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kListEnding = ".txt";
constexpr std::string_view kBlanks = " \n";

// A language is the site's when so many words that no other language has are on at least so many
// pages each. Single words of another language are names and code ("bin", "man", "den").
constexpr size_t kWordsAsked = 20;
constexpr uint64_t kLeastPercent = 4;

struct StopWordList {
  std::vector<std::string> words;
  std::vector<std::string> bases;  // as the dictionary has them; empty: no query can hold it
  uint64_t pages = 0;              // on which the least common of the words asked stands
};

StopWordList ReadList(std::string_view content, WordForms& forms) {
  StopWordList list;
  for (size_t at = content.find_first_not_of(kBlanks); at != content.npos;) {
    const size_t end = std::min(content.find_first_of(kBlanks, at), content.size());
    list.words.emplace_back(content.substr(at, end - at));
    list.bases.emplace_back(forms.FoundBase(list.words.back()));
    at = content.find_first_not_of(kBlanks, end);
  }
  return list;
}

std::vector<StopWordList> ReadLists(WordForms& forms) {
  std::vector<StopWordList> lists;
  for (const EmbeddedFile& file : EmbeddedFiles()) {
    if (file.name.ends_with(kListEnding)) lists.push_back(ReadList(file.content, forms));
  }
  return lists;
}

// What is known of a dictionary word that is in some list.
struct ListedBase {
  size_t lists = 0;
  uint32_t pages = 0;
};
using ListedBases = std::unordered_map<std::string_view, ListedBase>;

ListedBases CountPages(const std::vector<StopWordList>& lists, const Vocabulary& vocabulary) {
  ListedBases listed;
  for (const StopWordList& list : lists) {
    // Two words of a list may have one stem.
    for (const std::string_view base :
         std::set<std::string_view>(list.bases.begin(), list.bases.end())) {
      ++listed[base].lists;
    }
  }
  for (size_t i = 0; i < vocabulary.words.size(); ++i) {
    const Word& word = vocabulary.words[i];
    const auto found = listed.find(TextOf(word, vocabulary));
    if (found != listed.end()) found->second.pages = word.pageCount;
  }
  return listed;
}

uint64_t PagesOf(const StopWordList& list, const ListedBases& listed) {
  std::vector<uint32_t> pages;
  for (const std::string_view base :
       std::set<std::string_view>(list.bases.begin(), list.bases.end())) {
    const ListedBase& known = listed.at(base);
    if (known.lists == 1 && !base.empty()) pages.push_back(known.pages);
  }
  std::ranges::sort(pages, std::greater());
  return pages.size() < kWordsAsked ? 0 : pages[kWordsAsked - 1];
}

}  // namespace

std::string StopWordsOf(const Vocabulary& vocabulary, uint64_t pages, WordForms& forms) {
  std::vector<StopWordList> lists = ReadLists(forms);
  const ListedBases listed = CountPages(lists, vocabulary);
  for (StopWordList& list : lists) list.pages = PagesOf(list, listed);
  std::ranges::stable_sort(lists, std::greater(), &StopWordList::pages);
  std::string text;
  std::set<std::string_view> written;
  for (const StopWordList& list : lists) {
    if (list.pages == 0 || list.pages * 100 < pages * kLeastPercent) break;
    std::string more;
    for (size_t i = 0; i < list.words.size(); ++i) {
      const std::string& word = list.words[i];
      if (list.bases[i].empty() || written.contains(word)) continue;
      more.append(text.empty() && more.empty() ? "" : " ").append(word);
    }
    if (text.size() + more.size() > FindTextSetting("StopWords")->capacity) continue;
    written.insert(list.words.begin(), list.words.end());
    text += more;
  }
  return text;
}

}  // namespace vela::indexer
