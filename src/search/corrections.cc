#include "search/corrections.h"

#include <algorithm>
#include <array>
#include <bit>

#include "index/corrections.h"
#include "search/highlight_terms.h"
#include "search/lookup.h"
#include "text/ascii.h"
#include "text/lower.h"
#include "text/slips.h"
#include "text/wildcard.h"

namespace vela {

namespace {

// From so many letters on a word may hold two slips.
constexpr size_t kTwoSlipsLetters = 8;
// A correction of fewer letters is never certain: too many words are near.
constexpr size_t kCertainLetters = 5;
// By how much it must be better than the next word; about the tenfold number of pages.
constexpr int32_t kCertainLead = 8;
// By how much where a word is so short that many are near, so that anything is offered for it: of
// three letters, and of four, where more than a few are near one step more.
constexpr int32_t kThreeLettersLead = 5;
constexpr int32_t kFourLettersLead = 2;
constexpr size_t kFewNear = 4;
// What each slip may cost: words that the site does not have differ by others, and often by their
// first letter, from those that it has.
constexpr int32_t kCertainCost = 14;
// It must be on more than one of so many pages of the site.
constexpr int32_t kCertainPages = 256;
// How far behind the best a further offer may be.
constexpr int32_t kOfferMargin = 12;

// How many of the words that are near are looked at closely.
constexpr size_t kClosestWords = 12;
// Records of such a word's list that are held against the pages found.
constexpr int32_t kSampleRecords = 1024;

// One way to read a word that was typed.
struct MeantWord {
  QueryText text;
  int32_t merit = 0;
};
struct MeantWords {
  std::array<MeantWord, Suggestions::kLimit> words;  // the best first
  int32_t count = 0;
  bool isCertain = false;
};

// A word of the file that is near.
struct NearWord {
  uint32_t number = 0;
  int32_t merit = 0;
  int32_t cost = 0;
  int32_t slips = 0;
  int32_t pages = 0;  // of the words that are looked up as it is
  size_t letters = 0;
};
struct NearWords {
  std::array<NearWord, kClosestWords> words;  // the best first
  size_t count = 0;

  void Add(const NearWord& word) {
    size_t place = count;
    while (place > 0 && words[place - 1].merit < word.merit) --place;
    if (place == words.size()) return;
    if (count < words.size()) ++count;
    std::move_backward(words.begin() + place, words.begin() + count - 1, words.begin() + count);
    words[place] = word;
  }
};

// Twice the binary logarithm.
int32_t TwiceLog2(uint32_t number) {
  return static_cast<int32_t>(std::bit_width(uint64_t{number} * number + 1)) - 1;
}

int32_t LeastLead(size_t letters, size_t nearWords) {
  if (letters == 3) return kThreeLettersLead;
  if (letters == 4) return kFourLettersLead + (nearWords > kFewNear ? 1 : 0);
  return 0;
}

class Corrector {
 public:
  explicit Corrector(const CorrectionInput& input) : input_(input) {}

  // Whether the word, which is no pattern, is on few pages.
  bool IsRare(std::string_view word) {
    return RecordsOf(word).size() < input_.settings.SpellingWhenLessThan;
  }

  // The words that may be meant by one that is rare; none when it holds anything but letters.
  MeantWords WordsFor(std::string_view typed);

 private:
  const CorrectionFile& File() {
    if (!wasOpened_) file_.Open(input_.directory);
    wasOpened_ = true;
    return file_;
  }
  QueryText LookedUpForm(std::string_view word) {
    QueryText form;
    Set(form, word);
    if (StemsWords(input_.settings)) StemText(form, input_.stemmer, IsUtf8(input_.settings));
    return form;
  }
  WordList RecordsOf(std::string_view word) {
    WordList list;
    const QueryText form = LookedUpForm(word);
    const int32_t number =
        input_.dictionary.FindExact(View(form), FirstSearchedWord(input_.settings));
    if (number < 0) return list;
    const int64_t offset = input_.dictionary.EntryAt(number).offset;
    // A damaged list has been reported already if a term was looked up in it.
    if (offset != kNoWordList &&
        FindWordList(input_.wordMap, offset, list).status != TermStatus::kOk) {
      return {};
    }
    return list;
  }
  NearWords FindNear(const WordLetters& typed);
  int32_t CompanyMerit(const WordList& list) const;

