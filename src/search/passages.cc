#include "search/passages.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "format/page_text.h"
#include "index/byte_cursor.h"
#include "search/highlight_terms.h"
#include "search/query.h"
#include "text/ascii.h"
#include "text/run_cut.h"
#include "text/wildcard.h"

namespace vela {

namespace {

// Tokens of a page that are looked at from the first word found on, and around one found behind.
constexpr size_t kScanTokens = 3072;
constexpr size_t kScanBehind = 256;
constexpr size_t kHitLimit = 256;

// A title, a description and an address are seldom longer; they stand behind the running text.
constexpr size_t kTailTokens = 256;

// A page's beginning is looked for so far ahead of its title. None of more text is shown by it.
constexpr size_t kPageTokens = size_t{1} << 20;

// Windows that are looked at more closely.
constexpr size_t kShortListed = 8;

// A word of the query that is in no dictionary, or many words of it.
constexpr int32_t kUnknownWeight = 16;

// Score: what one step of a word's weight, one token between words, one common word (up to a
// number of them), one sign too many, a sentence's beginning count for.
constexpr int32_t kWeightScore = 16;
constexpr int32_t kTokenScore = 2;
constexpr int32_t kOrderScore = 3;
constexpr int32_t kCommonScore = 6;
constexpr int32_t kCommonCounted = 8;
constexpr int32_t kSignScore = 5;
constexpr int32_t kSentenceScore = 24;

// Behind these the parts of a joined word go on.
constexpr std::string_view kJoints = ".-_";

// Whether `part` stands in `word` between its ends or joints.
bool HoldsPart(std::string_view word, std::string_view part) {
  for (size_t at = word.find(part); at != word.npos; at = word.find(part, at + 1)) {
    const size_t end = at + part.size();
    if ((at == 0 || kJoints.find(word[at - 1]) != kJoints.npos) &&
        (end == word.size() || kJoints.find(word[end]) != kJoints.npos)) {
      return true;
    }
  }
  return false;
}

// The page text as tokens with numbers of their own, from the start of the file.
class TokenText {
 public:
  TokenText(std::string_view bytes, const Settings& settings)
      : bytes_(bytes),
        size_(settings.DictIDLen < 2 || settings.DictIDLen > static_cast<int32_t>(kTokenWidthLimit)
                  ? 0
                  : static_cast<size_t>(settings.DictIDLen)),
        count_(size_ == 0 ? 0 : bytes.size() / size_),
        mask_(static_cast<uint32_t>(LargestNumber(size_ == 0 ? 1 : size_ - kTokenVariantWidth))) {}

  size_t count() const { return count_; }
  // Where a position lies; count() for one that is none.
  size_t IndexOf(uint64_t position) const {
    if (size_ == 0 || position % size_ != 0) return count_;
    return static_cast<size_t>(std::min<uint64_t>(position / size_, count_));
  }
  uint64_t PositionOf(size_t index) const { return uint64_t{index} * size_; }
  // The word of token `index`, below count().
  uint32_t WordAt(size_t index) const {
    const size_t at = index * size_;
    uint32_t word = 0;
    if (bytes_.size() - at >= sizeof word) {
      memcpy(&word, bytes_.data() + at, sizeof word);
      return word & mask_;
    }
    return static_cast<uint32_t>(ReadLittleEndian(bytes_, at, size_ - kTokenVariantWidth));
  }

  // The first token from `from` on, below `end`, whose word meets the test; `end` for none.
  template <typename Test>
  size_t Find(size_t from, size_t end, Test test) const {
    // A whole number can be read from all but the last tokens.
    const size_t plain = std::min(end, count_ < sizeof(uint32_t) ? 0 : count_ - sizeof(uint32_t));
    const char* at = bytes_.data() + from * size_;
    for (; from < plain; ++from, at += size_) {
      uint32_t word = 0;
      memcpy(&word, at, sizeof word);
      if (test(word & mask_)) return from;
    }
    while (from < end && !test(WordAt(from))) ++from;
    return from;
  }

