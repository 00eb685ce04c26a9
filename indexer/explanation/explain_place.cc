#include "indexer/explanation/explain_place.h"

#include <cstdio>
#include <utility>

#include "indexer/collect/category_set.h"
#include "indexer/explanation/wording.h"
#include "indexer/site/address.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace {

// What the pages say of a picture; `areKnown`: they were read.
void ExplainAlternatives(const std::vector<std::string>& texts, bool areKnown, Explanation& said) {
  std::string what =
      "not looked for, as the site has more than " + CountText(kComparedPages) + " pages";
  std::vector<std::string> details;
  if (areKnown) {
    details.reserve(texts.size());
    for (const std::string& text : texts) details.push_back(Quoted(Excerpt(text)));
    what = details.empty() ? "no page has one for it"
                           : Counted(details.size(), "text", "texts") +
                                 " of pages that show it, by which it is found";
  }
  said.Add("Alternatives", what, std::move(details));
}

void ExplainRules(const PageEntry& entry, const std::vector<CategoryRule>& categories,
                  Explanation& said) {
  std::string names;
  for (size_t i = 0; i < categories.size(); ++i) {
    if (HasCategory(entry.categories, i)) names += (names.empty() ? "" : ", ") + categories[i].name;
  }
  if (!categories.empty()) said.Add("Categories", names.empty() ? "none fits" : names);
  if (entry.boost != 0) {
    char factor[16] = "";
    snprintf(factor, sizeof factor, "%d.%d", entry.boost / 10, entry.boost % 10);
    said.Add("Boost", std::string("its score is multiplied by ") + factor);
  }
}

std::string CopiesText(const PagePlace& place) {
  if (!place.isCompared) {
    return "not looked for, as the site has more than " + CountText(kComparedPages) +
           " pages: see --report";
  }
  return place.reason == Reason::kNone ? "no page before it says the same"
                                       : "compared with the pages before it";
}

}  // namespace

void ExplainPlace(const PagePlace& place, const std::string& canonical, const SiteConfig& config,
                  Explanation& said) {
  const bool stays = place.reason == Reason::kNone;
  said.Add("Canonical", canonical.empty() ? "the page names none" : canonical);
  if (place.alternatives.has_value()) {
    ExplainAlternatives(*place.alternatives, place.isCompared, said);
  }
  said.outcome = stays ? "in the index as " + PlainAddress(place.entry.address)
                       : LeftOutText(place.reason, place.other);
  if (stays && place.entry.similarTo.has_value()) {
    said.Add("Remark", FindingText({Reason::kSimilar, {}, {}}) + ": " + place.similarTo);
  }
  said.Add("Copies", CopiesText(place));
  if (stays) ExplainRules(place.entry, config.categories, said);
}

}  // namespace vela::indexer
