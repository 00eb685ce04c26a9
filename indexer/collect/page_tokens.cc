#include "indexer/collect/page_tokens.h"

#include <algorithm>

#include "format/page_text.h"
#include "format/word_map.h"

namespace vela::indexer {

namespace {

uint8_t HeadingZone(uint8_t level) {
  if (level == 0) return 0;
  if (level == 1) return kInMainHeading;
  return level <= 3 ? kInHeading : kInSmallHeading;
}

// What the tokens of a page are made with and go to.
struct PageCut {
  const SiteWords& site;
  PageTokens& out;
};

// Writes the signs behind the last word as one token. The next begins as `blankBehind` says.
void CloseGap(const PageCut& cut, bool blankBehind) {
  SignGap& gap = cut.out.gap;
  if (!gap.IsEmpty()) cut.out.tokens.push_back({cut.site.signs.Find(gap, blankBehind), 0});
  gap.Clear(blankBehind);
}

// Cuts one run of text and appends its tokens. Returns the number of its words.
uint32_t CutRun(std::string_view text, uint8_t zone, bool inBody, const PageCut& cut) {
  PageTokens& out = cut.out;
  uint32_t wordCount = 0;
  out.gap.Clear(true);
  for (std::string_view chunk = NextChunk(text); !chunk.empty(); chunk = NextChunk(text)) {
    CutChunk(chunk, out.chunk);
    const uint32_t firstPlace = inBody ? out.bodyWords : 0;
    uint32_t place = firstPlace;
    out.places.clear();
    out.written.clear();
    out.gap.AddBlank();
    for (const TextToken& token : out.chunk.tokens) {
      const std::string_view base =
          token.sign == 0 ? cut.site.forms.Base(token.base) : std::string_view();
      if (!base.empty()) CloseGap(cut, false);
      const auto written = static_cast<uint32_t>(out.tokens.size());
      out.places.push_back(place);
      out.written.push_back(base.empty() ? kNone32 : written);
      if (token.sign != 0) out.gap.AddSign(token.surface);
      if (base.empty()) continue;
      const uint32_t word = FindOrAddWord(cut.site.vocabulary, base);
      const uint8_t variant =
          FindOrAddVariant(cut.site.vocabulary, word, cut.site.forms.Surface(token.surface));
      cut.site.vocabulary.words[word].isWritten = true;
      out.occurrences.push_back({word, written, place, zone, inBody});
      out.tokens.push_back({kWordBase + word, variant});
      ++place;
    }
    for (const FoundForm& form : out.chunk.forms) {
      const std::string_view base = cut.site.forms.FoundBase(form.text);
      // A word that could not be written has no place of its own.
      if (base.empty() || out.written[form.token] == kNone32) continue;
      const uint32_t word = FindOrAddWord(cut.site.vocabulary, base);
      // Beside its stem, so that a pattern such as "cafe*" meets it whole.
      FindOrAddVariant(cut.site.vocabulary, word, cut.site.forms.Surface(form.text));
      out.occurrences.push_back(
          {word, out.written[form.token], out.places[form.token], zone, inBody});
    }
    wordCount += place - firstPlace;
    if (inBody) out.bodyWords = place;
  }
  CloseGap(cut, true);
  return wordCount;
}

uint32_t CountDistinctWords(const PageTokens& words, size_t firstToken) {
  std::vector<uint32_t> numbers;
  for (size_t i = firstToken; i < words.tokens.size(); ++i) {
    if (words.tokens[i].number >= kWordBase) numbers.push_back(words.tokens[i].number);
  }
  std::ranges::sort(numbers);
  return static_cast<uint32_t>(std::unique(numbers.begin(), numbers.end()) - numbers.begin());
}

void AddOne(uint8_t& count) {
  if (count < 255) ++count;
}

void CollectPostings(uint32_t pageNumber, Vocabulary& vocabulary, PageTokens& out) {
  const uint32_t blockWords = ProximityBlockWords(out.bodyWords);
  for (const PageTokens::Occurrence& occurrence : out.occurrences) {
    Word& word = vocabulary.words[occurrence.word];
    if (word.lastPage != pageNumber) {
      word.lastPage = pageNumber;
      word.slot = static_cast<uint32_t>(out.postings.size());
      ++word.pageCount;
      Posting posting;
      posting.word = occurrence.word;
      posting.page = pageNumber;
      posting.token = occurrence.token;
      out.postings.push_back(posting);
      out.lastTokens.push_back(kNone32);
    }
    Posting& posting = out.postings[word.slot];
    if (occurrence.zone == kInTitle) word.inTitle = true;
    posting.zones |= occurrence.zone;
    // Title, description and address belong to the page as a whole and count as its beginning.
    const uint32_t block = occurrence.inBody ? occurrence.place / blockWords : 0;
    posting.blocks |= ProximityBit(block);
    // A word and a part of it that reads the same ("a-a") are one occurrence.
    if (out.lastTokens[word.slot] == occurrence.token) continue;
    out.lastTokens[word.slot] = occurrence.token;
    AddOne(posting.total);
    if (occurrence.inBody) AddOne(posting.body);
  }
}

}  // namespace

void CutPage(const PageTexts& page, uint32_t pageNumber, const SiteWords& site, PageTokens& out) {
  const PageCut cut = {.site = site, .out = out};
  Vocabulary& vocabulary = site.vocabulary;
  out.tokens.clear();
  out.postings.clear();
  out.occurrences.clear();
  out.lastTokens.clear();
  out.bodyWords = 0;
  for (const TextRun& run : page.content.body) {
    CutRun(run.text, HeadingZone(run.headingLevel), true, cut);
  }
  // Behind the body, so that snippets show the body and phrases find all of it.
  const auto addRun = [&](std::string_view text, Zone zone) {
    const size_t before = out.tokens.size();
    if (before != 0) out.tokens.push_back({kRunEndWord, 0});
    const uint32_t count = CutRun(text, zone, false, cut);
    if (count == 0) out.tokens.resize(before);
    return count;
  };
  const size_t beforeTitle = out.tokens.size();
  addRun(page.title, kInTitle);
  out.titleWords = CountDistinctWords(out, beforeTitle);
  addRun(page.content.description, kInDescription);
  addRun(page.addressText, kInAddress);
  out.tokens.push_back({kPageEndWord, 0});
  CollectPostings(pageNumber, vocabulary, out);
  for (const Posting& posting : out.postings) {
    Word& word = vocabulary.words[posting.word];
    word.mostOnPage = std::max(word.mostOnPage, posting.total);
  }
}

}  // namespace vela::indexer
