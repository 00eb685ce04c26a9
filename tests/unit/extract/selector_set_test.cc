#include "indexer/extract/selector_set.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

// The element of a start tag as it stands in a page. `html` must outlive it.
Tag TagOf(std::string_view html, const SelectorSet& set) {
  ReadingBudget budget;
  HtmlTokens tokens(html, budget, &set.askedAttributes());
  EXPECT_EQ(tokens.Next(false), TokenKind::kStartTag) << html;
  return tokens.tag();
}

SelectorSet SetOf(std::string_view text) {
  SelectorSet set;
  SelectorFault fault;
  for (const ElementSelector& selector : ParseSelectors(text, fault)) {
    set.Add(selector, SelectorUse::kExclude);
  }
  EXPECT_EQ(fault.what, "");
  return set;
}

// Whether the innermost of nested elements, outermost first, fits.
bool Fits(std::string_view selector, const std::vector<std::string>& elements) {
  const SelectorSet set = SetOf(selector);
  ReadingBudget budget;
  SelectorMatching matching(set, budget);
  SelectorPath path;
  SelectorFit fit;
  for (const std::string& html : elements) {
    fit = matching.Fit(TagOf(html, set), path);
    path = {fit.parts, path.ancestors | fit.parts};
  }
  return fit.isExcluded;
}

