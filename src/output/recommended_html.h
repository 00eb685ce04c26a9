// recommended_html.h: the recommended links in their section of the page.
#pragma once

#include "index/page_data.h"
#include "output/links.h"
#include "output/response.h"
#include "output/sections.h"
#include "search/highlight_terms.h"
#include "settings/settings.h"

namespace vela {

// Where the links go; refers to records that outlive it. A piece that finds no room in the section
// is left out, and the response says so at once.
struct RecommendedSection {
  Response& response;
  OutputSections& sections;
  const Settings& settings;
  const HighlightTerms& highlight;
};

// Appends the opening of the section, with its heading.
void AppendRecommendedOpening(const RecommendedSection& out);

// Appends one link. The texts of the page go out raw: the indexer stored them safe for HTML.
void AppendRecommendedLink(const RecommendedSection& out, const PageTexts& texts,
                           const LinkText& target);

void AppendRecommendedClosing(const RecommendedSection& out);

}  // namespace vela
