#include "indexer/collect/page_cutter.h"

#include <algorithm>
#include <utility>

#include "format/word_map.h"
#include "indexer/collect/number_bytes.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/plain_word.h"
#include "indexer/words/symbols.h"

namespace vela::indexer {

namespace {

// Bytes that a kept chunk takes with the two forms that come with it at most: when twice as many
// forms as chunks are known, everything is forgotten before the next page.
constexpr size_t kBytesOfChunk = 480;
constexpr size_t kLeastChunks = size_t{1} << 10;
constexpr size_t kMostChunks = size_t{1} << 16;

uint8_t HeadingZone(uint8_t level) {
  if (level == 0) return 0;
  if (level == 1) return kInMainHeading;
  return level <= 3 ? kInHeading : kInSmallHeading;
}

void AddOne(uint8_t& count) {
  if (count < 255) ++count;
}

}  // namespace

PageCutter::PageCutter(const IndexCharset& charset, int32_t stemming, const CutRules& rules)
    : wordForms_(charset, stemming),
      rules_(rules),
      mostChunks_(std::clamp(rules.memory / kBytesOfChunk, kLeastChunks, kMostChunks)) {}

void PageCutter::Forget() {
  words_.Clear();
  knownWords_.clear();
  formKeys_.Clear();
  forms_.clear();
  signs_.Clear();
  signsInPage_.clear();
  signTexts_.Clear();
  runningWords_.Clear();
  knownRunning_.clear();
  ForgetChunks();
}

void PageCutter::ForgetChunks() {
  addsChunk_ = false;
  chunkTable_.Clear();
  chunks_.clear();
  chunkTokens_.clear();
  chunkForms_.clear();
}

void PageCutter::BeginPage(PageWords& out) {
  // After a failed allocation a list may be shorter than the one beside it.
  const bool isWhole = words_.size() == knownWords_.size() && formKeys_.size() == forms_.size() &&
                       signs_.size() == signsInPage_.size() &&
                       runningWords_.size() == knownRunning_.size() && !addsChunk_;
  const size_t known =
      std::max({formKeys_.size(), signs_.size(), signTexts_.size(), runningWords_.size()});
  if (!isWhole || known >= 2 * mostChunks_ || page_ == 0xFFFFFFFF) {
    Forget();
    page_ = 0;
  }
  ++page_;
  out = PageWords();
  out_ = &out;
  pageWords_.clear();
  places_.clear();
  sections_.clear();
  inPhrase_ = afterPiece_ = false;
}

// Keeps the chunks that came again since the last time, unless they are most of them.
void PageCutter::ThinOutChunks() {
  const auto kept = static_cast<size_t>(std::ranges::count_if(chunks_, &KnownChunk::cameAgain));
  if (kept > chunks_.size() / 2) {
    ForgetChunks();
    return;
  }
  const std::vector<KnownChunk> chunks = std::exchange(chunks_, {});
  const std::vector<ChunkToken> tokens = std::exchange(chunkTokens_, {});
  const std::vector<ChunkForm> forms = std::exchange(chunkForms_, {});
  chunkTable_.Clear();
  chunks_.reserve(chunks.size());
  addsChunk_ = true;
  for (const KnownChunk& each : chunks) {
    if (!each.cameAgain) continue;
    const auto next = static_cast<uint32_t>(chunks_.size());
    chunkTable_.FindOrAdd(TextHash(TextOf(each)), next, [](uint32_t) { return false; });
    KnownChunk& added = chunks_.emplace_back(each);
    added.cameAgain = false;
    Chunk& cut = added.chunk;
    const auto firstToken = tokens.begin() + cut.firstToken;
    const auto firstForm = forms.begin() + cut.firstForm;
    cut.firstToken = static_cast<uint32_t>(chunkTokens_.size());
    cut.firstForm = static_cast<uint32_t>(chunkForms_.size());
    chunkTokens_.insert(chunkTokens_.end(), firstToken, firstToken + cut.tokens);
    chunkForms_.insert(chunkForms_.end(), firstForm, firstForm + cut.forms);
  }
  addsChunk_ = false;
}

// The known form of that spelling of a known word.
uint32_t PageCutter::KnownFormOf(uint32_t word, std::string_view surface) {
  const std::string_view base = words_[word];
  const bool isWord = surface == base;
  if (isWord && knownWords_[word].ownForm != 0) return knownWords_[word].ownForm - 1;
  if (isWord || surface.size() > kVariantBytesLimit) surface = {};
  scratch_.assign(reinterpret_cast<const char*>(&word), sizeof word);
  scratch_ += isWord ? '=' : ' ';
  scratch_ += surface;
  const uint32_t number = formKeys_.FindOrAdd(scratch_);
  if (number == forms_.size()) {
    forms_.push_back({.word = word,
                      .bytes = static_cast<uint8_t>(surface.size()),
                      .isWord = isWord,
                      .inPage = {}});
  }
  if (isWord) knownWords_[word].ownForm = number + 1;
  return number;
}

PageCutter::Chunk PageCutter::CutNewChunk(std::string_view text) {
  CutChunk(text, chunk_, rules_.runs);
  Chunk cut = {.firstToken = static_cast<uint32_t>(chunkTokens_.size()),
               .firstForm = static_cast<uint32_t>(chunkForms_.size())};
  const auto knownWord = [this](std::string_view base) {
    const uint32_t word = words_.FindOrAdd(base);
    if (word == knownWords_.size()) knownWords_.emplace_back();
    return word;
  };
  for (const TextToken& token : chunk_.tokens) {
    ChunkToken& kept = chunkTokens_.emplace_back();
    kept.isPiece = token.isPiece;
    if (token.sign == kBlankSign) continue;
    if (token.sign != 0) {
      kept.kind = Kind::kSign;
      kept.number = signTexts_.FindOrAdd(token.surface);
      continue;
    }
    const std::string_view base = wordForms_.Base(token.base);
    kept.kind = base.empty() ? Kind::kNoWord : Kind::kWord;
    if (base.empty()) continue;
    kept.number = KnownFormOf(knownWord(base), wordForms_.Surface(token.surface));
  }
  cut.startsWithPiece = !chunk_.tokens.empty() && chunk_.tokens.front().isPiece;
  cut.tokens = static_cast<uint32_t>(chunkTokens_.size()) - cut.firstToken;
  for (const FoundForm& form : chunk_.forms) {
    const std::string_view base = wordForms_.FoundBase(form.text);
    // A word that could not be written has no place of its own.
    if (base.empty() || chunkTokens_[cut.firstToken + form.token].kind == Kind::kNoWord) continue;
    const std::string_view whole = chunk_.tokens[form.token].base;
    const bool isOwnForm = form.text == base && whole.find(form.text) != whole.npos;
    // Beside its stem, so that a pattern such as "cafe*" meets it whole.
    const uint32_t known = KnownFormOf(knownWord(base), wordForms_.Surface(form.text));
    chunkForms_.push_back({.token = form.token,
                           .form = known,
                           .isOwnForm = isOwnForm,
                           .isPart = form.text.size() < whole.size()});
  }
  cut.forms = static_cast<uint32_t>(chunkForms_.size()) - cut.firstForm;
  const PlainWord plain = PlainWordOf(text);
  if (!plain.text.empty() && plain.text.size() <= kPhraseBytesLimit) {
    const uint32_t word = runningWords_.FindOrAdd(plain.text);
    if (word == knownRunning_.size()) {
      knownRunning_.push_back({.hash = TextHash(LowerUtf8Copy(plain.text)), .inPage = {}});
    }
    cut.plainWord = word + 1;
    cut.plainBegins = plain.begins;
    cut.plainEnds = plain.ends;
  }
  if (cut.tokens == 1 && cut.forms == 0) {
    const ChunkToken& only = chunkTokens_[cut.firstToken];
    if (only.kind == Kind::kWord && !only.isPiece) cut.onlyForm = only.number + 1;
  }
  return cut;
}

PageCutter::Chunk PageCutter::ChunkOf(const ChunkAhead& ahead) {
  const std::string_view text = ahead.text;
  if (text.size() > kKeptChunkBytes) return CutNewChunk(text);
  if (chunks_.size() >= mostChunks_) ThinOutChunks();
  const auto next = static_cast<uint32_t>(chunks_.size());
  const uint32_t number = chunkTable_.FindOrAdd(
      ahead.hash, next, [&](uint32_t known) { return IsSameText(TextOf(chunks_[known]), text); });
  if (number != next) {
    chunks_[number].cameAgain = true;
    return chunks_[number].chunk;
  }
  addsChunk_ = true;
  KnownChunk& added = chunks_.emplace_back();
  added.bytes = static_cast<uint8_t>(text.size());
  text.copy(added.text.data(), added.text.size());
  added.chunk = CutNewChunk(text);
  added.chunk.isKept = true;
  addsChunk_ = false;
  return added.chunk;
}

// Lets go of a chunk that is not kept.
void PageCutter::DropPassing(const Chunk& chunk) {
  if (chunk.isKept) return;
  chunkTokens_.resize(chunk.firstToken);
  chunkForms_.resize(chunk.firstForm);
}

uint32_t PageCutter::InPageWord(uint32_t word) {
  InPage& place = knownWords_[word].inPage;
  if (place.page != page_) {
    place = {.page = page_, .number = static_cast<uint32_t>(out_->words.size())};
    const std::string_view text = words_[word];
    out_->words.emplace_back().bytes = static_cast<uint8_t>(text.size());
    out_->wordTexts += text;
    pageWords_.emplace_back();
  }
  return place.number;
}

uint32_t PageCutter::InPageForm(uint32_t number) {
  KnownForm& form = forms_[number];
  if (form.inPage.page != page_) {
    const uint32_t word = InPageWord(form.word);
    form.inPage = {.page = page_, .number = static_cast<uint32_t>(out_->forms.size())};
    out_->forms.push_back({.word = word, .bytes = form.bytes});
    const std::string_view key = formKeys_[number];
    out_->formTexts += key.substr(key.size() - form.bytes);
  }
  return form.inPage.number;
}

void PageCutter::WriteToken(uint32_t token) {
  AppendNumber(token, out_->tokens);
  ++out_->tokenCount;
}

// Writes the signs behind the last word as one token. The next begins as `blankBehind` says.
void PageCutter::CloseGap(bool blankBehind) {
  if (!gap_.IsEmpty()) {
    const SignForm form = FormOf(gap_, blankBehind);
    scratch_.assign(1, static_cast<char>(form));
    scratch_ += gap_.text;
    const uint32_t known = signs_.FindOrAdd(scratch_);
    if (known == signsInPage_.size()) signsInPage_.emplace_back();
    InPage& place = signsInPage_[known];
    if (place.page != page_) {
      place = {.page = page_, .number = static_cast<uint32_t>(out_->signs.size())};
      out_->signs.push_back({.form = form, .bytes = static_cast<uint32_t>(gap_.text.size())});
      out_->signTexts += gap_.text;
    }
    ++out_->signs[place.number].count;
    WriteToken(SignsToken(place.number));
    afterPiece_ = false;
  }
  gap_.Clear(blankBehind);
}

// Counts an occurrence of the word. Returns what else is known of it.
PageCutter::PageWord& PageCutter::Count(uint32_t number, const Spot& spot) {
  WordOfPage& word = out_->words[number];
  PageWord& pageWord = pageWords_[number];
  word.zones |= spot.zone;
  if (spot.inBody) {
    NotePlace(number, spot.place, pageWord.places, places_);
  } else {
    // Title, description and address belong to the page as a whole and count as its beginning.
    word.blocks |= ProximityBit(0);
  }
  // A word and a part of it that reads the same ("a-a") are one occurrence.
  if (pageWord.lastToken == spot.token) return pageWord;
  if (word.total == 0) word.token = spot.token;
  pageWord.lastToken = spot.token;
  AddOne(word.total);
  if (spot.inBody) AddOne(word.body);
  return pageWord;
}

// Writes and counts a word.
PageCutter::Written PageCutter::WriteWord(uint32_t knownForm, bool isPiece, uint8_t zone,
                                          bool inBody) {
  if (afterPiece_ && isPiece && gap_.opens && gap_.IsEmpty()) gap_.ShowBlank();
  CloseGap(false);
  afterPiece_ = isPiece;
  const uint32_t form = InPageForm(knownForm);
  const uint32_t number = out_->forms[form].word;
  const uint32_t place = inBody ? out_->bodyWords++ : 0;
  const Written written = {.token = out_->tokenCount, .place = place, .word = number};
  PageWord& pageWord = Count(number, {written.token, place, zone, inBody});
  WordOfPage& word = out_->words[number];
  word.isWritten = true;
  if (forms_[knownForm].isWord) word.isOwnForm = true;
  if (zone == kInTitle) {
    word.zones |= kTitleWord | kTitlePart;
    if (!pageWord.isTitleWord) ++out_->titleWords;
    pageWord.isTitleWord = true;
  }
  WriteToken(FormToken(form));
  return written;
}

// Writes and counts the words of the chunk. Returns their number.
uint32_t PageCutter::WriteWords(const Chunk& chunk, uint8_t zone, bool inBody) {
  if (chunk.onlyForm != 0) {
    WriteWord(chunk.onlyForm - 1, false, zone, inBody);
    return 1;
  }
  uint32_t count = 0;
  written_.assign(chunk.tokens, {});
  for (uint32_t i = 0; i < chunk.tokens; ++i) {
    const ChunkToken& token = chunkTokens_[chunk.firstToken + i];
    if (token.kind == Kind::kNoWord) continue;
    if (token.kind == Kind::kBlank) {
      gap_.AddBlank();
    } else if (token.kind == Kind::kSign) {
      gap_.AddSign(signTexts_[token.number]);
    } else {
      written_[i] = WriteWord(token.number, token.isPiece, zone, inBody);
      ++count;
    }
  }
  return count;
}

// Counts the further forms by which words of the chunk are found.
void PageCutter::CountForms(const Chunk& chunk, uint8_t zone, bool inBody) {
  for (uint32_t i = 0; i < chunk.forms; ++i) {
    const ChunkForm& form = chunkForms_[chunk.firstForm + i];
    const Written& found = written_[form.token];
    const uint32_t number = out_->forms[InPageForm(form.form)].word;
    Count(number, {found.token, found.place, zone, inBody});
    WordOfPage& word = out_->words[number];
    if (form.isOwnForm) word.isOwnForm = true;
    if (zone != kInTitle || !form.isPart) continue;
    uint8_t& zones = out_->words[found.word].zones;
    zones = static_cast<uint8_t>(zones & ~kTitlePart);
    word.zones |= kTitlePart;
  }
}

void PageCutter::EndPhrase(RunningText& running) {
  if (inPhrase_) AppendNumber(RunningText::kBreak, running.sequence);
  inPhrase_ = false;
}

void PageCutter::AddRunning(const Chunk& chunk, RunningText& running) {
  if (chunk.plainBegins) EndPhrase(running);
  if (chunk.plainWord == 0) return;
  KnownRunningWord& known = knownRunning_[chunk.plainWord - 1];
  if (known.inPage.page != page_) {
    known.inPage = {.page = page_, .number = static_cast<uint32_t>(running.words.size())};
    const std::string_view text = runningWords_[chunk.plainWord - 1];
    running.words.push_back({.hash = known.hash, .bytes = static_cast<uint8_t>(text.size())});
    running.texts += text;
  }
  AppendNumber(known.inPage.number + 1, running.sequence);
  inPhrase_ = true;
  if (chunk.plainEnds) EndPhrase(running);
}

// Parts a heading from the text behind it, which passages show in one line.
void PageCutter::EndHeading() {
  if (!gap_.IsEmpty()) return;
  gap_.Clear(false);
  gap_.AddSign(afterPiece_ ? "\u3002" : ".");
}

// The chunks of a text, of which some are taken before their turn. What is known of them then comes
// into the processor's cache while those before are counted: it comes from all over the memory.
class PageCutter::ChunksAhead {
 public:
  ChunksAhead(const PageCutter& cutter, std::string_view text) : cutter_(cutter), text_(text) {}

