#include "search/run_terms.h"

#include <algorithm>
#include <utility>

#include "search/highlight_terms.h"
#include "text/ascii.h"
#include "text/run_cut.h"

namespace vela {

namespace {

bool IsWildcard(char c) { return c == '*' || c == '?'; }

// Words and pieces of one term. Each is looked up on every page that may have the phrase.
constexpr size_t kWordLimit = 64;

// Writes the terms that are cut to a list with room for them.
class CutTerms {
 public:
  explicit CutTerms(TermList& list) : list_(list) {}

  void Exclude() { Put("-"); }
  // Of a term that is not cut: all of it.
  void AddWord(std::string_view word) {
    if (words_ == kWordLimit) return;
    if (words_++ > 0) Put(" ");
    Put(word);
  }
  void AddPiece(std::string_view piece) {
    if (words_ == kWordLimit) return;
    if (words_++ > 0) Put(" ");
    piece.copy(list_.bytes.data() + end_, piece.size());
    end_ += FoldRunPiece(list_.bytes.data() + end_, piece.size());
  }
  void End() {
    // What is kept of a text that is too long for a term is a shorter phrase.
    std::string_view term(list_.bytes.data() + start_, end_ - start_);
    if (term.size() >= kQuerySize) term = term.substr(0, term.rfind(' ', kQuerySize - 1));
    list_.bytes[start_ + term.size()] = '\0';
    list_.terms[count_++] = term;
    start_ = ++end_;
    words_ = 0;
  }

 private:
  void Put(std::string_view text) {
    text.copy(list_.bytes.data() + end_, text.size());
    end_ += text.size();
  }

  TermList& list_;
  size_t start_ = 0;
  size_t end_ = 0;
  size_t count_ = 0;
  size_t words_ = 0;  // of the term under way
};

// What the indexer takes off a word: hyphens, "+" and "#" before it and full stops, except the one
// that begins a name; hyphens and full stops behind it.
std::string_view TrimWord(std::string_view word) {
  bool isEllipsis = false;
  while (!word.empty()) {
    const bool startsName = word[0] == '.' && !isEllipsis && word.size() > 1 &&
                            (IsAlphaNumeric(word[1]) || word[1] == '_');
    if (std::string_view("-+#.").find(word[0]) == std::string_view::npos || startsName) break;
    isEllipsis = word[0] == '.';
    word.remove_prefix(1);
  }
  while (word.ends_with('-') || word.ends_with('.')) word.remove_suffix(1);
  return word;
}

// The text in front of the first piece or wildcard.
std::string_view BeforePiece(std::string_view text) {
  size_t length = 0;
  while (length < text.size() && !IsWildcard(text[length]) &&
         RunPieceLength(text.substr(length)) == 0) {
    ++length;
  }
  return text.substr(0, length);
}

void CutWord(std::string_view word, CutTerms& out) {
  while (!word.empty()) {
    if (IsWildcard(word[0])) {
      word.remove_prefix(1);
    } else if (const size_t length = RunPieceLength(word); length != 0) {
      out.AddPiece(word.substr(0, length));
      word.remove_prefix(length);
    } else {
      const std::string_view text = BeforePiece(word);
      word.remove_prefix(text.size());
      const std::string_view trimmed = TrimWord(text);
      if (!trimmed.empty()) out.AddWord(trimmed);
    }
  }
}

bool IsCut(std::string_view term) {
  return !ReadSiteRestriction(term.starts_with('-') ? term.substr(1) : term).active &&
         HasRunPiece(term);
}

}  // namespace

bool CutRunsOfTerms(TermList& terms, const Settings& settings) {
  if (!CutsRuns(settings) || std::none_of(terms.terms.begin(), terms.terms.end(), IsCut)) {
    return true;
  }
  // Each byte of a term may become a word with a blank behind it.
  constexpr size_t kRoomPerByte = 2;
  size_t room = 0;
  for (std::string_view term : terms.terms) room += kRoomPerByte * (term.size() + 1);
  TermList changed;
  if (!changed.bytes.TryAllocate(room) || !changed.terms.TryAllocate(terms.terms.size())) {
    return false;
  }
  CutTerms out(changed);
  for (std::string_view term : terms.terms) {
    if (!IsCut(term)) {
      out.AddWord(term);
    } else {
      if (term.starts_with('-')) out.Exclude();
      term.remove_prefix(term.starts_with('-') ? 1 : 0);
      for (std::string_view word; NextPhraseWord(term, word);) CutWord(word, out);
    }
    out.End();
  }
  terms = std::move(changed);
  return true;
}

bool IsTypedAsOneWord(std::string_view text, std::string_view term) {
  for (std::string_view word; NextPhraseWord(text, word);) {
    if (word.size() > term.size()) continue;
    std::string_view rest = word;
    for (const char c : term) {
      if (c == ' ') continue;
      if (!rest.starts_with(c)) {
        rest = word;
        break;
      }
      rest.remove_prefix(1);
    }
    if (rest.empty()) return true;
  }
  return false;
}

std::string_view JoinedRuns(std::string_view term, const Settings& settings, QueryText& joined) {
  if (!CutsRuns(settings) || !HasRunPiece(term)) return term;
  Set(joined, "");
  bool afterPiece = false;
  for (std::string_view word; NextPhraseWord(term, word);) {
    const bool isPiece = RunPieceLength(word) == word.size();
    if (!IsEmpty(joined) && !(isPiece && afterPiece)) Append(joined, " ");
    Append(joined, word);
    afterPiece = isPiece;
  }
  return View(joined);
}

}  // namespace vela
