// declared_facts.h: what pages say about themselves under many names, one row a fact.
#pragma once

#include <string>
#include <string_view>

#include "indexer/extract/page.h"

namespace vela::indexer {

enum class PageFact : uint8_t {
  kDescription,
  kImage,  // an address as the page gives it
  kAuthor,
  kPublished,
  kModified,
  kPublisher,
  kSection,
  kKeywords,
  kType,
  kPrice,
  kCurrency,
  kLanguage,
  kCount
};

// The content of the first meta element that tells it, in the order in which the table names them;
// empty when none does.
std::string_view FactOf(const PageContent& page, PageFact fact);

// "headline" of "schema:headline" and of "http://schema.org/Headline": in small letters, without
// what stands before it. A name that begins with "@" stays whole.
std::string LocalName(std::string_view name);

// Whether a thing of that type, by its local name, may be what the page is about: not its site, who
// is behind it, or the way to it.
bool TellsOfPage(std::string_view type);

// Adds what the page tells as meta elements "page:author" and so on, for the fields of the owner.
void AddFacts(PageContent& page);

}  // namespace vela::indexer