  // The next one, which holds until the next call; null when there is none.
  const ChunkAhead* Next() {
    while (end_ - begin_ < kCount && Take(ahead_[end_ % kCount])) ++end_;
    if (begin_ == end_) return nullptr;
    const auto at = [this](size_t ahead) {
      return begin_ + ahead < end_ ? Guess(ahead_[(begin_ + ahead) % kCount]) : nullptr;
    };
    if (const KnownChunk* const known = at(kCount * 3 / 4)) __builtin_prefetch(known);
    if (const KnownChunk* const known = at(kCount / 2)) BringForm(known->chunk);
    if (const KnownChunk* const known = at(kCount / 4)) BringWord(known->chunk);
    return &ahead_[begin_++ % kCount];
  }

 private:
  static constexpr size_t kCount = 16;

  bool Take(ChunkAhead& chunk) {
    chunk.followsBlank = text_.starts_with(' ');
    chunk.text = NextChunk(text_);
    if (chunk.text.empty()) return false;
    chunk.hash = TextHash(chunk.text);
    cutter_.chunkTable_.Prefetch(chunk.hash);
    return true;
  }
  const KnownChunk* Guess(const ChunkAhead& chunk) const {
    const uint32_t number = cutter_.chunkTable_.Guess(chunk.hash);
    return number < cutter_.chunks_.size() ? &cutter_.chunks_[number] : nullptr;
  }
  void BringForm(const Chunk& chunk) const {
    if (chunk.plainWord != 0) __builtin_prefetch(&cutter_.knownRunning_[chunk.plainWord - 1]);
    if (chunk.onlyForm != 0) {
      __builtin_prefetch(&cutter_.forms_[chunk.onlyForm - 1]);
    } else if (chunk.tokens != 0) {
      __builtin_prefetch(&cutter_.chunkTokens_[chunk.firstToken]);
    }
  }
  // Of what is new on the page more is looked at.
  void BringWord(const Chunk& chunk) const {
    if (chunk.onlyForm == 0) return;
    const KnownForm& form = cutter_.forms_[chunk.onlyForm - 1];
    if (form.inPage.page == cutter_.page_) return;
    __builtin_prefetch(&cutter_.knownWords_[form.word]);
    cutter_.words_.Prefetch(form.word);
  }