  const CorrectionInput& input_;
  CorrectionFile file_;
  bool wasOpened_ = false;
};

NearWords Corrector::FindNear(const WordLetters& typed) {
  NearWords near;
  const CorrectionFile& file = File();
  const bool utf8 = IsUtf8(input_.settings);
  const size_t slips = typed.count < kTwoSlipsLetters ? 1 : 2;
  const SlipCounter counter(typed);
  file.ForEachNear(std::max(typed.count - slips, kCorrectionLettersLeast),
                   std::min(typed.count + slips, kWordLettersLimit), LetterSetOf(typed),
                   static_cast<int>(2 * slips), [&](uint32_t number) {
                     WordLetters letters;
                     if (file.TextOf(number, utf8, letters).empty()) return;
                     const uint32_t counted = counter.CountTo(letters);
                     if (counted == 0 || counted > slips) return;
                     const int32_t cost = SlipCost(typed, letters);
                     near.Add({.number = number,
                               .merit = TwiceLog2(file.PagesOf(number)) - cost,
                               .cost = cost,
                               .slips = static_cast<int32_t>(counted)});
                   });
  return near;
}

// What it says for a word that it stands on pages which other terms found.
int32_t Corrector::CompanyMerit(const WordList& list) const {
  const Matches& matches = input_.matches;
  const int32_t step = std::max(1, list.size() / kSampleRecords);
  uint32_t together = 0;
  for (int32_t i = 0; i < list.size(); i += step) {
    const uint32_t page = RecordAt(list, i).page;
    if (page / 64 < matches.touched.size() &&
        (matches.touched[page / 64] >> (page % 64) & 1) != 0) {
      ++together;
    }
  }
  return TwiceLog2(together);
}

MeantWords Corrector::WordsFor(std::string_view typed) {
  MeantWords meant;
  QueryText lower;
  Set(lower, typed);
  const bool utf8 = IsUtf8(input_.settings);
  LowerText(lower.bytes, View(lower).size(), utf8);
  const std::string_view text = View(lower);
  WordLetters letters;
  const auto isLetter = [](char c) { return IsLower(c) || static_cast<unsigned char>(c) >= 0x80; };
  if (!std::all_of(text.begin(), text.end(), isLetter) || !ReadLetters(text, utf8, letters) ||
      letters.count < kCorrectionLettersLeast) {
    return meant;
  }
  NearWords near = FindNear(letters);
  const auto records = RecordsOf(typed).size();
  std::array<QueryText, kClosestWords> forms;
  size_t kept = 0;
  for (size_t i = 0; i < near.count; ++i) {
    NearWord word = near.words[i];
    WordLetters ofWord;
    const std::string_view candidate = File().TextOf(word.number, utf8, ofWord);
    const WordList list = RecordsOf(candidate);
    if (list.size() <= records) continue;
    forms[kept] = LookedUpForm(candidate);
    const auto isSame = [&](const QueryText& form) { return View(form) == View(forms[kept]); };
    // Words of one stem find the same pages; the nearest stands for them.
    if (std::any_of(forms.begin(), forms.begin() + kept, isSame)) continue;
    word.merit += CompanyMerit(list);
    word.pages = list.size();
    word.letters = ofWord.count;
    near.words[kept++] = word;
  }
  near.count = kept;
  // Of two that are as likely the longer: an ending is left out more often than changed.
  std::stable_sort(near.words.begin(), near.words.begin() + near.count,
                   [](const NearWord& a, const NearWord& b) {
                     return a.merit != b.merit ? a.merit > b.merit : a.letters > b.letters;
                   });
  if (near.count == 0) return meant;
  const NearWord& best = near.words[0];
  const int32_t lead = near.count == 1 ? INT32_MAX : best.merit - near.words[1].merit;
  if (lead < LeastLead(letters.count, near.count)) return meant;
  for (size_t i = 0; i < std::min(near.count, meant.words.size()); ++i) {
    if (best.merit - near.words[i].merit > kOfferMargin) break;
    WordLetters ignored;
    Set(meant.words[i].text, File().TextOf(near.words[i].number, utf8, ignored));
    meant.words[i].merit = near.words[i].merit;
    ++meant.count;
  }
  meant.isCertain = letters.count >= kCertainLetters && best.cost <= kCertainCost * best.slips &&
                    best.pages > input_.settings.NumPages / kCertainPages && lead >= kCertainLead;
  return meant;
}

}  // namespace

Corrections MakeCorrections(const TermSearch& search, const CorrectionInput& input) {
  Corrections corrections;
  Suggestions& offers = corrections.offers;
  offers.asTyped = true;
  Corrector corrector(input);
  const Settings& settings = input.settings;
  int32_t corrected = 0;
  bool isCertain = true;
  const auto appendToAll = [&](std::string_view text) {
    for (FixedText<10240>& offer : offers.texts) Append(offer, text);
  };
  const auto appendWord = [&](std::string_view word) {
    if (!corrector.IsRare(word)) return appendToAll(word);
    const MeantWords meant = corrector.WordsFor(word);
    isCertain = isCertain && meant.isCertain;
    if (meant.count == 0) return appendToAll(word);
    // Several readings of one word make several offers, those of two would make too many.
    offers.count = ++corrected == 1 ? meant.count : 1;
    for (int32_t i = 0; i < Suggestions::kLimit; ++i) {
      Append(offers.texts[i], View(meant.words[static_cast<size_t>(i < meant.count ? i : 0)].text));
    }
  };
  auto dropped = search.dropped.begin();
  for (size_t i = 0; i < search.terms.size(); ++i) {
    const std::string_view shown = WithoutAddedAsterisks(search.terms[i].shown, settings);
    if (i > 0) appendToAll(" ");
    for (; dropped != search.dropped.end() && dropped->place == static_cast<int32_t>(i);
         ++dropped) {
      appendToAll(dropped->word);
      appendToAll(" ");
    }
    const bool isPhrase = IsPhrase(shown, settings);
    const bool isExclusion = shown.starts_with('-');
    const bool isFixed = isExclusion || HasWildcard(shown) || ReadSiteRestriction(shown).active ||
                         search.terms[i].records >= settings.SpellingWhenLessThan ||
                         static_cast<int64_t>(shown.size()) < settings.MinWordLen;
    if (isPhrase && isExclusion) {
      appendToAll("-\"");
      appendToAll(shown.substr(1));
      appendToAll("\"");
    } else if (isPhrase) {
      appendToAll("\"");
      std::string_view words = shown;
      std::string_view word;
      for (bool isFirst = true; NextPhraseWord(words, word); isFirst = false) {
        if (!isFirst) appendToAll(" ");
        if (isFixed) {
          appendToAll(word);
        } else {
          appendWord(word);
        }
      }
      appendToAll("\"");
    } else if (isFixed) {
      appendToAll(shown);
    } else {
      appendWord(shown);
    }
  }
  for (; dropped != search.dropped.end(); ++dropped) {
    appendToAll(" ");
    appendToAll(dropped->word);
  }
  if (corrected == 0) return Corrections();
  corrections.isCertain = isCertain;
  return corrections;
}

}  // namespace vela
