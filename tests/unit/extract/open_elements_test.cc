#include "indexer/extract/open_elements.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

OpenElement Of(Element element, Namespace space = Namespace::kHtml) {
  OpenElement open;
  open.element = element;
  open.space = space;
  return open;
}

struct Stack {
  ReadingBudget budget;
  OpenElements open{budget};

  explicit Stack(std::initializer_list<Element> elements) {
    for (const Element element : elements) open.Push(Of(element), {});
  }
};

TEST(OpenElements, FindsTheHighestOfAName) {
  Stack stack({Element::kHtml, Element::kDiv, Element::kP, Element::kDiv});
  EXPECT_EQ(stack.open.Find(Element::kDiv), 3);
  stack.open.Pop();
  EXPECT_EQ(stack.open.Find(Element::kDiv), 1);
  EXPECT_EQ(stack.open.Find(Element::kSpan), kNotOpen);
}

TEST(OpenElements, OtherNamesAreToldApartInEitherCase) {
  Stack stack({Element::kHtml});
  stack.open.Push(Of(Element::kOther), "X-Card");
  stack.open.Push(Of(Element::kOther), "x-list");
  stack.open.Push(Of(Element::kOther, Namespace::kSvg), "x-card");
  EXPECT_EQ(stack.open.Find(Element::kOther, "x-card", false), 1);
  EXPECT_EQ(stack.open.Find(Element::kOther, "X-LIST", false), 2);
  EXPECT_EQ(stack.open.Find(Element::kOther, "x-card", true), 3);
  stack.open.Pop();
  EXPECT_EQ(stack.open.Find(Element::kOther, "x-card", true), kNotOpen);
}

TEST(OpenElements, Scopes) {
  EXPECT_TRUE(Stack({Element::kHtml, Element::kDiv, Element::kSpan}).open.IsInScope(Element::kDiv));
  EXPECT_FALSE(Stack({Element::kHtml, Element::kDiv, Element::kTd}).open.IsInScope(Element::kDiv));
  EXPECT_TRUE(Stack({Element::kHtml, Element::kTd}).open.IsInScope(Element::kTd));
  EXPECT_TRUE(Stack({Element::kHtml, Element::kP, Element::kUl}).open.IsParagraphInScope());
  EXPECT_FALSE(Stack({Element::kHtml, Element::kP, Element::kButton}).open.IsParagraphInScope());
  EXPECT_TRUE(Stack({Element::kHtml, Element::kLi, Element::kP}).open.IsListItemInScope());
  EXPECT_FALSE(Stack({Element::kHtml, Element::kLi, Element::kOl}).open.IsListItemInScope());
  EXPECT_TRUE(Stack({Element::kHtml, Element::kTable, Element::kTr, Element::kDiv})
                  .open.IsInTableScope(Element::kTr));
  EXPECT_FALSE(Stack({Element::kHtml, Element::kTr, Element::kTable, Element::kDiv})
                   .open.IsInTableScope(Element::kTr));
}

TEST(OpenElements, NearestOfEachKind) {
  Stack stack({Element::kHtml, Element::kLi, Element::kDiv, Element::kSpan});
  EXPECT_EQ(stack.open.Current().special, 2);
  EXPECT_EQ(stack.open.Current().item, 1);
  EXPECT_EQ(stack.open.Current().scope, 0);
  stack.open.Push(Of(Element::kSvg, Namespace::kSvg), {});
  EXPECT_EQ(stack.open.Current().html, 3);
  EXPECT_EQ(stack.open.Current().special, 2);
  stack.open.Push(Of(Element::kDesc, Namespace::kSvg), {});
  EXPECT_EQ(stack.open.Current().special, 5);
  EXPECT_EQ(stack.open.Current().scope, 5);
}

TEST(OpenElements, OneUnderOthersEnds) {
  Stack stack({Element::kHtml, Element::kBody, Element::kForm, Element::kSpan});
  EXPECT_EQ(stack.open.Current().special, 2);
  stack.open.End(2);
  EXPECT_EQ(stack.open.Find(Element::kForm), kNotOpen);
  EXPECT_EQ(stack.open.Current().special, 1);
  EXPECT_EQ(stack.open.Count(), 4);
  stack.open.Pop();
  EXPECT_TRUE(stack.open.Current().isEnded);
  stack.open.Pop();
  EXPECT_EQ(stack.open.Current().element, Element::kBody);
}

}  // namespace
}  // namespace vela::indexer
