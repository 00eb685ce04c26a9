#include "indexer/extract/page_anchors.h"

#include <algorithm>
#include <utility>

#include "indexer/extract/html_tokens.h"
#include "indexer/extract/page.h"
#include "indexer/site/address.h"
#include "indexer/words/clean_text.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

// What is kept of a link's text while it is read.
constexpr size_t kRawTextLimit = 4 * kLinkTextLimit;

void AddText(std::string_view text, std::string& to) {
  to.append(text.substr(0, kRawTextLimit - std::min(kRawTextLimit, to.size())));
}

std::string OneLine(std::string text) {
  CleanText(text);
  text = CollapseBlanks(text);
  if (text.size() <= kLinkTextLimit) return text;
  size_t end = kLinkTextLimit;
  while (end > 0 && (static_cast<unsigned char>(text[end]) >> 6) == 2) --end;
  return text.substr(0, end);
}

// Splits what a link says. False for one that leads to no page of the web.
bool ReadTarget(std::string_view base, std::string_view given, AnchorLink& link) {
  given = TrimAll(given);
  const size_t hash = given.find('#');
  if (hash != given.npos) link.fragment = given.substr(hash + 1);
  const std::string_view target = given.substr(0, hash);
  if (target.empty()) return hash != given.npos;
  link.address = ResolveAddress(base, target);
  return !link.address.empty();
}

}  // namespace

PageAnchors AnchorsOf(std::string_view html, std::string_view address, ReadingBudget& budget) {
  PageAnchors anchors;
  std::string base(address);
  bool hasBase = false;
  bool isInLink = false;
  const auto endLink = [&] {
    if (isInLink) anchors.links.back().text = OneLine(std::move(anchors.links.back().text));
    isInLink = false;
  };
  HtmlTokens tokens(html, budget);
  while (budget.status == Reason::kNone) {
    const TokenKind kind = tokens.Next(false);
    if (kind == TokenKind::kEnd) break;
    if (kind == TokenKind::kText && isInLink) AddText(tokens.text(), anchors.links.back().text);
    if (kind == TokenKind::kEndTag && tokens.tag().element == Element::kA) endLink();
    if (kind != TokenKind::kStartTag) continue;
    const Tag& tag = tokens.tag();
    if (HasAttribute(tag, Attribute::kId)) {
      anchors.places.push_back(AttributeValue(tag, Attribute::kId));
    }
    if (tag.element == Element::kBase && !hasBase && HasAttribute(tag, Attribute::kHref)) {
      hasBase = true;
      std::string given = ResolveAddress(address, AttributeValue(tag, Attribute::kHref));
      if (!given.empty()) base = std::move(given);
    }
    if (tag.element == Element::kA || tag.element == Element::kArea) {
      endLink();
      if (HasAttribute(tag, Attribute::kName)) {
        anchors.places.push_back(AttributeValue(tag, Attribute::kName));
      }
      AnchorLink link;
      if (HasAttribute(tag, Attribute::kHref) &&
          ReadTarget(base, AttributeValue(tag, Attribute::kHref), link)) {
        if (tag.element == Element::kArea) link.text = AttributeValue(tag, Attribute::kAlt);
        anchors.links.push_back(std::move(link));
        isInLink = true;
        if (tag.element == Element::kArea) endLink();
      }
    }
    if (isInLink && HasAttribute(tag, Attribute::kAlt)) {
      AddText(AttributeValue(tag, Attribute::kAlt), anchors.links.back().text);
    }
    if (Has(tag.element, kRawText)) tokens.TakeRawText();
  }
  endLink();
  return anchors;
}

}  // namespace vela::indexer
