#include "output/highlight.h"

#include <algorithm>
#include <bitset>
#include <cstring>

#include "text/ascii.h"
#include "text/edit.h"
#include "text/join_chars.h"
#include "text/run_cut.h"
#include "text/wildcard.h"

namespace vela {

namespace {

constexpr size_t kTokenLimit = 400;
// A numeric character reference has at most this many bytes, its ends included.
constexpr size_t kReferenceLimit = 7;
// Every character may become a marked, encoded word of its own.
constexpr size_t kRoomPerByte = 40;

constexpr std::string_view kOpenMark = "[;!]";
constexpr std::string_view kCloseMark = "[!;]";
constexpr std::string_view kOpenTag = "<span class=\"highlight\">";
constexpr std::string_view kCloseTag = "</span>";

// Appends to a block that is known to be large enough.
class Writer {
 public:
  explicit Writer(char* out) : out_(out) {}
  void Put(std::string_view piece) {
    piece.copy(out_ + length_, piece.size());
    length_ += piece.size();
  }
  std::string_view view() const { return {out_, length_}; }

 private:
  char* out_;
  size_t length_ = 0;
};

bool JoinsOn(std::string_view rest, std::string_view joinChars) {
  if (rest.empty()) return true;
  return IsAlphaNumeric(rest[0]) || joinChars.find(rest[0]) != joinChars.npos;
}

// Tries the phrase from `token` on, whose successor `tokenizer` gives next. True when every word
// followed: `run` is the whole run of text and the tokenizer stands behind it. Otherwise everything
// is given back.
bool MatchPhrase(Tokenizer& tokenizer, std::string_view token, std::string_view phrase,
                 const HighlightRules& rules, std::string_view& run) {
  std::string_view word;
  if (!NextPhraseWord(phrase, word) || WordCompare(rules.mode, word, token) != 0) return false;
  Tokenizer ahead = tokenizer;
  std::string_view last = token;
  while (NextPhraseWord(phrase, word)) {
    TokenKind kind = TokenKind::kSingle;
    while (kind == TokenKind::kSingle) kind = NextToken(ahead, rules.joinChars, last);
    if (kind == TokenKind::kNone || WordCompare(rules.mode, word, last) != 0) return false;
  }
  run = {token.data(), static_cast<size_t>(last.data() + last.size() - token.data())};
  tokenizer = ahead;
  return true;
}

// Whether a token is what the term, which is no phrase, asks for. A pattern is also its own match
// where it folds letters that patterns take as they are.
bool MatchesToken(TextMode mode, const HighlightTerm& term, std::string_view token) {
  return MatchesTerm(mode, term, token) ||
         (term.isWildcard && HasWildcard(token) && WordCompare(mode, term.text, token) == 0);
}

// The run of text that matches a term from `token` on; empty when none does.
std::string_view MatchedRun(Tokenizer& tokenizer, std::string_view token,
                            const HighlightTerms& terms, const HighlightRules& rules) {
  for (const HighlightTerm& term : terms) {
    std::string_view run = token;
    const bool matches = term.isPhrase ? MatchPhrase(tokenizer, token, term.text, rules, run)
                                       : MatchesToken(rules.mode, term, token);
    if (matches) return run;
  }
  return {};
}

}  // namespace

TokenKind NextToken(Tokenizer& tokenizer, std::string_view joinChars, std::string_view& token) {
  const std::string_view rest = tokenizer.rest;
  const auto take = [&](size_t length) {
    token = rest.substr(0, length);
    tokenizer.rest = rest.substr(length);
  };
  for (size_t at = 0; at < rest.size(); ++at) {
    if (at == kTokenLimit) {
      token = rest.substr(0, at);
      tokenizer.rest = {};
      return TokenKind::kWord;
    }
    const char c = rest[at];
    if (const size_t piece = tokenizer.cutsRuns ? RunPieceLength(rest.substr(at)) : 0; piece != 0) {
      take(at == 0 ? piece : at);
      return TokenKind::kWord;
    }
    if (c == '&' && rest.substr(at + 1, 1) == "#") {
      const size_t end = rest.substr(at, kReferenceLimit).find(';');
      if (end != rest.npos) {
        take(at == 0 ? end + 1 : at);
        return at == 0 ? TokenKind::kSingle : TokenKind::kWord;
      }
    }
    const bool isJoin = joinChars.find(c) != joinChars.npos;
    const bool breaks =
        c == ' ' || (IsPunctuation(c) && !(isJoin && JoinsOn(rest.substr(at + 1), joinChars)));
    if (!breaks) continue;
    take(at == 0 ? 1 : at);
    return at == 0 ? TokenKind::kSingle : TokenKind::kWord;
  }
  token = rest;
  tokenizer.rest = {};
  return rest.empty() ? TokenKind::kNone : TokenKind::kWord;
}

bool HighlightText(std::string_view text, const HighlightTerms& terms, const HighlightRules& rules,
                   OwnedArray<char>& marked, size_t& length) {
  const size_t capacity = text.size() * kRoomPerByte;
  OwnedArray<char> decoded;
  OwnedArray<char> collected;
  OwnedArray<char> scratch;
  // Marks around every character are the most that the middle step can add.
  const size_t collectedRoom = text.size() * (1 + kOpenMark.size() + kCloseMark.size()) + 1;
  if (!decoded.TryAllocate(text.size() + 1) || !collected.TryAllocate(collectedRoom)) return false;
  const size_t decodedLength = DecodeJoinChars(text, decoded.data(), rules.joinChars);
  Writer out(collected.data());
  Tokenizer tokenizer{{decoded.data(), decodedLength}, rules.cutsRuns};
  // What begins no phrase here begins none farther on in the same run of punctuation, ahead of the
  // same word; asking once keeps the walk linear.
  std::bitset<256> failed;
  std::string_view token;
  for (TokenKind kind; (kind = NextToken(tokenizer, rules.joinChars, token)) != TokenKind::kNone;) {
    const bool isMark = kind == TokenKind::kSingle && token.size() == 1;
    const auto mark = static_cast<unsigned char>(token[0]);
    if (kind == TokenKind::kWord) failed.reset();
    const std::string_view run = token == " " || (isMark && failed[mark])
                                     ? std::string_view()
                                     : MatchedRun(tokenizer, token, terms, rules);
    if (run.size() > token.size()) failed.reset();
    if (run.empty() && isMark) failed.set(mark);
    if (run.empty()) {
      out.Put(token);
    } else {
      out.Put(kOpenMark);
      out.Put(run);
      out.Put(kCloseMark);
    }
  }
  constexpr size_t kEncodingLimit = 8;  // "&#-128;"
  const size_t room = std::max(capacity, out.view().size() * kEncodingLimit) + 1;
  if (!marked.TryAllocate(room) || !scratch.TryAllocate(room)) return false;
  length = EncodeJoinChars(out.view(), marked.data(), rules.joinChars);
  ReplaceAll(marked.data(), &length, capacity, scratch.data(), kOpenMark, kOpenTag);
  ReplaceAll(marked.data(), &length, capacity, scratch.data(), kCloseMark, kCloseTag);
  return true;
}

}  // namespace vela