 private:
  std::string_view bytes_;
  size_t size_;  // of a token; 0: there are none to read
  size_t count_;
  uint32_t mask_;
};

// A token that stands for words of the query.
struct Hit {
  size_t token = 0;
  PassageWords::Terms terms = 0;
};

struct Hits {
  std::array<Hit, kHitLimit> all;
  size_t count = 0;
  PassageWords::Terms terms = 0;  // of all
};

// From one hit to another, with what lies between.
struct Window {
  size_t first = 0;  // tokens
  size_t last = 0;
  PassageWords::Terms terms = 0;
  int32_t score = 0;
};

class Planner {
 public:
  Planner(const PassageInput& input, const ResultEntry& entry, PassagePlan& plan)
      : input_(input),
        text_(input.pageText, input.settings),
        entry_(entry),
        plan_(plan),
        lastSign_(static_cast<uint32_t>(std::max(input.settings.DictReservedLimit, 0))) {}

  void Plan();

 private:
  void FindHits();
  size_t Scan(size_t from, size_t end);
  bool IsInTail(size_t token) const;
  size_t StartOfPage(size_t token) const;
  void ShowBeginning();
  Window BestWindow(size_t length, PassageWords::Terms wanted, const PassagePiece* taken) const;
  Window WindowFrom(size_t hit, size_t length, PassageWords::Terms wanted) const;
  int32_t ScoreOf(PassageWords::Terms terms) const;
  PassagePiece PieceOf(const Window& window, size_t length) const;
  int32_t QualityOf(const PassagePiece& piece) const;
  size_t LengthAt(size_t token) const;
  bool IsSign(uint32_t word) const { return !EndsRun(word) && word <= lastSign_; }
  bool BeginsSentence(size_t token) const;
  bool EndsSentence(uint32_t sign) const;
  std::string_view TextOf(uint32_t word) const;
  PassageWords::Terms TermsAt(size_t token) const {
    return plan_.words.TermsOf(text_.WordAt(token));
  }

