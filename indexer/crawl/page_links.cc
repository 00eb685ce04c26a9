#include "indexer/crawl/page_links.h"

#include <algorithm>

#include "indexer/crawl/robots.h"
#include "indexer/extract/html_tokens.h"
#include "indexer/extract/text_rules.h"
#include "indexer/site/address.h"
#include "indexer/words/lower_copy.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

bool HoldsOneOf(std::string_view list, std::initializer_list<std::string_view> words) {
  return std::ranges::any_of(words,
                             [list](std::string_view word) { return HoldsWord(list, word); });
}

std::string LowerValue(const Tag& tag, Attribute attribute) {
  return LowerAsciiCopy(AttributeValue(tag, attribute));
}

// "next.html" of "5; url='next.html'"; empty when it only loads the page anew.
std::string_view RefreshTarget(std::string_view content) {
  const size_t at = LowerAsciiCopy(content).find("url");
  if (at == content.npos) return {};
  content = TrimAll(content.substr(at + 3));
  if (!content.starts_with('=')) return {};
  content = TrimAll(content.substr(1));
  if (content.starts_with('"') || content.starts_with('\'')) {
    return content.substr(1, content.find(content[0], 1) - 1);
  }
  return content;
}

// Whether what a link element leads to is another page.
bool LeadsToPage(const Tag& link) {
  const std::string rel = LowerValue(link, Attribute::kRel);
  if (HoldsWord(rel, "stylesheet")) return false;
  if (HoldsOneOf(rel, {"next", "prev", "canonical"})) return true;
  const std::string type = LowerValue(link, Attribute::kType);
  return HoldsWord(rel, "alternate") && (type.empty() || type.starts_with("text/html"));
}

// Where the element leads to, as the page writes it; empty for nowhere.
std::string TargetOf(const Tag& tag) {
  switch (tag.element) {
    case Element::kA:
    case Element::kArea:
      return HoldsWord(LowerValue(tag, Attribute::kRel), "nofollow")
                 ? std::string()
                 : AttributeValue(tag, Attribute::kHref);
    case Element::kFrame:
    case Element::kIframe:
      return AttributeValue(tag, Attribute::kSrc);
    case Element::kLink:
      return LeadsToPage(tag) ? AttributeValue(tag, Attribute::kHref) : std::string();
    case Element::kMeta:
      if (LowerValue(tag, Attribute::kHttpEquiv) != "refresh") return {};
      return std::string(RefreshTarget(AttributeValue(tag, Attribute::kContent)));
    default:
      return {};
  }
}

bool AsksForNofollow(const Tag& meta) {
  const std::string name = LowerValue(meta, Attribute::kName);
  return (name == "robots" || name == kCrawlerName) &&
         HoldsOneOf(LowerValue(meta, Attribute::kContent), {"nofollow", "none"});
}

}  // namespace

std::vector<std::string> LinksOf(std::string_view html, std::string_view address,
                                 ReadingBudget& budget) {
  std::vector<std::string> links;
  std::string base(address);
  bool hasBase = false;
  HtmlTokens tokens(html, budget);
  while (budget.status == Reason::kNone && links.size() < kLinkLimit) {
    const TokenKind kind = tokens.Next(false);
    if (kind == TokenKind::kEnd) break;
    if (kind != TokenKind::kStartTag) continue;
    const Tag& tag = tokens.tag();
    if (tag.element == Element::kMeta && AsksForNofollow(tag)) return {};
    if (tag.element == Element::kBase && !hasBase && HasAttribute(tag, Attribute::kHref)) {
      hasBase = true;
      std::string given = ResolveAddress(address, AttributeValue(tag, Attribute::kHref));
      if (!given.empty()) base = std::move(given);
    }
    const std::string target = TargetOf(tag);
    if (!target.empty() && target[0] != '#') {
      std::string link = ResolveAddress(base, target);
      if (!link.empty()) links.push_back(std::move(link));
    }
    if (Has(tag.element, kRawText)) tokens.TakeRawText();
  }
  return links;
}

}  // namespace vela::indexer
