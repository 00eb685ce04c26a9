// query_fuzz.cc: bringing a query into the form of the index. Input: a line of letters (l fold to
// lower case, u UTF-8, p phrases, a accents, s CutSigns, q PlainQueries), a line of join
// characters, then the query.
#include <algorithm>
#include <memory>
#include <string>

#include "program/fuzz/check.h"
#include "search/query.h"
#include "search/stop_words.h"
#include "search/typed_text.h"
#include "text/ascii.h"

namespace vela::fuzz {
namespace {

void Configure(Settings& settings, std::string_view letters, std::string_view joinCharacters) {
  const auto has = [letters](char c) { return letters.find(c) == std::string_view::npos ? 0 : 1; };
  settings.ToLowerSearchWords = has('l');
  settings.UseUTF8 = has('u');
  settings.AllowExactPhrase = has('p');
  settings.CutSigns = has('s');
  settings.PlainQueries = has('q');
  Set(settings.StopWords, "a the x");
  Set(settings.WordJoinChars, joinCharacters);
  if (has('a') == 0) return;
  settings.MapAccents = 1;
  VELA_CHECK(settings.accents.TryAllocate(3));
  Set(settings.accents[0].accent, "\xC3\xA9");
  Set(settings.accents[0].normal, "e");
  Set(settings.accents[1].accent, "~");  // vanishes
  Set(settings.accents[2].accent, "x");
  Set(settings.accents[2].normal, "xxxx");  // grows
}

bool HasExclusionMark(std::string_view term) { return term.starts_with('-'); }

void CheckQuery(const Query& query, const Settings& settings) {
  const std::string_view text = View(query.text);
  VELA_CHECK(text.size() < kQuerySize);
  VELA_CHECK(text.find_first_of("()^[]|{}%!") == std::string_view::npos);
  if (settings.AllowExactPhrase == 0) VELA_CHECK(text.find('"') == std::string_view::npos);
  if (!text.empty()) {
    VELA_CHECK(std::string_view(" \t\r\n").find(text.front()) == std::string_view::npos);
    VELA_CHECK(std::string_view(" \t\r\n").find(text.back()) == std::string_view::npos);
  }
  VELA_CHECK(View(query.display).find_first_of("<>\"'") == std::string_view::npos);

  bool exclusionsBegan = false;
  for (int32_t i = 0; i < query.terms.size(); ++i) {
    const std::string_view term = query.terms[i];
    VELA_CHECK(term.size() < kQuerySize && term.find('"') == std::string_view::npos);
    if (settings.AllowExactPhrase == 0) VELA_CHECK(term.find(' ') == std::string_view::npos);
    if (HasExclusionMark(term)) exclusionsBegan = true;
    VELA_CHECK(!exclusionsBegan || HasExclusionMark(term));
    const QueryText wide = SubstringTerm(term, settings);
    VELA_CHECK(View(wide).size() < kQuerySize);
  }
  VELA_CHECK(!query.hasPhrase || settings.AllowExactPhrase != 0);
}

// Stop words leave something to search for, and every term where they are searched for themselves.
void CheckStopWords(Query& query, const Settings& settings) {
  const int32_t before = query.terms.size();
  VELA_CHECK(DropStopWords(query.terms, View(query.text), settings, query.dropped));
  const int32_t after = query.terms.size();
  VELA_CHECK(after <= before && (after > 0 || before == 0));
  VELA_CHECK(static_cast<int32_t>(query.dropped.size()) == before - after);
  for (const DroppedWord& dropped : query.dropped) {
    VELA_CHECK(dropped.place >= 0 && dropped.place <= after);
  }
  for (int32_t i = 0; i < after && after < before; ++i) {
    const bool isInQuotes = settings.AllowExactPhrase != 0;
    VELA_CHECK(query.terms[i] != "the" || isInQuotes);
  }
}

// What an answer shows of a query is text without control characters, and stays what it is.
void CheckShown(std::string_view typed, const Settings& settings) {
  QueryText shown;
  Set(shown, typed);
  ReplaceUnshowable(shown, IsUtf8(settings));
  VELA_CHECK(std::none_of(View(shown).begin(), View(shown).end(), IsControl));
  QueryText again = shown;
  ReplaceUnshowable(again, IsUtf8(settings));
  VELA_CHECK(View(again) == View(shown));
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view input = Text(data, size);
  const auto settings = std::make_unique<Settings>();
  const std::string_view letters = TakeLine(input);
  Configure(*settings, letters, TakeLine(input));
  input = input.substr(0, input.find('\0'));

  const auto first = std::make_unique<Query>();
  const auto second = std::make_unique<Query>();
  for (Query* query : {first.get(), second.get()}) {
    Set(query->typed, input);
    VELA_CHECK(ParseQuery(*query, *settings));
    CheckQuery(*query, *settings);
  }
  VELA_CHECK(View(first->text) == View(second->text));
  VELA_CHECK(first->terms.size() == second->terms.size());
  for (int32_t i = 0; i < first->terms.size(); ++i) {
    VELA_CHECK(first->terms[i] == second->terms[i]);
  }
  CheckStopWords(*first, *settings);
  CheckShown(input, *settings);
  return 0;
}
