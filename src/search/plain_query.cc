#include "search/plain_query.h"

#include <algorithm>

#include "text/ascii.h"

namespace vela {

namespace {

size_t EndOfRun(std::string_view text, size_t at, std::string_view characters) {
  return std::min(text.find_first_not_of(characters, at), text.size());
}

// Whether a word goes on behind `at`, perhaps with signs that join words before.
bool GoesOn(std::string_view text, size_t at) {
  at = EndOfRun(text, at, "?*-_.+#");
  return at < text.size() && (IsAlphaNumeric(text[at]) || static_cast<signed char>(text[at]) < 0);
}

bool EndsWord(std::string_view text, size_t at) {
  return at == text.size() || text[at] == ' ' || text[at] == '"';
}

}  // namespace

void DropUnmeantSigns(QueryText& text) {
  const QueryText whole = text;
  const std::string_view typed = View(whole);
  size_t length = 0;
  bool insideQuotes = false;
  bool startsWord = true;
  for (size_t i = 0; i < typed.size();) {
    const char c = typed[i];
    if (c == '-' && startsWord) {
      const size_t end = EndOfRun(typed, i, "-");
      const bool opensQuotes = end < typed.size() && typed[end] == '"' && !insideQuotes;
      const bool isAlone = EndsWord(typed, end) || (typed[end] == '?' && !GoesOn(typed, end));
      const bool excludes = end - i == 1 && !insideQuotes && (opensQuotes || !isAlone);
      if (excludes) text.bytes[length++] = '-';
      i = end;
      startsWord = opensQuotes;
      continue;
    }
    if (c == '?' && !GoesOn(typed, i)) {
      while (length > 0 && (text.bytes[length - 1] == '.' || text.bytes[length - 1] == '_'))
        --length;
      i = EndOfRun(typed, i, "?");
      continue;
    }
    text.bytes[length++] = c;
    if (c == '"') insideQuotes = !insideQuotes;
    startsWord = c == ' ' || (c == '"' && insideQuotes);
    ++i;
  }
  text.bytes[length] = '\0';
}

bool HasOnlyExclusions(const TermList& terms) {
  const auto isRestriction = [](std::string_view term) {
    return ReadSiteRestriction(term.starts_with('-') ? term.substr(1) : term).active;
  };
  const auto isExclusion = [&](std::string_view term) {
    return term.starts_with('-') && !isRestriction(term);
  };
  const auto findsNothing = [&](std::string_view term) {
    return isExclusion(term) || isRestriction(term);
  };
  const auto& all = terms.terms;
  return std::any_of(all.begin(), all.end(), isExclusion) &&
         std::all_of(all.begin(), all.end(), findsNothing);
}

}  // namespace vela
