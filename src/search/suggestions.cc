#include "search/suggestions.h"

#include <algorithm>

#include "search/run_terms.h"
#include "text/lower.h"
#include "text/sound_key.h"

namespace vela {

namespace {

// A dictionary word as it is suggested.
struct Candidate {
  QueryText shown;
  QueryText word;  // as it is looked up
};

// False when the slot is empty.
bool ReadCandidate(int32_t number, const Dictionary& dictionary, const Settings& settings,
                   Stemmer& stemmer, Candidate& candidate) {
  if (number <= kNoSpellingWord || number >= dictionary.size()) return false;
  Set(candidate.shown, dictionary.DisplayText(number, 1));
  const bool utf8 = IsUtf8(settings);
  LowerText(candidate.shown.bytes, View(candidate.shown).size(), utf8);
  candidate.word = candidate.shown;
  if (StemsWords(settings)) StemText(candidate.word, stemmer, utf8);
  if (!OffersWords(settings)) candidate.shown = candidate.word;
  return true;
}

// Looks for words that sound like the term; stores the first that differs and, behind it, the
// others of its entry. The number stored.
int32_t FindAlike(std::string_view term, const SpellingTable& spelling,
                  const Dictionary& dictionary, const Settings& settings, Stemmer& stemmer,
                  QueryText (&alike)[Suggestions::kLimit]) {
  const SoundKey key = MakeSoundKey(term);
  if (IsEmpty(key)) return 0;
  SpellingReader entries(spelling, View(key));
  SpellingEntry entry;
  while (entries.Next(entry)) {
    const int order = View(entry.key).compare(View(key));
    if (order > 0) return 0;
    if (order < 0) continue;
    int32_t found = 0;
    for (int32_t number : entry.words) {
      Candidate candidate;
      if (!ReadCandidate(number, dictionary, settings, stemmer, candidate)) continue;
      if (View(candidate.word) != term) alike[found++] = candidate.shown;
    }
    if (found > 0) return found;
  }
  return 0;
}

// An exclusion with the quotes of its phrase.
QueryText ExclusionAsTyped(std::string_view shown, const Settings& settings) {
  QueryText typed;
  if (!IsPhrase(shown, settings)) {
    Set(typed, shown);
    return typed;
  }
  Set(typed, "-\"");
  Append(typed, shown.substr(1));
  Append(typed, "\"");
  return typed;
}

}  // namespace

bool HasRareTerm(const TermSearch& search, const Settings& settings) {
  return std::any_of(search.terms.begin(), search.terms.end(), [&](const SearchedTerm& term) {
    return term.records < settings.SpellingWhenLessThan;
  });
}

Suggestions MakeSuggestions(const TermSearch& search, const SpellingTable& spelling,
                            const Dictionary& dictionary, const Settings& settings,
                            Stemmer& stemmer) {
  Suggestions suggestions;
  const auto isExcluded = [&](const SearchedTerm& term) {
    return settings.PlainQueries == 1 && term.shown.starts_with('-');
  };
  const auto isRare = [&](const SearchedTerm& term) {
    return term.records < settings.SpellingWhenLessThan && !isExcluded(term);
  };
  if (settings.Spelling != 1 || !spelling.isLoaded ||
      std::none_of(search.terms.begin(), search.terms.end(), isRare)) {
    return suggestions;
  }
  bool isOffered = false;
  QueryText alike[Suggestions::kLimit];
  for (size_t i = 0; i < search.terms.size(); ++i) {
    const SearchedTerm& term = search.terms[i];
    const std::string_view word = WithoutAddedAsterisks(View(term.word), settings);
    QueryText joined;
    std::string_view piece =
        JoinedRuns(OffersWords(settings) ? WithoutAddedAsterisks(term.shown, settings) : word,
                   settings, joined);
    QueryText excluded;
    if (isExcluded(term)) {
      excluded = ExclusionAsTyped(term.shown, settings);
      piece = View(excluded);
      suggestions.asTyped = true;
    } else if (isRare(term)) {
      const int32_t found = FindAlike(word, spelling, dictionary, settings, stemmer, alike);
      if (found == 0) continue;
      isOffered = true;
      piece = View(alike[0]);
      if (search.terms.size() == 1) {
        suggestions.count = found;
        for (int32_t k = 1; k < found; ++k) Set(suggestions.texts[k], View(alike[k]));
      }
    }
    if (i > 0) Append(suggestions.texts[0], " ");
    for (const DroppedWord& dropped : search.dropped) {
      if (dropped.place != static_cast<int32_t>(i)) continue;
      Append(suggestions.texts[0], dropped.word);
      Append(suggestions.texts[0], " ");
    }
    Append(suggestions.texts[0], piece);
  }
  if (!isOffered) return Suggestions();
  for (const DroppedWord& dropped : search.dropped) {
    if (dropped.place != static_cast<int32_t>(search.terms.size())) continue;
    Append(suggestions.texts[0], " ");
    Append(suggestions.texts[0], dropped.word);
  }
  suggestions.count = std::max(suggestions.count, 1);
  return suggestions;
}

}  // namespace vela