  const PageCutter& cutter_;
  std::string_view text_;
  std::array<ChunkAhead, kCount> ahead_;  // chunk i at i % kCount
  size_t begin_ = 0;
  size_t end_ = 0;
};

// Cuts one run of text and writes its tokens, unless it is stopped. Returns the number of its
// words.
uint32_t PageCutter::CutRun(std::string_view text, uint8_t zone, bool inBody, bool isHeading,
                            RunningText* running) {
  uint32_t wordCount = 0;
  gap_.Clear(true);
  ChunksAhead chunks(*this, text);
  while (!IsStopped()) {
    const ChunkAhead* const next = chunks.Next();
    if (next == nullptr) break;
    const Chunk chunk = ChunkOf(*next);
    if (next->followsBlank) gap_.AddBlank();
    // Words that a chunk ends and the next begins with are still written without a blank.
    const bool arePieces = afterPiece_ && chunk.startsWithPiece;
    if (!next->followsBlank && !gap_.opens && gap_.IsEmpty() && !arePieces) {
      gap_.AddSign(Utf8Text(kWordBreakSign));
    }
    wordCount += WriteWords(chunk, zone, inBody);
    if (chunk.forms != 0) CountForms(chunk, zone, inBody);
    if (running != nullptr) AddRunning(chunk, *running);
    DropPassing(chunk);
  }
  if (rules_.endsHeadings && isHeading && wordCount != 0) EndHeading();
  CloseGap(true);
  if (running != nullptr) EndPhrase(*running);
  return wordCount;
}

// Cuts a text that stands behind the body, so that snippets show the body and phrases find all of
// it.
void PageCutter::AddRun(std::string_view text, Zone zone) {
  const size_t bytes = out_->tokens.size();
  const uint32_t count = out_->tokenCount;
  if (count != 0) WriteToken(kRunEndToken);
  afterPiece_ = false;
  if (CutRun(text, zone, false, false, nullptr) != 0) return;
  out_->tokens.resize(bytes);
  out_->tokenCount = count;
}

// Sets the blocks of the words now that the page's length is known.
void PageCutter::SetBlocks() {
  const uint32_t blockWords = ProximityBlockWords(out_->bodyWords);
  const auto set = [&](size_t number, uint32_t place) {
    if (place != kNoPlace) out_->words[number].blocks |= ProximityBit(place / blockWords);
  };
  for (const PlaceOfWord& each : places_) set(each.slot, each.place);
  for (size_t number = 0; number < pageWords_.size(); ++number) {
    set(number, pageWords_[number].places.before);
    set(number, pageWords_[number].places.last);
  }
}

bool PageCutter::Cut(const PageTexts& page, PageWords& out, RunningText* running) {
  BeginPage(out);
  for (const TextRun& run : page.content.body) {
    if (!run.anchor.empty()) {
      sections_.push_back(
          {.token = out.tokenCount, .run = static_cast<uint32_t>(&run - page.content.body.data())});
    }
    const bool isHeading = run.headingLevel != 0;
    CutRun(run.text, HeadingZone(WeightLevel(run)), true, isHeading, isHeading ? nullptr : running);
  }
  out.bodyTokens = out.tokenCount;
  AddRun(page.title, kInTitle);
  AddRun(page.content.description, kInDescription);
  SetBlocks();
  return !IsStopped();
}

void PageCutter::CutNames(std::string_view title, std::span<const std::string> texts,
                          PageWords& out) {
  BeginPage(out);
  AddRun(title, kInTitle);
  for (const std::string& text : texts) AddRun(text, kInDescription);
}

bool PageCutter::CutAddress(std::string_view text, PageWords& out) {
  BeginPage(out);
  AddRun(text, kInAddress);
  return !IsStopped();
}

}  // namespace vela::indexer
