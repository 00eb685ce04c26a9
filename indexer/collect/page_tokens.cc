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

// Tokens that are handed on at once.
constexpr size_t kPortionTokens = 4096;

// What the tokens of a page are made with and go to.
struct PageCut {
  const SiteWords& site;
  uint32_t pageNumber = 0;
  PageTokens& out;
};

// Where in the page text of its page a word stands.
struct Occurrence {
  uint32_t word = 0;  // number in the vocabulary
  uint32_t token = 0;
  uint32_t place = 0;  // of its word among the body's words
  uint8_t zone = 0;    // one Zone bit, 0 for plain text
  bool inBody = false;
};

void WriteToken(const PageCut& cut, PageToken token) {
  cut.out.tokens.push_back(token);
  ++cut.out.tokenCount;
}

void HandOn(const PageCut& cut) {
  cut.site.sink(cut.out.tokens);
  cut.out.tokens.clear();
}

// Writes the signs behind the last word as one token. The next begins as `blankBehind` says.
void CloseGap(const PageCut& cut, bool blankBehind) {
  SignGap& gap = cut.out.gap;
  if (!gap.IsEmpty()) {
    WriteToken(cut, {cut.site.signs.Find(gap, blankBehind), 0});
    cut.out.afterPiece = false;
  }
  gap.Clear(blankBehind);
}

void AddOne(uint8_t& count) {
  if (count < 255) ++count;
}

// Counts the occurrence in the posting of its word. Returns what else is known of the word.
PageTokens::PageWord& Count(const Occurrence& occurrence, const PageCut& cut) {
  PageTokens& out = cut.out;
  Word& word = cut.site.vocabulary.words[occurrence.word];
  if (word.lastPage != cut.pageNumber) {
    word.lastPage = cut.pageNumber;
    word.slot = static_cast<uint32_t>(out.postings.size());
    ++word.pageCount;
    Posting posting;
    posting.word = occurrence.word;
    posting.page = cut.pageNumber;
    posting.token = occurrence.token;
    out.postings.push_back(posting);
    out.pageWords.emplace_back();
  }
  Posting& posting = out.postings[word.slot];
  PageTokens::PageWord& pageWord = out.pageWords[word.slot];
  if (occurrence.zone == kInTitle) word.inTitle = true;
  posting.zones |= occurrence.zone;
  if (occurrence.inBody) {
    NotePlace(word.slot, occurrence.place, pageWord.places, out.places);
  } else {
    // Title, description and address belong to the page as a whole and count as its beginning.
    posting.blocks |= ProximityBit(0);
  }
  // A word and a part of it that reads the same ("a-a") are one occurrence.
  if (pageWord.lastToken == occurrence.token) return pageWord;
  pageWord.lastToken = occurrence.token;
  AddOne(posting.total);
  if (occurrence.inBody) AddOne(posting.body);
  return pageWord;
}

// Sets what is known of a word of the title, which the page has, beside that it is one.
void SetTitleZones(uint32_t word, uint8_t set, uint8_t cleared, const PageCut& cut) {
  uint8_t& zones = cut.out.postings[cut.site.vocabulary.words[word].slot].zones;
  zones = static_cast<uint8_t>((zones & ~cleared) | set);
}

// Writes and counts the words of the chunk that was cut. Returns their number.
uint32_t WriteWords(uint8_t zone, bool inBody, const PageCut& cut) {
  PageTokens& out = cut.out;
  uint32_t place = inBody ? out.bodyWords : 0;
  uint32_t count = 0;
  out.chunkWords.clear();
  for (const TextToken& token : out.chunk.tokens) {
    PageTokens::ChunkWord& chunkWord = out.chunkWords.emplace_back();
    if (token.sign == kBlankSign) {
      out.gap.AddBlank();
      continue;
    }
    if (token.sign != 0) {
      out.gap.AddSign(token.surface);
      continue;
    }
    const std::string_view base = cut.site.forms.Base(token.base);
    if (base.empty()) continue;
    if (out.afterPiece && token.isPiece && out.gap.opens && out.gap.IsEmpty()) out.gap.ShowBlank();
    CloseGap(cut, false);
    out.afterPiece = token.isPiece;
    const uint32_t word = FindOrAddWord(cut.site.vocabulary, base);
    chunkWord = {.token = out.tokenCount, .place = place, .word = word};
    const std::string_view surface = cut.site.forms.Surface(token.surface);
    const uint8_t variant = FindOrAddVariant(cut.site.vocabulary, word, surface);
    Word& found = cut.site.vocabulary.words[word];
    found.isWritten = true;
    if (surface == TextOf(found)) found.isOwnForm = true;
    PageTokens::PageWord& pageWord = Count({word, out.tokenCount, place, zone, inBody}, cut);
    if (zone == kInTitle) SetTitleZones(word, kTitleWord | kTitlePart, 0, cut);
    if (zone == kInTitle && !pageWord.isTitleWord) {
      pageWord.isTitleWord = true;
      ++out.titleWords;
    }
    WriteToken(cut, {kWordBase + word, variant});
    ++place;
    ++count;
  }
  if (inBody) out.bodyWords = place;
  return count;
}

