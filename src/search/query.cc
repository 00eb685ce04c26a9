#include "search/query.h"

#include <algorithm>
#include <utility>

#include "search/plain_query.h"
#include "text/edit.h"
#include "text/lower.h"
#include "text/presentation_forms.h"
#include "text/sign_cut.h"
#include "text/word_split.h"

namespace vela {

namespace {

// Letters in the place of the forms that stand for them, as pages have them.
void ReplaceForms(QueryText& text) {
  if (!MayHoldForms(View(text))) return;
  const QueryText typed = text;
  text.bytes[WriteWithoutForms(View(typed), text.bytes, kQuerySize - 1)] = '\0';
}

}  // namespace

void NormaliseQuery(QueryText& text, const Settings& settings) {
  if (settings.CutSigns == 1) {
    if (IsUtf8(settings)) ReplaceForms(text);
    text.bytes[CutAtSigns(text.bytes, View(text).size(), IsUtf8(settings))] = '\0';
  }
  if (settings.MapAccents == 1) {
    for (const AccentPair& pair : settings.accents) {
      ReplaceAll(text, View(pair.accent), View(pair.normal));
    }
  }
  if (settings.PlainQueries == 1) DropUnmeantSigns(text);
  const size_t length = View(text).size();
  if (LowersQueries(settings)) LowerText(text.bytes, length, IsUtf8(settings));
  if (settings.AllowExactPhrase == 0) ReplaceCharacters(text.bytes, length, "\"", " ");
  const size_t separated = SeparateWords(text.bytes, length, View(settings.WordJoinChars));
  text.bytes[separated] = '\0';
  const QueryText whole = text;
  Set(text, TrimAll(View(whole)));
}

namespace {

// Collects the characters of the terms in one block.
class TermCollector {
 public:
  explicit TermCollector(TermList& list) : list_(list) {}

  void Put(char c) { list_.bytes[end_++] = c; }
  void Restart() { end_ = start_; }
  bool isEmpty() const { return end_ == start_; }
  void Finish() {
    list_.bytes[end_] = '\0';
    list_.terms[count_++] = {list_.bytes.data() + start_, end_ - start_};
    start_ = ++end_;
  }
  size_t count() const { return count_; }

 private:
  TermList& list_;
  size_t start_ = 0;
  size_t end_ = 0;
  size_t count_ = 0;
};

}  // namespace

bool SplitQuery(std::string_view text, TermList& terms, bool& hasPhrase) {
  terms = TermList();
  hasPhrase = false;
  if (text.empty()) return true;
  const auto blanks = static_cast<size_t>(std::count(text.begin(), text.end(), ' '));
  // Every term but the last took a blank of the text, which makes room for its terminator.
  if (!terms.bytes.TryAllocate(text.size() + 2) || !terms.terms.TryAllocate(blanks + 1)) {
    terms = TermList();
    return false;
  }
  TermCollector collector(terms);
  bool insideQuotes = false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') {
      // The "-" of a quoted exclusion stays at the start of the term.
      if (!insideQuotes && (i == 0 || text[i - 1] != '-')) collector.Restart();
      insideQuotes = !insideQuotes;
    } else if (text[i] != ' ' || insideQuotes) {
      collector.Put(text[i]);
    } else if (!collector.isEmpty()) {
      collector.Finish();
    }
    if (insideQuotes) hasPhrase = true;
  }
  collector.Finish();  // also an empty one, as empty quotes leave behind
  if (!terms.terms.TryResize(collector.count())) {
    terms = TermList();
    return false;
  }
  if (text.find('-') != text.npos) {
    // Exclusions act on what was found before them. Every term keeps its place inside its group.
    OwnedArray<std::string_view> sorted;
    if (!sorted.TryAllocate(terms.terms.size())) return false;
    const auto isExclusion = [](std::string_view term) { return term.starts_with('-'); };
    auto* out =
        std::remove_copy_if(terms.terms.begin(), terms.terms.end(), sorted.begin(), isExclusion);
    std::copy_if(terms.terms.begin(), terms.terms.end(), out, isExclusion);
    terms.terms = std::move(sorted);
  }
  return true;
}

bool ParseQuery(Query& query, const Settings& settings) {
  query.text = query.typed;
  NormaliseQuery(query.text, settings);
  return SplitQuery(View(query.text), query.terms, query.hasPhrase);
}

SiteRestriction ReadSiteRestriction(std::string_view word) {
  for (std::string_view prefix : {"site:", "url:"}) {
    if (word.starts_with(prefix)) return {true, word.substr(prefix.size())};
  }
  return {};
}

bool IsPhrase(std::string_view term, const Settings& settings) {
  return SearchesPhrases(settings) && term.find(' ') != term.npos;
}

QueryText SubstringTerm(std::string_view term, const Settings& settings) {
  QueryText out;
  std::string_view word = term;
  if (word.starts_with('-')) word.remove_prefix(1);
  if (word.empty() || IsPhrase(word, settings) || ReadSiteRestriction(word).active) {
    Set(out, term);
    return out;
  }
  Set(out, term.substr(0, term.size() - word.size()));
  if (!word.starts_with('*')) Append(out, "*");
  Append(out, word);
  if (!word.ends_with('*')) Append(out, "*");
  return out;
}

std::string_view WithoutAddedAsterisks(std::string_view term, const Settings& settings) {
  if (settings.AmendedAnswers != 1 || !SearchesSubstrings(settings)) return term;
  return TrimCharacters(term, "*");
}

bool AddSubstringAsterisks(TermList& terms, const Settings& settings) {
  if (!SearchesSubstrings(settings)) return true;
  size_t room = 0;
  for (std::string_view term : terms.terms) room += term.size() + sizeof "**";
  TermList changed;
  if (!changed.bytes.TryAllocate(room) || !changed.terms.TryAllocate(terms.terms.size())) {
    return false;
  }
  char* out = changed.bytes.data();
  for (size_t i = 0; i < terms.terms.size(); ++i) {
    const QueryText text = SubstringTerm(terms.terms[i], settings);
    const size_t length = View(text).copy(out, View(text).size());
    changed.terms[i] = {out, length};
    out += length + 1;  // the block is zeroed: each is terminated
  }
  terms = std::move(changed);
  return true;
}

}  // namespace vela
