#include "text/sign_cut.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "text/ascii.h"
#include "text/owned_array.h"
#include "text/signs.h"
#include "text/utf8.h"

namespace vela {

namespace {

// Underscores in a row that may be part of a word: "__init__". More are a line to write on.
constexpr size_t kUnderscoreLimit = 2;
// Hyphens that are taken off before a blank.
constexpr int kFinalHyphens = 2;

// Whether a full stop or an underscore before it is part of a word.
bool GoesOn(char c) { return IsAlphaNumeric(c) || c == '*' || c == '?'; }

size_t EndOfRun(std::string_view text, size_t at) {
  return std::min(text.find_first_not_of(text[at], at), text.size());
}

// Blanks each run of `c` for which `isLoose(length, end)`.
template <typename IsLoose>
void BlankRuns(char* text, size_t length, char c, IsLoose isLoose) {
  const std::string_view view(text, length);
  for (size_t at = view.find(c), end = 0; at != view.npos; at = view.find(c, end)) {
    end = EndOfRun(view, at);
    if (isLoose(end - at, end)) memset(text + at, ' ', end - at);
  }
}

}  // namespace

void BlankLooseJoins(char* text, size_t length) {
  const std::string_view view(text, length);
  const auto goesOn = [&](size_t end) { return end < length && GoesOn(text[end]); };
  BlankRuns(text, length, '_',
            [&](size_t count, size_t end) { return count > kUnderscoreLimit || !goesOn(end); });
  // Behind the underscores, since a full stop goes on with those that are left.
  BlankRuns(text, length, '.', [&](size_t count, size_t end) {
    return count > 1 || !(goesOn(end) || (end < length && text[end] == '_'));
  });
  for (int i = 0; i < kFinalHyphens; ++i) {
    for (size_t at = view.find("- "); at != view.npos; at = view.find("- ", at + 1)) text[at] = ' ';
  }
}

namespace {

// What becomes of a character.
enum class Cut : uint8_t { kKeep, kBlank, kDrop, kHyphen, kOpenQuote, kCloseQuote };

// One character of a query.
struct QueryCharacter {
  char32_t character = 0;
  uint32_t at = 0;  // its bytes in the text
  uint8_t length = 0;
  CharacterKind kind = CharacterKind::kWord;
  Cut cut = Cut::kKeep;
};

struct QueryCharacters {
  std::string_view text;
  OwnedArray<QueryCharacter> all;
  size_t count = 0;