  const PassageInput& input_;
  TokenText text_;
  const ResultEntry& entry_;
  PassagePlan& plan_;
  uint32_t lastSign_;
  Hits hits_;
};

std::string_view Planner::TextOf(uint32_t word) const {
  if (word >= static_cast<uint32_t>(std::max(input_.dictionary.size(), 0))) return {};
  return input_.dictionary.WordAt(static_cast<int32_t>(word));
}

// How many tokens make a passage that begins near the token. A piece of a script without blanks
// takes a third of the room that a word takes.
size_t Planner::LengthAt(size_t token) const {
  constexpr size_t kTokensSeen = 24;
  constexpr size_t kStep = 3;  // a look into the dictionary takes its time
  constexpr size_t kPiecesPerWord = 3;
  const auto length = static_cast<size_t>(input_.settings.ContextSize);
  if (!CutsRuns(input_.settings)) return length;
  size_t pieces = 0;
  size_t seen = 0;
  const size_t end = std::min(token + kTokensSeen, text_.count());
  for (size_t i = token; i < end; i += kStep, ++seen) {
    const uint32_t word = text_.WordAt(i);
    if (!EndsRun(word) && RunPieceLength(TextOf(word)) != 0) ++pieces;
  }
  return pieces * 3 >= seen ? length * kPiecesPerWord : length;
}

bool Planner::EndsSentence(uint32_t sign) const {
  if (!IsSign(sign) || static_cast<int64_t>(sign) > input_.settings.DictReservedSuffixes) {
    return false;
  }
  const std::string_view text = TextOf(sign);
  if (text.find_first_of(".!?") != text.npos) return true;
  // The full stops of Chinese and Japanese, in UTF-8.
  return std::ranges::any_of(
      std::array<std::string_view, 3>{"\u3002", "\uFF01", "\uFF1F"},
      [text](std::string_view stop) { return text.find(stop) != text.npos; });
}

// Whether a sentence begins with the token: behind a full stop, and not in lower case.
bool Planner::BeginsSentence(size_t token) const {
  if (token == 0) return true;
  const uint32_t before = text_.WordAt(token - 1);
  if (EndsRun(before)) return true;
  const uint32_t word = text_.WordAt(token);
  if (IsSign(word) || !EndsSentence(before)) return false;
  // The variant writes the word as the page does.
  const auto at = static_cast<size_t>(text_.PositionOf(token));
  const auto size = static_cast<size_t>(input_.settings.DictIDLen);
  const auto variant = static_cast<unsigned char>(input_.pageText[at + size - kTokenVariantWidth]);
  if (word >= static_cast<uint32_t>(std::max(input_.dictionary.size(), 0))) return false;
  const std::string_view text = input_.dictionary.DisplayText(static_cast<int32_t>(word), variant);
  return !text.empty() && (text[0] < 'a' || text[0] > 'z');
}

// Adds the hits from `from` on; returns where it ended: at `end`, or where the stretch of text
// does.
size_t Planner::Scan(size_t from, size_t end) {
  end = std::min(end, text_.count());
  const PassageWords& words = plan_.words;
  for (size_t token = from; hits_.count < kHitLimit; ++token) {
    token = text_.Find(token, end,
                       [&words](uint32_t word) { return words.MayKnow(word) || EndsRun(word); });
    if (token == end) break;
    const uint32_t word = text_.WordAt(token);
    if (EndsRun(word)) return token;
    const PassageWords::Terms terms = words.TermsOf(word);
    if (terms == 0) continue;
    hits_.all[hits_.count++] = {token, terms};
    hits_.terms |= terms;
  }
  return end;
}

// Whether the token stands behind the running text of its page.
bool Planner::IsInTail(size_t token) const {
  for (size_t i = 0; i < kTailTokens && token > 0; ++i) {
    const uint32_t word = text_.WordAt(--token);
    if (word == kRunEndWord) return true;
    if (word == kPageEndWord) return false;
  }
  return false;
}

void Planner::FindHits() {
  std::array<size_t, 3> places = {};  // ascending
  std::array<uint32_t, 3> words = {};
  size_t count = 0;
  for (const uint64_t* position :
       {&entry_.firstPosition, &entry_.secondPosition, &entry_.thirdPosition}) {
    const bool isGiven = position == &entry_.firstPosition || *position != 0;
    if (!isGiven) continue;
    const size_t place = text_.IndexOf(*position);
    if (place >= text_.count()) continue;
    const uint32_t word = text_.WordAt(place);
    if (EndsRun(word) || IsSign(word)) continue;
    words[count] = word;
    size_t at = count++;
    for (; at > 0 && places[at - 1] > place; --at) places[at] = places[at - 1];
    places[at] = place;
  }
  plan_.words.AddFound({words.data(), count}, input_.dictionary);
  size_t end = 0;
  for (size_t i = 0; i < count; ++i) {
    if (places[i] < end || IsInTail(places[i])) continue;
    const bool isFirst = end == 0;
    const size_t ahead = std::min(places[i] - end, static_cast<size_t>(kScanBehind / 4));
    // What stands ahead of the first of all words holds none of them.
    end = Scan(isFirst ? places[i] : places[i] - ahead,
               places[i] + (isFirst ? kScanTokens : kScanBehind));
  }
}

int32_t Planner::ScoreOf(PassageWords::Terms terms) const {
  int32_t weight = 0;
  for (; terms != 0; terms &= terms - 1) {
    weight += plan_.words.WeightOf(static_cast<size_t>(std::countr_zero(terms)));
  }
  return weight * kWeightScore;
}

// The shortest window from the hit on that holds as much of what is wanted as `length` tokens do.
Window Planner::WindowFrom(size_t hit, size_t length, PassageWords::Terms wanted) const {
  const Hit& first = hits_.all[hit];
  Window window = {first.token, first.token, first.terms & wanted, 0};
  int32_t order = 0;
  PassageWords::Terms former = first.terms;
  for (size_t i = hit + 1; i < hits_.count && hits_.all[i].token - first.token < length; ++i) {
    const PassageWords::Terms terms = hits_.all[i].terms & wanted;
    if ((terms & ~window.terms) != 0) {
      window.last = hits_.all[i].token;
      window.terms |= terms;
      if ((former << 1 & terms) != 0) ++order;
    }
    former = hits_.all[i].terms;
  }
  window.score = ScoreOf(window.terms) + order * kOrderScore -
                 static_cast<int32_t>(window.last - window.first) * kTokenScore;
  return window;
}

int32_t Planner::QualityOf(const PassagePiece& piece) const {
  const size_t from = text_.IndexOf(piece.start);
  const size_t end = std::min(from + static_cast<size_t>(piece.tokens), text_.count());
  int32_t common = 0;
  int32_t signs = 0;
  int32_t tokens = 0;
  for (size_t token = from; token < end; ++token, ++tokens) {
    const uint32_t word = text_.WordAt(token);
    if (EndsRun(word)) break;
    if (IsSign(word)) ++signs;
    if (plan_.words.IsCommon(word)) ++common;
  }
  return std::min(common, kCommonCounted) * kCommonScore -
         std::max(signs - tokens / 4, 0) * kSignScore + (BeginsSentence(from) ? kSentenceScore : 0);
}

// The piece to show of a window: from the beginning of a sentence when one is so near that the
// whole window fits.
PassagePiece Planner::PieceOf(const Window& window, size_t length) const {
  const size_t span = window.last - window.first + 1;
  const size_t room = length > span ? length - span : 0;
  const size_t farthest = window.first - std::min(window.first, room - room / 8);
  size_t start = window.first;
  while (start != farthest && !BeginsSentence(start)) --start;
  if (!BeginsSentence(start)) {
    start = window.first - std::min(window.first, std::min(length / 3, room / 2));
    // Not from the middle of signs.
    while (start < window.first && IsSign(text_.WordAt(start))) ++start;
  }
  return {text_.PositionOf(start), static_cast<int32_t>(length)};
}

Window Planner::BestWindow(size_t length, PassageWords::Terms wanted,
                           const PassagePiece* taken) const {
  std::array<Window, kShortListed> list;
  size_t listed = 0;
  for (size_t hit = 0; hit < hits_.count; ++hit) {
    if ((hits_.all[hit].terms & wanted) == 0) continue;
    const Window window = WindowFrom(hit, length, wanted);
    size_t place = listed;
    while (place > 0 && list[place - 1].score < window.score) --place;
    if (place == kShortListed) continue;
    if (listed < kShortListed) ++listed;
    std::move_backward(list.begin() + place, list.begin() + listed - 1, list.begin() + listed);
    list[place] = window;
  }
  Window best;
  for (size_t i = 0; i < listed; ++i) {
    Window& window = list[i];
    const PassagePiece piece = PieceOf(window, length);
    if (taken != nullptr) {
      const size_t start = text_.IndexOf(piece.start);
      const size_t other = text_.IndexOf(taken->start);
      if (start < other + static_cast<size_t>(taken->tokens) && other < start + length) continue;
    }
    window.score += QualityOf(piece);
    if (best.terms == 0 || window.score > best.score) best = window;
  }
  return best;
}

// The first token of the page that the token is on; of a page of more than kPageTokens, one of
// them.
size_t Planner::StartOfPage(size_t token) const {
  const size_t least = token - std::min(token, kPageTokens);
  while (token > least && text_.WordAt(token - 1) != kPageEndWord) --token;
  return token;
}

// How the running text of the page begins, without the title when it is repeated there.
void Planner::ShowBeginning() {
  const size_t found = text_.IndexOf(entry_.firstPosition);
  if (found >= text_.count()) return;
  size_t token = StartOfPage(found);
  if (token > 0 && text_.WordAt(token - 1) != kPageEndWord) return;
  size_t title = found;
  for (size_t i = 0; i < kTailTokens && title > 0 && !EndsRun(text_.WordAt(title - 1)); ++i) {
    --title;
  }
  const auto pass = [this](size_t& at) {
    while (at < text_.count() && IsSign(text_.WordAt(at))) ++at;
    return at < text_.count() ? text_.WordAt(at) : kPageEndWord;
  };
  size_t next = token;
  for (size_t at = title; at < text_.count(); ++at, ++next) {
    const uint32_t word = pass(at);
    if (EndsRun(word) || word != pass(next)) break;
  }
  pass(next);
  // Only a title that is repeated to a good part.
  if (next > token + 1) token = next;
  plan_.pieces[0] = {text_.PositionOf(token), static_cast<int32_t>(LengthAt(token))};
  plan_.count = 1;
}

void Planner::Plan() {
  plan_.words = input_.words;
  plan_.count = 0;
  if (input_.settings.ContextSize <= 0 || input_.settings.MaxContextKeywords <= 0) return;
  FindHits();
  plan_.isInText = hits_.count > 0;
  if (!plan_.isInText) return ShowBeginning();
  const size_t length = LengthAt(hits_.all[0].token);
  Window window = BestWindow(length, hits_.terms, nullptr);
  plan_.answer = text_.PositionOf(window.first);
  plan_.pieces[0] = PieceOf(window, length);
  plan_.count = 1;
  const PassageWords::Terms missing = hits_.terms & ~window.terms;
  if (missing == 0 || input_.settings.MaxContextKeywords < 2) return;
  const size_t half = (length + 1) / 2;
  window = BestWindow(half, hits_.terms, nullptr);
  const PassagePiece first = PieceOf(window, half);
  const Window second = BestWindow(half, hits_.terms & ~window.terms, &first);
  if (second.terms == 0) return;
  plan_.answer = text_.PositionOf(window.first);
  plan_.pieces = {first, PieceOf(second, half)};
  plan_.count = 2;
}

}  // namespace

bool IsLetterText(std::string_view text) {
  return std::ranges::any_of(text, [](char c) {
    const char lower = ToLowerAscii(c);
    return (lower >= 'a' && lower <= 'z') || static_cast<unsigned char>(c) >= 0x80;
  });
}

PassageWords::Terms PassageWords::Find(uint32_t word) const {
  for (size_t at = SlotOf(word); slots_[at].terms != 0; at = (at + 1) % kSlots) {
    if (slots_[at].word == word) return slots_[at].terms;
  }
  return 0;
}

void PassageWords::Add(uint32_t word, Terms terms) {
  if (terms == 0) return;
  size_t at = SlotOf(word);
  while (slots_[at].terms != 0 && slots_[at].word != word) at = (at + 1) % kSlots;
  if (slots_[at].terms == 0) {
    if (words_ == kWordLimit) return;
    ++words_;
    slots_[at].word = word;
    filter_[word / 64 % kFilterWords] |= uint64_t{1} << (word % 64);
  }
  slots_[at].terms |= terms;
}

PassageWords::Terms PassageWords::PartsIn(std::string_view text) const {
  Terms terms = 0;
  if (text.find_first_of(kJoints) == text.npos) return 0;
  for (size_t i = 0; i < terms_; ++i) {
    if (!texts_[i].empty() && HoldsPart(text, texts_[i])) terms |= Terms{1} << i;
  }
  return terms;
}

void PassageWords::AddFound(std::span<const uint32_t> words, const Dictionary& dictionary) {
  Terms missing = static_cast<Terms>((uint64_t{1} << terms_) - 1);
  for (const uint32_t word : words) {
    if (word < static_cast<uint32_t>(std::max(dictionary.size(), 0))) {
      Add(word, PartsIn(dictionary.WordAt(static_cast<int32_t>(word))));
    }
    missing &= ~TermsOf(word);
  }
  for (const uint32_t word : words) {
    if (TermsOf(word) != 0 || missing == 0) continue;
    // The rarest, since a common word is written on nearly every page.
    size_t rarest = 0;
    for (size_t i = 0; i < terms_; ++i) {
      const bool isBetter = (missing >> rarest & 1) == 0 || weights_[i] > weights_[rarest];
      if ((missing >> i & 1) != 0 && isBetter) rarest = i;
    }
    Add(word, Terms{1} << rarest);
    missing &= ~(Terms{1} << rarest);
  }
}

// Words that begin so stand for the term if they are what it asks for: joined with it, or what its
// asterisks stand for.
void PassageWords::AddListed(std::string_view beginning, std::string_view word, Terms term,
                             const Dictionary& dictionary) {
  constexpr size_t kListed = 24;
  std::array<uint32_t, kListed> numbers = {};
  const size_t count = dictionary.ListByBeginning(beginning, numbers);
  for (const uint32_t number : std::span(numbers).first(count)) {
    const std::string_view text = dictionary.WordAt(static_cast<int32_t>(number));
    if (HasWildcard(word) ? MatchesWildcard(text, word, true) : HoldsPart(text, word)) {
      Add(number, term);
    }
  }
}

void PassageWords::AddTerm(std::string_view word, const Dictionary& dictionary, int32_t from) {
  if (terms_ == kTermLimit || word.empty()) return;
  const Terms term = Terms{1} << terms_;
  weights_[terms_] = kUnknownWeight;
  if (HasWildcard(word)) {
    AddListed(word.substr(0, word.find_first_of("*?")), word, term, dictionary);
  } else {
    const int32_t number = dictionary.FindExact(word, from);
    if (number >= from) {
      weights_[terms_] = static_cast<int32_t>(std::bit_width(static_cast<uint32_t>(number - from)));
      Add(static_cast<uint32_t>(number), term);
    }
    weights_[terms_] = std::max(weights_[terms_], 1);
    for (const char joint : kJoints) {
      FixedText<kQuerySize + 1> beginning;
      Append(beginning, word);
      Append(beginning, {&joint, 1});
      AddListed(View(beginning), word, term, dictionary);
    }
  }
  ++terms_;
}

void PassageWords::Collect(std::span<const SearchedTerm> terms, const Dictionary& dictionary,
                           const Settings& settings) {
  *this = PassageWords();
  const int32_t from = FirstSearchedWord(settings);
  firstWord_ = static_cast<uint32_t>(from);
  for (uint32_t i = 0; i < kCommonWords; ++i) {
    const int64_t number = int64_t{from} + i;
    if (number >= dictionary.size()) break;
    if (IsLetterText(dictionary.WordAt(static_cast<int32_t>(number)))) common_ |= uint64_t{1} << i;
  }
  for (const SearchedTerm& term : terms) {
    std::string_view words = View(term.word);
    if (term.shown.starts_with('-') || ReadSiteRestriction(words).active) continue;
    if (words.find(' ') == words.npos) {
      if (terms_ < kTermLimit) {
        texts_[terms_] = words;
        single_ |= Terms{1} << terms_;
      }
      AddTerm(words, dictionary, from);
      continue;
    }
    std::string_view word;
    while (NextPhraseWord(words, word)) AddTerm(word, dictionary, from);
  }
  // A joined word stands for every term that it holds ("json.load" for both its parts).
  for (Slot& slot : slots_) {
    if (slot.terms == 0) continue;
    slot.terms |= PartsIn(dictionary.WordAt(static_cast<int32_t>(slot.word)));
  }
}

void PlanPassages(const PassageInput& input, const ResultEntry& entry, PassagePlan& plan) {
  Planner(input, entry, plan).Plan();
}

}  // namespace vela
