#include "indexer/words/word_cut.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <span>

#include "indexer/words/compatible_text.h"
#include "indexer/words/eight_bytes.h"
#include "indexer/words/find_byte.h"
#include "indexer/words/korean_forms.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/plain_forms.h"
#include "indexer/words/query_folding.h"
#include "text/ascii.h"
#include "text/lower.h"
#include "text/run_cut.h"
#include "text/word_split.h"

namespace vela::indexer {

namespace {

constexpr TextToken kWordBreak = {.sign = kWordBreakSign, .base = {}, .surface = "\u200B"};
constexpr TextToken kBlank = {.sign = kBlankSign, .base = {}, .surface = " "};

// More signs in a row than this are a ruler or a drawing, not text: of one sign, and of any. What
// is quoted in brackets, "('~', '...')", takes nine.
constexpr size_t kSameSignLimit = 4;
constexpr size_t kSignRunLimit = 12;

// A cut of one chunk under way.
struct ChunkCut {
  ChunkTokens& out;
  size_t next = 0;  // the first character whose sign is not written yet
};

char ByteOf(const ChunkCut& cut, const ChunkCharacter& c) { return cut.out.lower[c.at]; }

bool IsWord(const ChunkCharacter& c) { return c.kind == CharacterKind::kWord; }

bool IsOneOf(char byte, std::string_view set) { return set.find(byte) != set.npos; }

// The first character at or behind byte `at`.
size_t CharacterAt(const ChunkCut& cut, size_t at) {
  const auto& characters = cut.out.characters;
  const auto found = std::ranges::lower_bound(characters, at, {}, &ChunkCharacter::at);
  return static_cast<size_t>(found - characters.begin());
}

size_t ByteAt(const ChunkCut& cut, size_t character) {
  const auto& characters = cut.out.characters;
  return character < characters.size() ? characters[character].at : cut.out.lower.size();
}

// The first word at or behind token `token`; the count of tokens when there is none.
size_t FirstWordFrom(const ChunkCut& cut, size_t token) {
  while (token < cut.out.tokens.size() && cut.out.tokens[token].sign != 0) ++token;
  return token;
}

bool HasWord(const ChunkCut& cut, size_t first, size_t last) {
  const auto characters = std::span(cut.out.characters).subspan(first, last - first);
  return std::ranges::any_of(characters, IsWord);
}

// Writes the signs among the characters next .. end.
void WriteSigns(ChunkCut& cut, size_t end) {
  size_t written = 0;
  size_t same = 0;
  char32_t former = 0;
  for (; cut.next < end; ++cut.next) {
    const ChunkCharacter& c = cut.out.characters[cut.next];
    if (c.kind != CharacterKind::kSymbol) continue;
    same = c.character == former ? same + 1 : 1;
    former = c.character;
    if (same > kSameSignLimit || written == kSignRunLimit) continue;
    const std::string_view surface = cut.out.surface;
    cut.out.tokens.push_back(
        {.sign = c.character, .base = {}, .surface = surface.substr(c.at, c.length)});
    ++written;
  }
}

// A form that no query can hold is no use: a quote ends a term, "*" and "?" make a pattern of it, a
// colon stays only in a restriction to a site; and "<" and ">" are kept out of the dictionary,
// whose words are shown as they stand.
bool IsFindable(std::string_view form) {
  return !form.empty() && form.size() <= kWordBytesLimit &&
         form.find_first_of("\"*?:<>") == form.npos;
}

void AddForm(ChunkCut& cut, size_t token, std::string_view text) {
  if (text == cut.out.tokens[token].base || !IsFindable(text)) return;
  if (!cut.out.isAscii && text.find("i\xB0") != text.npos) {
    AddForm(cut, token, WithoutRestsOfDottedI(text));  // as the spelling of a part, it is text
    return;
  }
  // No query holds a run of several pieces.
  const bool isCut =
      cut.out.runs == RunCut::kPieces && !cut.out.isAscii && RunPieceLength(text) != text.size();
  if (isCut && HasRunPiece(text)) return;
  cut.out.forms.push_back({static_cast<uint32_t>(token), std::string(text)});
}

// Adds a word as a query has it, without the hyphens that would make an exclusion of it (the mark
// of an emoji, which queries drop, may stand before them), and also without those behind it, which
// queries keep only at their end.
void AddQueryForm(ChunkCut& cut, size_t token, std::string_view word) {
  constexpr std::string_view kEmojiMark = "\uFE0F";
  std::string_view rest = word;
  while (rest.starts_with(kEmojiMark)) rest.remove_prefix(kEmojiMark.size());
  if (rest.starts_with('-')) word = rest.substr(std::min(rest.find_first_not_of('-'), rest.size()));
  AddForm(cut, token, word);
  if (word.ends_with('-')) AddForm(cut, token, word.substr(0, word.find_last_not_of('-') + 1));
}

// Calls `use(word)` for each word that the query's cut makes of `text`, which it changes.
template <typename Use>
void ForEachQueryWord(std::string& text, Use use) {
  BlankFoldedSigns(text);
  text.resize(SeparateWords(text.data(), text.size(), kWordJoinChars));
  for (size_t begin = text.find_first_not_of(' '); begin != text.npos;) {
    const size_t end = std::min(text.find(' ', begin), text.size());
    use(std::string_view(text).substr(begin, end - begin));
    begin = text.find_first_not_of(' ', end);
  }
}

// The forms of a word or of a part of one, `surface` of the chunk, other than the word `token`
// itself.
void AddForms(ChunkCut& cut, size_t token, std::string_view surface) {
  if (cut.out.isAscii) {
    const auto begin = static_cast<size_t>(surface.data() - cut.out.surface.data());
    AddForm(cut, token, std::string_view(cut.out.lower).substr(begin, surface.size()));
    return;
  }
  AddForm(cut, token, LowerUtf8Copy(surface));
  for (const std::string& form : PlainForms(surface)) AddForm(cut, token, form);
  AddForm(cut, token, LowerUtf8Copy(WithoutParticle(surface)));
  std::string compatible = LowerUtf8Copy(CompatibleText(surface));
  if (compatible.empty()) return;
  ForEachQueryWord(compatible, [&](std::string_view word) {
    AddForm(cut, token, word);
    for (const std::string& form : PlainForms(word)) AddForm(cut, token, form);
  });
}

// Calls `use(first, last)` for each longest run of word characters among first .. last.
template <typename Use>
void ForEachPart(const ChunkCut& cut, size_t first, size_t last, Use use) {
  for (size_t i = first; i < last;) {
    if (!IsWord(cut.out.characters[i])) {
      ++i;
      continue;
    }
    size_t end = i;
    while (end < last && IsWord(cut.out.characters[end])) ++end;
    use(i, end);
    i = end;
  }
}

std::string_view SurfaceOf(const ChunkCut& cut, size_t first, size_t last) {
  const size_t begin = ByteAt(cut, first);
  return std::string_view(cut.out.surface).substr(begin, ByteAt(cut, last) - begin);
}

// Appends the word of `surface`, a piece of the chunk, unless it is too long.
bool WriteToken(ChunkCut& cut, std::string_view surface) {
  if (surface.size() > kWordBytesLimit) return false;
  const auto begin = static_cast<size_t>(surface.data() - cut.out.surface.data());
  const size_t token = cut.out.tokens.size();
  cut.out.tokens.push_back(
      {0, std::string_view(cut.out.lower).substr(begin, surface.size()), surface});
  AddForms(cut, token, surface);
  return true;
}

// Writes the characters first .. last as the words that word_breaks.h finds, and the signs before
// them. Each two words that follow each other are a form of the first.
void WriteBrokenPart(ChunkCut& cut, size_t first, size_t last) {
  WriteSigns(cut, first);
  cut.next = last;
  const std::string_view part = SurfaceOf(cut, first, last);
  const size_t firstToken = cut.out.tokens.size();
  size_t begin = 0;
  size_t begunBefore = 0;
  bool followsWord = false;  // the token written last is the word that ends at `begin`
  for (const uint32_t end : cut.out.breaks.EndsOf(part)) {
    const size_t before = cut.out.tokens.size() - 1;
    if (followsWord) {
      AddForms(cut, before, part.substr(begunBefore, end - begunBefore));
      cut.out.tokens.push_back(kWordBreak);
    }
    followsWord = WriteToken(cut, part.substr(begin, end - begin));
    begunBefore = begin;
    begin = end;
  }
  if (firstToken < cut.out.tokens.size()) AddForms(cut, firstToken, part);
}

// Writes the characters first .. last as one word, and the signs before them; as its parts if it is
// too long, and as several where no blanks are written.
void WriteWord(ChunkCut& cut, size_t first, size_t last) {
  const auto& characters = cut.out.characters;
  const std::string_view surface = SurfaceOf(cut, first, last);
  const bool isBroken =
      cut.out.runs == RunCut::kWords && !cut.out.isAscii &&
      std::any_of(characters.begin() + static_cast<ptrdiff_t>(first),
                  characters.begin() + static_cast<ptrdiff_t>(last),
                  [](const ChunkCharacter& c) { return IsWrittenWithoutBlanks(c.character); });
  if (isBroken || surface.size() > kWordBytesLimit) {
    const size_t firstToken = cut.out.tokens.size();
    size_t inParts = 0;
    ForEachPart(cut, first, last, [&](size_t a, size_t b) {
      WriteBrokenPart(cut, a, b);
      inParts += b - a;
    });
    const size_t token = FirstWordFrom(cut, firstToken);
    if (token < cut.out.tokens.size() && inParts < last - first) AddForms(cut, token, surface);
    return;
  }
  WriteSigns(cut, first);
  cut.next = last;
  const size_t token = cut.out.tokens.size();
  WriteToken(cut, surface);
  ForEachPart(cut, first, last, [&](size_t a, size_t b) {
    if (a != first || b != last) AddForms(cut, token, SurfaceOf(cut, a, b));
  });
}

// Takes off first .. last what a query keeps and a visitor does not mean: leading hyphens (an
// exclusion) and runs of dots, trailing hyphens and dots.
void TrimPiece(const ChunkCut& cut, size_t& first, size_t& last) {
  const auto& characters = cut.out.characters;
  bool ellipsis = false;
  while (first < last) {
    const char byte = ByteOf(cut, characters[first]);
    const bool startsName =
        byte == '.' && !ellipsis && first + 1 < last &&
        (IsWord(characters[first + 1]) || ByteOf(cut, characters[first + 1]) == '_');
    if (!IsOneOf(byte, "-+#.") || startsName) break;
    ellipsis = byte == '.';
    ++first;
  }
  while (first < last && IsOneOf(ByteOf(cut, characters[last - 1]), "-.")) --last;
}

// Writes what has to stand between the word written last and the one that begins at `first` and is
// a piece or not, where no sign does.
void WriteGap(ChunkCut& cut, size_t first, bool isPiece) {
  if (cut.out.tokens.empty() || cut.out.tokens.back().sign != 0) return;
  const bool arePieces = isPiece && cut.out.tokens.back().isPiece;
  if (cut.next == first) {
    if (!arePieces) cut.out.tokens.push_back(kWordBreak);
  } else {
    WriteSigns(cut, first);
    // What stands there is not shown. Two other words have a blank between them anyway.
    if (arePieces && cut.out.tokens.back().sign == 0) cut.out.tokens.push_back(kBlank);
  }
}

// Writes the characters first .. last, one piece, and the signs before them.
void WritePiece(ChunkCut& cut, size_t first, size_t last) {
  WriteGap(cut, first, true);
  WriteSigns(cut, first);
  cut.next = last;
  const std::string_view surface = SurfaceOf(cut, first, last);
  const size_t begin = ByteAt(cut, first);
  const size_t length = FoldRunPiece(cut.out.lower.data() + begin, surface.size());
  const std::string_view base = std::string_view(cut.out.lower).substr(begin, length);
  cut.out.tokens.push_back({.sign = 0, .base = base, .surface = surface, .isPiece = true});
}

// Whether the character may stand for pieces ("\u3314" for two kana): those of a circle, a
// parenthesis or a square around them.
bool MayStandForPieces(const ChunkCharacter& c) {
  return (c.character >= 0x3200 && c.character <= 0x33FF) ||
         (c.character >= 0x1F200 && c.character <= 0x1F2FF);
}

// Writes the character at `place` as the pieces that it stands for; false when it stands for
// anything else.
bool WriteCompatiblePieces(ChunkCut& cut, size_t place) {
  if (!MayStandForPieces(cut.out.characters[place])) return false;
  const std::string_view surface = SurfaceOf(cut, place, place + 1);
  const std::string text = CompatibleText(surface);
  std::vector<std::string_view> pieces;
  for (std::string_view rest = text; !rest.empty();) {
    const size_t length = RunPieceLength(rest);
    if (length == 0) return false;
    pieces.push_back(rest.substr(0, length));
    rest.remove_prefix(length);
  }
  if (pieces.empty()) return false;
  WriteGap(cut, place, true);
  WriteSigns(cut, place);
  cut.next = place + 1;
  const size_t token = cut.out.tokens.size();
  for (const std::string_view piece : pieces) {
    const bool isFirst = piece.data() == text.data();
    cut.out.tokens.push_back({.sign = 0,
                              .base = cut.out.pieces.emplace_back(piece),
                              .surface = isFirst ? surface : kWordBreak.surface,
                              .isPiece = true});
  }
  AddForm(cut, token, surface);
  return true;
}

// Writes the characters first .. last as the pieces among them and the words between those.
void WritePieces(ChunkCut& cut, size_t first, size_t last) {
  const auto pieceLength = [&](size_t i) { return RunPieceLength(SurfaceOf(cut, i, last)); };
  for (size_t i = first; i < last;) {
    if (const size_t length = pieceLength(i); length != 0) {
      const size_t end = CharacterAt(cut, ByteAt(cut, i) + length);
      WritePiece(cut, i, end);
      i = end;
      continue;
    }
    if (WriteCompatiblePieces(cut, i)) {
      ++i;
      continue;
    }
    size_t begin = i++;
    while (i < last && pieceLength(i) == 0 && !MayStandForPieces(cut.out.characters[i])) ++i;
    size_t end = i;
    TrimPiece(cut, begin, end);
    if (!HasWord(cut, begin, end)) continue;
    WriteGap(cut, begin, false);
    WriteWord(cut, begin, end);
  }
}

bool HoldsPieces(const ChunkCut& cut, size_t first, size_t last) {
  if (cut.out.runs == RunCut::kWords || cut.out.isAscii) return false;
  const auto characters = std::span(cut.out.characters).subspan(first, last - first);
  return HasRunPiece(SurfaceOf(cut, first, last)) ||
         std::ranges::any_of(characters, MayStandForPieces);
}

// Writes one word of the query's cut, bytes begin .. end, as the pieces that signs inside leave.
void WriteCutWord(ChunkCut& cut, size_t begin, size_t end) {
  const auto& characters = cut.out.characters;
  const size_t firstToken = cut.out.tokens.size();
  const size_t stop = CharacterAt(cut, end);
  bool whole = true;  // the word is one piece, untrimmed
  size_t i = CharacterAt(cut, begin);
  while (i < stop) {
    size_t last = i;
    const auto inPiece = [&](const ChunkCharacter& c) {
      return IsWord(c) || (c.length == 1 && IsOneOf(ByteOf(cut, c), ".-_#+"));
    };
    while (last < stop && inPiece(characters[last])) ++last;
    if (last == i) {
      whole = false;
      ++i;
      continue;
    }
    const size_t after = last;
    TrimPiece(cut, i, last);
    if (HasWord(cut, i, last)) {
      whole = whole && ByteAt(cut, i) == begin && ByteAt(cut, last) == end;
      if (HoldsPieces(cut, i, last)) {
        WritePieces(cut, i, last);
      } else {
        WriteWord(cut, i, last);
      }
    } else {
      whole = false;
    }
    i = after;
  }
  // The signs before the first piece are tokens too: the forms belong to the word behind them.
  const size_t token = FirstWordFrom(cut, firstToken);
  if (whole || token == cut.out.tokens.size()) return;
  AddQueryForm(cut, token, std::string_view(cut.out.lower).substr(begin, end - begin));
}

void WriteWords(ChunkCut& cut, size_t coreBegin, size_t coreEnd) {
  std::string& scratch = cut.out.scratch;
  scratch.assign(cut.out.lower, coreBegin, coreEnd - coreBegin);
  // As inside a query, but hyphens are kept as at its end: "pre-" alone is looked for as it stands.
  if (!scratch.ends_with('-')) scratch += ' ';
  size_t at = coreBegin;
  ForEachQueryWord(scratch, [&](std::string_view word) {
    // The cut only blanks and drops bytes, so its words follow one another in the chunk.
    const size_t begin = cut.out.lower.find(word, at);
    if (begin == std::string::npos) return;
    at = begin + word.size();
    WriteCutWord(cut, begin, at);
  });
}

// Whether the query's cut finds nothing to part or to take off: letters and digits of ASCII, and
// between two of them at most one character that joins them.
bool IsPlainWord(std::string_view text) {
  bool wasAlphaNumeric = false;
  for (const char c : text) {
    const bool isAlphaNumeric = IsAlphaNumeric(c);
    if (!isAlphaNumeric && !(wasAlphaNumeric && IsOneOf(c, kWordJoinChars))) return false;
    wasAlphaNumeric = isAlphaNumeric;
  }
  return wasAlphaNumeric;
}

// Whether a query would have `text` as a word: it holds more than signs.
bool IsQueryWord(std::string_view text) {
  size_t length = 0;
  for (size_t at = 0; at < text.size(); at += length) {
    const char32_t c = DecodeCharacter(text, at, length);
    if (ClassifyCharacter(c) == CharacterKind::kWord || IsPictograph(c)) return true;
  }
  return false;
}

// What stands behind a word decides whether a query keeps "#" or "++" at its end: "c++," is "c"
// there, while the page text has "c++". And a query that is not cut at all signs keeps pictures
// that pages have apart from the word. The query's forms are added.
void AddQueryForms(ChunkCut& cut, bool hasPictures) {
  const size_t token = FirstWordFrom(cut, 0);
  if (token == cut.out.tokens.size()) return;
  cut.out.scratch = cut.out.lower + ' ';
  ForEachQueryWord(cut.out.scratch, [&](std::string_view word) {
    if (IsQueryWord(word)) AddQueryForm(cut, token, word);
  });
  if (!hasPictures) return;
  cut.out.scratch = cut.out.lower + ' ';
  for (const ChunkCharacter& c : cut.out.characters) {
    if (IsPictograph(c.character)) cut.out.scratch.replace(c.at, c.length, c.length, ' ');
  }
  ForEachQueryWord(cut.out.scratch, [&](std::string_view word) {
    const bool isToken =
        std::ranges::find(cut.out.tokens, word, &TextToken::base) != cut.out.tokens.end();
    if (!isToken && IsQueryWord(word)) AddQueryForm(cut, token, word);
  });
}

// Returns whether pictographs stand beside a word. Alone they are the words of the chunk, as they
// are in a query.
bool ClassifyChunk(ChunkTokens& out) {
  auto& characters = out.characters;
  const std::string_view surface = out.surface;
  if (out.isAscii) {  // its signs make no pictures
    characters.resize(surface.size());
    for (uint32_t i = 0; i < characters.size(); ++i) {
      const auto c = static_cast<char32_t>(surface[i]);
      characters[i] = {.at = i, .length = 1, .character = c, .kind = ClassifyCharacter(c)};
    }
    return false;
  }
  characters.clear();
  for (size_t i = 0; i < surface.size();) {
    size_t length = 0;
    const char32_t c = DecodeCharacter(surface, i, length);
    const bool joins =
        !characters.empty() && characters.back().kind == CharacterKind::kSymbol &&
        GoesWithSign(surface.substr(characters.back().at, characters.back().length), c);
    if (joins) {
      characters.back().length += static_cast<uint32_t>(length);
    } else {
      characters.push_back({.at = static_cast<uint32_t>(i),
                            .length = static_cast<uint32_t>(length),
                            .character = c,
                            .kind = ClassifyCharacter(c)});
    }
    i += length;
  }
  const auto isPicture = [](const ChunkCharacter& c) { return IsPictograph(c.character); };
  if (std::ranges::none_of(characters, isPicture)) return false;
  if (std::ranges::any_of(characters, IsWord)) return true;
  for (ChunkCharacter& c : characters) {
    if (isPicture(c)) c.kind = CharacterKind::kWord;
  }
  return false;
}

// How much of `text`, which begins with more than kChunkBytesLimit bytes without a blank, is one
// chunk: up to a word behind a sign, best one that joins no words; else to the end of the run of
// word characters or of signs; or a part of that run, where the rest of it is too long for a word.
size_t PieceLength(std::string_view text) {
  constexpr size_t kSignSearchBytes = 1024;
  constexpr size_t kMiddle = kChunkBytesLimit - kWordBytesLimit - 2 * U8_MAX_LENGTH;
  size_t at = kMiddle - kSignSearchBytes;
  while (at < kMiddle && U8_IS_TRAIL(text[at])) ++at;
  size_t behindSign = 0;
  size_t behindJoin = 0;
  size_t middle = 0;
  size_t length = 0;
  std::string_view before;
  bool afterWord = false;
  for (; at < kChunkBytesLimit; at += length) {
    const char32_t c = DecodeCharacter(text, at, length);
    const bool isWord = ClassifyCharacter(c) == CharacterKind::kWord;
    const bool isEdge = !before.empty() && isWord != afterWord && !GoesWithSign(before, c);
    if (at >= kMiddle) {
      if (behindSign != 0) return behindSign;
      if (behindJoin != 0) return behindJoin;
      if (isEdge) return at;
      if (middle == 0) middle = at;
    } else if (isEdge && isWord) {
      (IsOneOf(before.back(), ".-_#+") ? behindJoin : behindSign) = at;
    }
    before = text.substr(at, length);
    afterWord = isWord;
  }
  return middle;
}

}  // namespace

std::string_view NextChunk(std::string_view& text) {
  const size_t begin = text.find_first_not_of(' ');
  if (begin == text.npos) {
    text = {};
    return {};
  }
  text.remove_prefix(begin);
  // No further, or a text without blanks would be looked through once for each of its pieces.
  const std::string_view searched = text.substr(0, kChunkBytesLimit + 1);
  size_t length = FindByte(searched, ' ', 0);
  if (length == searched.size()) {
    length = text.size() <= kChunkBytesLimit ? text.size() : PieceLength(text);
  }
  const std::string_view chunk = text.substr(0, length);
  text.remove_prefix(length);
  return chunk;
}

void CutChunk(std::string_view chunk, ChunkTokens& out, RunCut runs) {
  out.runs = runs;
  out.tokens.clear();
  out.forms.clear();
  out.pieces.clear();
  out.surface.assign(chunk);
  out.lower.assign(chunk);
  out.isAscii = IsAsciiText(chunk);
  LowerText(out.lower.data(), out.lower.size(), !out.isAscii);
  if (out.isAscii && std::ranges::all_of(chunk, IsAlphaNumeric)) {
    if (chunk.size() <= kWordBytesLimit) out.tokens.push_back({0, out.lower, out.surface});
    return;
  }
  const bool hasPictures = ClassifyChunk(out);
  ChunkCut cut{out};
  const auto& characters = out.characters;
  // Signs around the chunk go first, so that they do not hide a "#" or "++" at its end.
  size_t first = 0;
  size_t last = characters.size();
  while (first < last && !IsWord(characters[first]) &&
         !IsOneOf(ByteOf(cut, characters[first]), "._")) {
    ++first;
  }
  while (last > first && !IsWord(characters[last - 1]) &&
         !IsOneOf(ByteOf(cut, characters[last - 1]), "#+-")) {
    --last;
  }
  const std::string_view core = SurfaceOf(cut, first, last);
  if (IsPlainWord(core)) {
    WriteWord(cut, first, last);
  } else {
    WriteWords(cut, ByteAt(cut, first), ByteAt(cut, last));
  }
  const bool trimmed = first > 0 || last < characters.size();
  if (hasPictures || (trimmed && chunk.find_first_of("#+") != chunk.npos)) {
    AddQueryForms(cut, hasPictures);
  }
  WriteSigns(cut, characters.size());
}

}  // namespace vela::indexer