TEST(SelectorSet, OneElement) {
  const struct {
    const char* selector;
    const char* html;
    bool expected;
  } kCases[] = {
      {"nav", "<NAV>", true},
      {"nav", "<navy>", false},
      {"*", "<p>", true},
      {".a", "<p class='b a'>", true},
      {".a", "<p class='ab'>", false},
      {".a", "<p class=A>", false},
      {".a.b", "<p class='b\ta'>", true},
      {".a.b", "<p class='a a'>", false},
      {"p.a", "<div class=a>", false},
      {"#x", "<p id=x>", true},
      {"#x", "<p id='x y'>", false},
      {"#x", "<p id=y id=x>", false},  // the first counts
      {"#a\\&b", "<p id='a&amp;b'>", true},
      {"[hidden]", "<p HIDDEN>", true},
      {"[data-x]", "<p data-x>", true},
      {"[data-x]", "<p data-xy>", false},
      {"[data-x='1']", "<p data-x=2 data-x=1>", false},
      {"[data-x='']", "<p data-x>", true},
      {"[data-x='a&b']", "<p data-x='a&amp;b'>", true},
      {"[rel~=b]", "<a rel='a b'>", true},
      {"[rel~='a b']", "<a rel='a b'>", false},
      {"[lang|=en]", "<p lang=en>", true},
      {"[lang|=en]", "<p lang=en-GB>", true},
      {"[lang|=en]", "<p lang=eng>", false},
      {"[href^='/ads/']", "<a href=/ads/1>", true},
      {"[href^='/ads/']", "<a href=/x/ads/1>", false},
      {"[href$='.pdf']", "<a href=a.pdf>", true},
      {"[href$='.pdf']", "<a href=a.pdf?x>", false},
      {"[class*=ad]", "<p class='a bad b'>", true},
      {"[class*='']", "<p class=a>", false},
      {"[class^='']", "<p class=a>", false},
      {"[class$='']", "<p class=a>", false},
      {"[title=B i]", "<p title=b>", true},
      {"[title=b i]", "<p title=B>", true},
      {"[title=B]", "<p title=b>", false},
      {"p:not(.a)", "<p class=b>", true},
      {"p:not(.a)", "<p class='b a'>", false},
      {"p:not(.a, [x])", "<p x>", false},
      {":not(p)", "<div>", true},
      {":not(p)", "<p>", false},
      {"my-menu", "<My-Menu>", true},
      {"p, .a", "<div class=a>", true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(std::string(c.selector) + " " + c.html);
    EXPECT_EQ(Fits(c.selector, {c.html}), c.expected);
  }
}

TEST(SelectorSet, ElementsInOthers) {
  const struct {
    const char* selector;
    std::vector<std::string> elements;
    bool expected;
  } kCases[] = {
      {"div p", {"<div>", "<p>"}, true},
      {"div p", {"<div>", "<span>", "<p>"}, true},
      {"div p", {"<p>"}, false},
      {"div p", {"<p>", "<div>"}, false},
      {"div > p", {"<div>", "<p>"}, true},
      {"div > p", {"<div>", "<span>", "<p>"}, false},
      {"div div", {"<div>"}, false},
      {"div div", {"<div>", "<div>"}, true},
      {"ul > li > a", {"<ul>", "<li>", "<a>"}, true},
      {"ul > li > a", {"<ul>", "<li>", "<b>", "<li>", "<a>"}, false},
      {".x p > b", {"<div class=x>", "<i>", "<p>", "<b>"}, true},
      {".x > p b", {"<div class=x>", "<i>", "<p>", "<b>"}, false},
      // The outer part may be fitted by another element than the nearest.
      {".x > i b", {"<p class=x>", "<i>", "<p class=x>", "<u>", "<b>"}, true},
      {"*", {"<p>", "<b>"}, true},
      {"p *", {"<p>", "<b>"}, true},
      {"p *", {"<p>"}, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.selector);
    EXPECT_EQ(Fits(c.selector, c.elements), c.expected);
  }
}

TEST(SelectorSet, TellsWhatASelectorIsForAndWhichWereUsed) {
  SelectorSet set;
  SelectorFault fault;
  uint32_t number = 5;
  for (ElementSelector& selector : ParseSelectors(".a, .b .a, .c", fault)) {
    selector.number = number++;
    set.Add(selector, selector.number == 7 ? SelectorUse::kOnly : SelectorUse::kExclude);
  }
  ReadingBudget budget;
  SelectorMatching matching(set, budget);
  SelectorFit fit = matching.Fit(TagOf("<p class='c b'>", set), {});
  EXPECT_TRUE(fit.isChosen);
  EXPECT_FALSE(fit.isExcluded);
  EXPECT_EQ(matching.used(), std::vector<uint32_t>{7});
  fit = matching.Fit(TagOf("<p class=a>", set), {});
  EXPECT_TRUE(fit.isExcluded);
  EXPECT_FALSE(fit.isChosen);
  matching.Fit(TagOf("<p class='c a'>", set), {});
  EXPECT_EQ(matching.used(), (std::vector<uint32_t>{7, 5}));
}

TEST(SelectorSet, AskedAttributesAreThoseThatTagsHaveNoPlaceFor) {
  const SelectorSet set = SetOf("[href][data-x], [DATA-X=a], .b");
  EXPECT_EQ(set.askedAttributes().Find("Data-X"), 0u);
  EXPECT_EQ(set.askedAttributes().Find("href"), AttributeNames::kNone);
  EXPECT_TRUE(SetOf(".a[href]").askedAttributes().empty());
}

// Whatever a page holds, an element costs its tag and a look at each part.
TEST(SelectorSet, TakesStepsInProportion) {
  std::string selectors;
  for (int i = 0; i < 64; ++i) {
    selectors += (i == 0 ? "" : ",") + std::string(".a .a") + std::to_string(i);
  }
  const SelectorSet set = SetOf(selectors);
  const std::string html = "<p class='" + std::string(100000, 'a') + " a a1 a a1 a2 a63'>";
  ReadingBudget budget;
  SelectorMatching matching(set, budget);
  const Tag tag = TagOf(html, set);
  SelectorPath path;
  for (int i = 0; i < 1000; ++i) {
    const SelectorFit fit = matching.Fit(tag, path);
    path = {fit.parts, path.ancestors | fit.parts};
  }
  EXPECT_LE(budget.steps, 1000 * (64 + 3));
}

}  // namespace
}  // namespace vela::indexer
