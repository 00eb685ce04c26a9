// json_facts.h: what the JSON-LD of a page says about it.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

// Adds to the meta elements of `page` what the script `json` (UTF-8) says of it: of each object
// that stands alone, in a list, as an entry of "@graph" or as the mainEntity of one of them, unless
// it tells of the site, of its owner, or of the way to the page. A member "headline" is called
// "json-ld:headline", one of an object in a member "json-ld:author.name", all in lower case and
// without a prefix ("schema:"). That object itself, "json-ld:author", is its @value, else its name,
// else its url; of a picture its url comes first. Each entry of a list counts.
// Left out: values of more than 2000 bytes, and all behind a fault or what lies deeper than 16
// levels. Adds 100 at most, and takes memory in proportion to `json`, out of `budget`.
void AddJsonFacts(std::string_view json, ReadingBudget& budget, PageContent& page);

}  // namespace vela::indexer