// Counts the further forms by which words of the chunk are found.
void CountForms(uint8_t zone, bool inBody, const PageCut& cut) {
  for (const FoundForm& form : cut.out.chunk.forms) {
    const std::string_view base = cut.site.forms.FoundBase(form.text);
    const PageTokens::ChunkWord& found = cut.out.chunkWords[form.token];
    // A word that could not be written has no place of its own.
    if (base.empty() || found.token == kNone32) continue;
    const uint32_t word = FindOrAddWord(cut.site.vocabulary, base);
    const bool isPart = cut.out.chunk.tokens[form.token].base.find(form.text) != form.text.npos;
    if (isPart && form.text == base) cut.site.vocabulary.words[word].isOwnForm = true;
    // Beside its stem, so that a pattern such as "cafe*" meets it whole.
    FindOrAddVariant(cut.site.vocabulary, word, cut.site.forms.Surface(form.text));
    Count({word, found.token, found.place, zone, inBody}, cut);
    if (zone == kInTitle && form.text.size() < cut.out.chunk.tokens[form.token].base.size()) {
      SetTitleZones(found.word, 0, kTitlePart, cut);
      SetTitleZones(word, kTitlePart, 0, cut);
    }
  }
}

bool IsStopped(const PageCut& cut) { return cut.site.stop != nullptr && *cut.site.stop != 0; }

// Parts a heading from the text behind it, which passages show in one line.
void EndHeading(PageTokens& out) {
  if (!out.gap.IsEmpty()) return;
  out.gap.Clear(false);
  out.gap.AddSign(out.afterPiece ? "\u3002" : ".");
}

// Cuts one run of text and writes its tokens, unless it is stopped. Returns the number of its
// words. Without any, nothing of the run was handed on.
uint32_t CutRun(std::string_view text, uint8_t zone, bool inBody, const PageCut& cut) {
  PageTokens& out = cut.out;
  uint32_t wordCount = 0;
  out.gap.Clear(true);
  while (!IsStopped(cut)) {
    const bool followsBlank = text.starts_with(' ');
    const std::string_view chunk = NextChunk(text);
    if (chunk.empty()) break;
    CutChunk(chunk, out.chunk, cut.site.runs);
    if (followsBlank) out.gap.AddBlank();
    // Words that a chunk ends and the next begins with are still written without a blank.
    const std::vector<TextToken>& tokens = out.chunk.tokens;
    const bool arePieces = out.afterPiece && !tokens.empty() && tokens.front().isPiece;
    if (!followsBlank && !out.gap.opens && out.gap.IsEmpty() && !arePieces) {
      out.gap.AddSign(Utf8Text(kWordBreakSign));
    }
    wordCount += WriteWords(zone, inBody, cut);
    CountForms(zone, inBody, cut);
    if (wordCount != 0 && out.tokens.size() >= kPortionTokens) HandOn(cut);
  }
  if (cut.site.endsHeadings && inBody && zone != 0 && wordCount != 0) EndHeading(out);
  CloseGap(cut, true);
  return wordCount;
}

// Sets the blocks of the words now that the page's length is known.
void SetBlocks(PageTokens& out) {
  const uint32_t blockWords = ProximityBlockWords(out.bodyWords);
  const auto set = [&](size_t slot, uint32_t place) {
    if (place != kNoPlace) out.postings[slot].blocks |= ProximityBit(place / blockWords);
  };
  for (const PlaceOfWord& each : out.places) set(each.slot, each.place);
  for (size_t slot = 0; slot < out.pageWords.size(); ++slot) {
    set(slot, out.pageWords[slot].places.before);
    set(slot, out.pageWords[slot].places.last);
  }
}

}  // namespace

bool CutPage(const PageTexts& page, uint32_t pageNumber, const SiteWords& site, PageTokens& out) {
  const PageCut cut = {.site = site, .pageNumber = pageNumber, .out = out};
  out.tokens.clear();
  out.postings.clear();
  out.pageWords.clear();
  out.places.clear();
  out.sections.clear();
  out.tokenCount = out.bodyWords = out.titleWords = 0;
  out.afterPiece = false;
  for (const TextRun& run : page.content.body) {
    if (!run.anchor.empty()) {
      const auto number = static_cast<uint32_t>(&run - page.content.body.data());
      out.sections.push_back({out.tokenCount, number});
    }
    CutRun(run.text, HeadingZone(run.headingLevel), true, cut);
  }
  out.bodyTokens = out.tokenCount;
  // Behind the body, so that snippets show the body and phrases find all of it.
  const auto addRun = [&](std::string_view text, Zone zone) {
    const size_t before = out.tokens.size();
    if (out.tokenCount != 0) WriteToken(cut, {kRunEndWord, 0});
    out.afterPiece = false;
    if (CutRun(text, zone, false, cut) != 0) return;
    out.tokenCount -= static_cast<uint32_t>(out.tokens.size() - before);
    out.tokens.resize(before);
  };
  addRun(page.title, kInTitle);
  addRun(page.content.description, kInDescription);
  addRun(page.addressText, kInAddress);
  WriteToken(cut, {kPageEndWord, 0});
  HandOn(cut);
  if (IsStopped(cut)) return false;
  SetBlocks(out);
  for (const Posting& posting : out.postings) {
    Word& word = site.vocabulary.words[posting.word];
    word.mostOnPage = std::max(word.mostOnPage, posting.total);
    if (posting.zones == kInAddress && posting.body == 0) ++word.addressOnlyPages;
  }
  return true;
}

}  // namespace vela::indexer