  bool Has(size_t i) const { return i < count; }  // also false one before the first
  QueryCharacter& operator[](size_t i) { return all[i]; }
  const QueryCharacter& operator[](size_t i) const { return all[i]; }
};

bool IsOneOf(char32_t c, std::u32string_view set) { return set.find(c) != set.npos; }

// Signs of ASCII that mean nothing in a query and would stay there as parts of words.
constexpr std::u32string_view kPlainSigns = U";<=>`~";
bool IsSign(CharacterKind kind) {
  return kind == CharacterKind::kSymbol || kind == CharacterKind::kPicture ||
         kind == CharacterKind::kDropped;
}

bool IsBlank(const QueryCharacter& c) { return c.kind == CharacterKind::kBlank; }

bool IsHyphen(const QueryCharacter& c) {
  return c.kind == CharacterKind::kHyphen || c.character == U'-';
}

Cut UsualCut(char32_t c, CharacterKind kind) {
  switch (kind) {
    case CharacterKind::kWord:
      return Cut::kKeep;
    case CharacterKind::kInvisible:
      return Cut::kDrop;
    case CharacterKind::kHyphen:
      return Cut::kHyphen;
    case CharacterKind::kSymbol:
      return c < 0x80 && !IsOneOf(c, kPlainSigns) ? Cut::kKeep : Cut::kBlank;
    default:
      return Cut::kBlank;
  }
}

bool Decode(QueryCharacters& query, bool utf8) {
  const std::string_view text = query.text;
  if (!query.all.TryAllocate(text.size())) return false;
  size_t length = 1;
  for (size_t at = 0; at < text.size(); at += length) {
    QueryCharacter& c = query[query.count++];
    c.character = static_cast<unsigned char>(text[at]);
    if (utf8) c.character = DecodeCharacter(text, at, length);
    c.at = static_cast<uint32_t>(at);
    c.length = static_cast<uint8_t>(length);
    const bool isKnown = utf8 || c.character < 0x80;
    c.kind = isKnown ? KindOf(c.character) : CharacterKind::kWord;
    c.cut = UsualCut(c.character, c.kind);
  }
  return true;
}

// Blanks what goes with the sign at `i` to one picture, or keeps all of it. Returns where it ends.
size_t CutPicture(QueryCharacters& query, size_t i) {
  size_t end = i + 1;
  const auto isPart = [&](const QueryCharacter& c) {
    const size_t begin = query[i].at;
    return GoesWithSign(query.text.substr(begin, c.at - begin), c.character);
  };
  while (query.Has(end) && isPart(query[end])) query[end++].cut = query[i].cut;
  return end;
}

// Keeps the pictures of a run without blanks that has no words.
void KeepPicturesAlone(QueryCharacters& query) {
  for (size_t begin = 0; begin < query.count; ++begin) {
    size_t end = begin;
    bool hasWord = false;
    while (query.Has(end) && !IsBlank(query[end])) {
      if (query[end].kind == CharacterKind::kWord) {
        hasWord = true;
        ++end;
      } else {
        end = CutPicture(query, end);
      }
    }
    for (size_t i = begin; !hasWord && i < end;) {
      if (query[i].kind == CharacterKind::kPicture) query[i].cut = Cut::kKeep;
      i = CutPicture(query, i);
    }
    begin = end;
  }
}

// Quotes that go together. Some languages close with what others open with.
struct QuoteFamily {
  std::u32string_view openers;
  std::u32string_view closers;
};
constexpr QuoteFamily kDoubleQuotes = {U"\u201C\u201D\u201E\u201F\u301D\uFF02",
                                       U"\u201C\u201D\u201F\u301E\u301F\uFF02\""};
constexpr QuoteFamily kGuillemets = {U"\u00AB\u00BB\u2039\u203A", U"\u00AB\u00BB\u2039\u203A"};
constexpr QuoteFamily kCornerBrackets = {U"\u300C\u300E", U"\u300D\u300F"};
// Apostrophes as well.
constexpr QuoteFamily kSingleQuotes = {U"\u2018\u201A\u201B", U"\u2018\u2019"};
constexpr const QuoteFamily* kQuoteFamilies[] = {&kDoubleQuotes, &kGuillemets, &kCornerBrackets,
                                                 &kSingleQuotes};

bool EndsWord(const QueryCharacters& query, size_t i) {
  return !query.Has(i) || query[i].kind != CharacterKind::kWord;
}

// Whether a quote of `family` at `i` may open: words begin behind it, and none ends before it but
// where quotes are written without blanks. With a blank on its inner side ("« mot »") a guillemet
// opens only in the direction in which it points.
bool MayOpen(const QueryCharacters& query, const QuoteFamily& family, size_t i) {
  if (!query.Has(i + 1)) return false;
  if (&family == &kCornerBrackets) return true;
  const bool pointsInward = IsOneOf(query[i].character, U"\u00AB\u2039");
  if (IsBlank(query[i + 1]) && !pointsInward) return false;
  return EndsWord(query, i - 1);
}

bool MayClose(const QueryCharacters& query, const QuoteFamily& family, size_t i) {
  if (&family == &kCornerBrackets) return true;
  const bool pointsInward = IsOneOf(query[i].character, U"\u00BB\u203A");
  if (IsBlank(query[i - 1]) && !pointsInward) return false;
  return EndsWord(query, i + 1);
}

// The quote that closes the one at `open`; query.count when there is none.
size_t FindClosing(const QueryCharacters& query, const QuoteFamily& family, size_t open) {
  const bool needsBlank = &family == &kSingleQuotes;
  bool hasBlank = false;
  for (size_t i = open + 1; i < query.count; ++i) {
    if (IsBlank(query[i])) {
      hasBlank = true;
    } else if (i > open + 1 && IsOneOf(query[i].character, family.closers) &&
               MayClose(query, family, i) && (hasBlank || !needsBlank)) {
      return i;
    } else if (query[i].character == U'"') {
      break;  // a pair of its own begins
    }
  }
  return query.count;
}

// Where the pair of quotes ends that opens at `i`; query.count when there is none.
size_t FindPair(const QueryCharacters& query, size_t i) {
  if (query[i].character == U'"') {
    for (size_t k = i + 1; k < query.count; ++k) {
      if (query[k].character == U'"') return k;
    }
    return FindClosing(query, kDoubleQuotes, i);
  }
  for (const QuoteFamily* family : kQuoteFamilies) {
    if (IsOneOf(query[i].character, family->openers) && MayOpen(query, *family, i)) {
      return FindClosing(query, *family, i);
    }
  }
  return query.count;
}

// Makes straight quotes of pairs. Inside a pair other quotes are signs.
void PairQuotes(QueryCharacters& query) {
  for (size_t i = 0; i < query.count; ++i) {
    const size_t closing = FindPair(query, i);
    if (closing == query.count) continue;
    query[i].cut = Cut::kOpenQuote;
    query[closing].cut = Cut::kCloseQuote;
    i = closing;
  }
}

// Takes off hyphens beside a sign that cuts words: behind one that opens something, before one that
// ends something.
void DropHyphensBesideSigns(QueryCharacters& query) {
  const auto isSign = [&](size_t i, std::u32string_view ofAscii) {
    if (!query.Has(i) || !IsSign(query[i].kind)) return false;
    const QueryCharacter& c = query[i];
    return c.character < 0x80 ? IsOneOf(c.character, ofAscii) : c.cut != Cut::kKeep;
  };
  for (size_t i = 0; i < query.count; ++i) {
    if (!IsHyphen(query[i])) continue;
    size_t end = i;
    while (query.Has(end) && IsHyphen(query[end])) ++end;
    const bool opensQuote = query.Has(end) && query[end].cut == Cut::kOpenQuote;
    if (isSign(i - 1, U"([{'=") || (!opensQuote && isSign(end, U")],';<=>`~"))) {
      for (size_t k = i; k < end; ++k) query[k].cut = Cut::kDrop;
    }
    i = end;
  }
}

// Writes the characters as they are cut; never more than there were, as quotes beyond ASCII, which
// get a blank beside them, have more than one byte.
size_t Write(const QueryCharacters& query, char* out) {
  size_t length = 0;
  const auto put = [&](char c) { out[length++] = c; };
  for (size_t i = 0; i < query.count; ++i) {
    const QueryCharacter& c = query[i];
    switch (c.cut) {
      case Cut::kKeep:
        for (size_t k = 0; k < c.length; ++k) put(query.text[c.at + k]);
        break;
      case Cut::kBlank:
        put(' ');
        break;
      case Cut::kDrop:
        break;
      case Cut::kHyphen:
        put('-');
        break;
      case Cut::kOpenQuote:
        if (c.length > 1 && i > 0 && !IsHyphen(query[i - 1])) put(' ');
        put('"');
        break;
      case Cut::kCloseQuote:
        put('"');
        if (c.length > 1) put(' ');
        break;
    }
  }
  return length;
}

// Blanks signs with a meaning that stand alone between two blanks.
void BlankSignsAlone(char* text, size_t length) {
  const std::string_view view(text, length);
  for (const std::string_view alone : {" -- ", " - ", " # ", " * ", " ? ", " ++ "}) {
    for (size_t at = view.find(alone); at != view.npos; at = view.find(alone, at + 1)) {
      memset(text + at, ' ', alone.size());
    }
  }
}

}  // namespace

size_t CutAtSigns(char* text, size_t length, bool utf8) {
  const auto isPlain = [](char c) { return IsAlphaNumeric(c) || c == ' '; };
  if (std::all_of(text, text + length, isPlain)) return length;
  QueryCharacters query;
  query.text = {text, length};
  if (!Decode(query, utf8)) return length;
  KeepPicturesAlone(query);
  PairQuotes(query);
  DropHyphensBesideSigns(query);
  OwnedArray<char> cut;
  if (!cut.TryAllocate(length)) return length;
  const size_t written = Write(query, cut.data());
  memcpy(text, cut.data(), written);
  BlankSignsAlone(text, written);
  BlankLooseJoins(text, written);
  return written;
}

}  // namespace vela
