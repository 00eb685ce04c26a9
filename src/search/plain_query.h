// plain_query.h: signs that visitors type without meaning what they mean in a query (PlainQueries).
#pragma once

#include "search/query.h"

namespace vela {

// Takes two or more hyphens off the start of words, as options of programs have them ("--force"),
// all hyphens off the start of a phrase, and hyphens that stand alone: only a single one before a
// word or a quote excludes. Question marks at the end of words are taken off with what joins
// nothing before them: only inside a word they stand for a character. Before the words are
// separated.
void DropUnmeantSigns(QueryText& text);

// Whether the terms only say what pages must not hold, and perhaps where they are, so that none can
// be found.
bool HasOnlyExclusions(const TermList& terms);

}  // namespace vela
