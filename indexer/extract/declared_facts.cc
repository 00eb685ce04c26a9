#include "indexer/extract/declared_facts.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "indexer/extract/meta_elements.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

constexpr size_t kMostNames = 12;

struct FactNames {
  PageFact fact;
  const char* name;  // as an owner's field has it
  std::array<std::string_view, kMostNames> elements;
};

// What was written for this alone comes first, then what is made for other sites, then what
// describes the page as a work, then what describes what the page is about.
constexpr FactNames kFacts[] = {
    {PageFact::kDescription,
     "page:description",
     {"description", "og:description", "twitter:description", "dcterms.description",
      "dc.description", "dcterms.abstract", "itemprop:description", "json-ld:description"}},
    {PageFact::kImage,
     "page:image",
     {"og:image", "og:image:url", "og:image:secure_url", "twitter:image", "twitter:image:src",
      "itemprop:image", "json-ld:image", "json-ld:thumbnailurl"}},
    {PageFact::kAuthor,
     "page:author",
     {"author", "article:author", "dcterms.creator", "dc.creator", "itemprop:author",
      "json-ld:author", "json-ld:creator", "twitter:creator"}},
    {PageFact::kPublished,
     "page:published",
     {"article:published_time", "itemprop:datepublished", "json-ld:datepublished", "dcterms.issued",
      "dcterms.created", "dcterms.date", "dc.date.issued", "dc.date.created", "dc.date", "date"}},
    {PageFact::kModified,
     "page:modified",
     {"article:modified_time", "itemprop:datemodified", "json-ld:datemodified", "og:updated_time",
      "dcterms.modified", "dc.date.modified", "last-modified", "http-equiv:last-modified"}},
    {PageFact::kPublisher,
     "page:publisher",
     {"publisher", "article:publisher", "dcterms.publisher", "dc.publisher", "itemprop:publisher",
      "json-ld:publisher", "og:site_name"}},
    {PageFact::kSection,
     "page:section",
     {"article:section", "itemprop:articlesection", "json-ld:articlesection"}},
    {PageFact::kKeywords,
     "page:keywords",
     {"keywords", "dcterms.subject", "dc.subject", "article:tag", "itemprop:keywords",
      "json-ld:keywords"}},
    {PageFact::kType,
     "page:type",
     {"dcterms.type", "dc.type", "og:type", "itemprop:type", "json-ld:type"}},
    {PageFact::kPrice,
     "page:price",
     {"product:price:amount", "og:price:amount", "itemprop:price", "itemprop:offers.price",
      "json-ld:offers.price", "json-ld:offers.lowprice"}},
    {PageFact::kCurrency,
     "page:currency",
     {"product:price:currency", "og:price:currency", "itemprop:pricecurrency",
      "itemprop:offers.pricecurrency", "json-ld:offers.pricecurrency"}},
    {PageFact::kLanguage,
     "page:language",
     {"http-equiv:content-language", "dcterms.language", "dc.language", "json-ld:inlanguage"}},
};

constexpr bool EachFactHasItsRow() {
  for (size_t i = 0; i < std::size(kFacts); ++i) {
    if (kFacts[i].fact != static_cast<PageFact>(i)) return false;
  }
  return std::size(kFacts) == static_cast<size_t>(PageFact::kCount);
}
static_assert(EachFactHasItsRow());

}  // namespace

std::string LocalName(std::string_view name) {
  if (!name.starts_with('@')) name.remove_prefix(name.find_last_of(":/#") + 1);
  return LowerAsciiCopy(name);
}

bool TellsOfPage(std::string_view type) {
  constexpr std::string_view kOthers[] = {
      "breadcrumblist",        "contactpoint", "corporation", "imageobject",   "localbusiness",
      "newsmediaorganization", "organization", "person",      "postaladdress", "searchaction",
      "sitenavigationelement", "website",      "wpfooter",    "wpheader",      "wpsidebar"};
  return std::ranges::find(kOthers, type) == std::end(kOthers);
}

std::string_view FactOf(const PageContent& page, PageFact fact) {
  for (const std::string_view element : kFacts[static_cast<size_t>(fact)].elements) {
    if (element.empty()) break;
    const std::string_view content = MetaContent(page, element);
    if (!content.empty()) return content;
  }
  return {};
}

void AddFacts(PageContent& page) {
  for (const FactNames& row : kFacts) {
    AddMeta(row.name, std::string(FactOf(page, row.fact)), page);
  }
}

}  // namespace vela::indexer
