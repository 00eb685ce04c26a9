#include "indexer/explanation/explain_links.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "indexer/explanation/wording.h"
#include "indexer/site/address.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace {

std::string_view LinkReasonText(LinkReason reason) {
  constexpr std::string_view kTexts[] = {"in what surrounds the content", "nofollow", "no text",
                                         "its text is too long for a name"};
  return kTexts[static_cast<size_t>(reason)];
}

}  // namespace

void ExplainLinks(const PageAnchors& anchors, size_t counted,
                  const std::vector<RefusedLink>& refused, const std::string& base,
                  Explanation& said) {
  uint64_t within = 0;
  uint64_t elsewhere = 0;
  for (const AnchorLink& link : anchors.links) {
    if (link.address.empty()) continue;
    ++(IsBelow(AsEncoded(link.address), base) ? within : elsewhere);
  }
  std::vector<std::string> details;
  details.push_back(Counted(counted, "text", "texts") +
                    " of links count for the pages that they lead to, within the site");
  for (const RefusedLink& link : refused) {
    if (link.address.empty() || link.address.starts_with('#')) continue;
    details.push_back(Excerpt(link.address) + ": does not count, " +
                      std::string(LinkReasonText(link.reason)));
  }
  said.Add("Links",
           CountText(within) + " to pages of the site, " + CountText(elsewhere) + " elsewhere",
           std::move(details));
}

}  // namespace vela::indexer
