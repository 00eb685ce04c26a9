#include "search/snippets.h"

#include <algorithm>

namespace vela {

namespace {

uint64_t PositionOf(const ResultEntry& entry, int32_t piece) {
  if (piece == 0) return entry.firstPosition;
  return piece == 1 ? entry.secondPosition : entry.thirdPosition;
}

bool AddSlot(SnippetPiece& piece, const SnippetSlot& slot) {
  const auto count = static_cast<size_t>(piece.count);
  constexpr size_t kFirstRoom = 64;
  if (count == piece.slots.size() && !piece.slots.TryResize(std::max(kFirstRoom, count * 2))) {
    return false;
  }
  piece.slots[count] = slot;
  ++piece.count;
  return true;
}

std::string_view SlotText(const SnippetSource& source, const SnippetSlot& slot) {
  if (slot.word >= source.dictionary.size()) return {};
  return source.dictionary.DisplayText(slot.word, slot.variant);
}

// The last slot of the phrase that begins at slot `first`; -1 when it does not stand there.
// Punctuation between the words is carried along.
int32_t FindPhrase(const SnippetSource& source, const SnippetPiece& piece, int32_t first,
                   std::string_view phrase) {
  const TextMode mode = WordMode(source.settings);
  int32_t last = -1;
  int32_t at = first;
  std::string_view word;
  while (NextPhraseWord(phrase, word)) {
    const auto slotAt = [&](int32_t i) -> const SnippetSlot& {
      return piece.slots[static_cast<size_t>(i)];
    };
    while (last >= 0 && at < piece.count && slotAt(at).word <= source.settings.DictReservedLimit) {
      ++at;
    }
    if (at >= piece.count || WordCompare(mode, word, SlotText(source, slotAt(at))) != 0) return -1;
    last = at++;
  }
  return last;
}

void MarkTerms(const SnippetSource& source, SnippetPiece& piece) {
  const TextMode mode = WordMode(source.settings);
  for (int32_t i = 0; i < piece.count; ++i) {
    SnippetSlot& slot = piece.slots[static_cast<size_t>(i)];
    const std::string_view text = SlotText(source, slot);
    for (const HighlightTerm& term : source.terms) {
      if (!term.isPhrase) {
        if (!MatchesTerm(mode, term, text)) continue;
        slot.mark = SlotMark::kWhole;
        break;
      }
      const int32_t last = FindPhrase(source, piece, i, term.text);
      if (last < 0) continue;
      slot.mark = last == i ? SlotMark::kWhole : SlotMark::kOpen;
      if (last > i) piece.slots[static_cast<size_t>(last)].mark = SlotMark::kClose;
      i = last;
      break;
    }
  }
}

// Reads the words of the piece from the reader's position on. False when memory is out.
bool ReadSlots(SnippetWalk& walk, const SnippetSource& source, uint64_t position, bool hasBackOff,
               SnippetPiece& piece) {
  const int64_t wordLimit = source.settings.NumKeywords;
  PageTextToken token;
  while (piece.count < walk.wordsPerPiece) {
    const uint64_t at = source.text.position;
    const int32_t consumed = ReadPageTextToken(source.text, token);
    const bool isMarker = consumed == 0 || EndsRun(token.word);
    if (!isMarker && token.word < wordLimit) {
      const bool isMatch = source.marksWords && at == position;
      if (!AddSlot(piece, {static_cast<int32_t>(token.word), token.variant,
                           isMatch ? SlotMark::kWhole : SlotMark::kNone})) {
        return false;
      }
      continue;
    }
    if (!isMarker && token.word == wordLimit) {
      ++piece.damagedTokens;
      continue;
    }
    if (!hasBackOff || at > position) {
      walk.stopped = true;
      break;
    }
    piece.count = 0;  // what was read belongs to the page before
    if (consumed == 0) {
      walk.stopped = true;
      break;
    }
  }
  if (token.word != kPageEndWord) walk.lastEnd = source.text.position;
  return true;
}

// Reads a piece that was planned, up to where its stretch of text ends.
bool ReadPlanned(const SnippetSource& source, const PassagePiece& planned, SnippetPiece& piece) {
  const PassageWords& words = source.plan->words;
  SeekPageText(source.text, planned.start);
  PageTextToken token;
  while (piece.count < planned.tokens) {
    if (ReadPageTextToken(source.text, token) == 0 || EndsRun(token.word)) break;
    if (token.word >= static_cast<uint32_t>(source.dictionary.size())) continue;
    const bool isMatch =
        source.marksWords && (words.TermsOf(token.word) & words.singleTerms()) != 0;
    if (!AddSlot(piece, {static_cast<int32_t>(token.word), token.variant,
                         isMatch ? SlotMark::kWhole : SlotMark::kNone})) {
      return false;
    }
  }
  return true;
}

// Whether the piece says anything: some of it is written with letters.
bool HasLetters(const SnippetSource& source, const SnippetPiece& piece) {
  for (int32_t i = 0; i < piece.count; ++i) {
    const SnippetSlot& slot = piece.slots[static_cast<size_t>(i)];
    if (slot.word > source.settings.DictReservedLimit && IsLetterText(SlotText(source, slot))) {
      return true;
    }
  }
  return false;
}

// As NextPiece, of those that were planned.
SnippetStatus NextPlanned(SnippetWalk& walk, const SnippetSource& source, SnippetPiece& piece) {
  while (walk.next < source.plan->count) {
    piece.count = 0;
    piece.damagedTokens = 0;
    const PassagePiece& planned = source.plan->pieces[static_cast<size_t>(walk.next++)];
    if (!ReadPlanned(source, planned, piece)) return SnippetStatus::kNoMemory;
    if (!HasLetters(source, piece)) continue;
    if (source.marksWords) MarkTerms(source, piece);
    return SnippetStatus::kPiece;
  }
  return SnippetStatus::kDone;
}

}  // namespace

SnippetWalk StartSnippets(const Settings& settings, const ResultEntry& entry) {
  SnippetWalk walk;
  walk.pieces =
      static_cast<int32_t>(std::min<int64_t>(entry.termsMatched, settings.MaxContextKeywords));
  if (walk.pieces <= 0) return walk;
  const int64_t words =
      (int64_t{settings.ContextSize} + (settings.ContextSize > 0 ? walk.pieces - 1 : 0)) /
      walk.pieces;
  walk.wordsPerPiece = static_cast<int32_t>(words);
  walk.backOff = int64_t{settings.DictIDLen} * (words / 2);
  return walk;
}

SnippetStatus NextPiece(SnippetWalk& walk, const SnippetSource& source, const ResultEntry& entry,
                        SnippetPiece& piece) {
  if (source.plan != nullptr) return NextPlanned(walk, source, piece);
  const int32_t number = walk.next;
  if (walk.stopped || number >= walk.pieces || (number > 0 && source.text.atEnd)) {
    return SnippetStatus::kDone;
  }
  ++walk.next;
  piece.count = 0;
  piece.damagedTokens = 0;
  const uint64_t position = PositionOf(entry, number);
  const bool hasBackOff = static_cast<int64_t>(position) > walk.backOff;
  uint64_t start =
      hasBackOff ? static_cast<uint64_t>(static_cast<int64_t>(position) - walk.backOff) : position;
  const bool isBehind = start > walk.lastStart || start > walk.firstStart;
  if (number > 0 && isBehind && start < walk.lastEnd) start = walk.lastEnd;
  if (number == 0) walk.firstStart = start;
  walk.lastStart = start;
  SeekPageText(source.text, start);
  if (!ReadSlots(walk, source, position, hasBackOff, piece)) return SnippetStatus::kNoMemory;
  if (source.marksWords) MarkTerms(source, piece);
  return SnippetStatus::kPiece;
}

}  // namespace vela
