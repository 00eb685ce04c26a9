// term_list.h: the term list of a query, made of given texts.
#pragma once

#include <string_view>
#include <vector>

#include "program/fuzz/check.h"
#include "search/query.h"

namespace vela::fuzz {

inline void FillTerms(TermList& list, const std::vector<std::string_view>& terms) {
  size_t size = 0;
  for (const std::string_view term : terms) size += term.size() + 1;
  VELA_CHECK(list.bytes.TryAllocate(size) && list.terms.TryAllocate(terms.size()));
  size_t used = 0;
  for (size_t i = 0; i < terms.size(); ++i) {
    char* const copy = list.bytes.data() + used;
    terms[i].copy(copy, terms[i].size());
    copy[terms[i].size()] = '\0';
    list.terms[i] = {copy, terms[i].size()};
    used += terms[i].size() + 1;
  }
}

}  // namespace vela::fuzz
