#include "text/wildcard.h"

#include <cstddef>

#include "text/ascii.h"

namespace vela {

bool MatchesWildcard(std::string_view text, std::string_view pattern, bool foldCase) {
  const auto equal = [foldCase](char a, char b) {
    return a == b || (foldCase && ToLowerAscii(a) == ToLowerAscii(b));
  };
  size_t t = 0;
  size_t p = 0;
  size_t afterStar = pattern.npos;  // behind the last "*" met
  size_t runStart = 0;              // where the run of that "*" ends for now
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      afterStar = ++p;
      runStart = t;
      if (p == pattern.size()) return true;
    } else if (p < pattern.size() && (pattern[p] == '?' || equal(text[t], pattern[p]))) {
      ++t;
      ++p;
    } else if (afterStar != pattern.npos) {
      p = afterStar;
      t = ++runStart;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

}  // namespace vela
