#include "indexer/config/element_selector.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

// One test as "kind name comparison value flag", with "!" before a negated one.
std::string Written(const SimpleSelector& simple) {
  constexpr const char* kComparisons[] = {"", "=", "~=", "|=", "^=", "$=", "*="};
  constexpr char kKinds[] = {'e', '#', '.', '@'};
  std::string text(simple.isNegated ? "!" : "");
  text += kKinds[static_cast<size_t>(simple.kind)] + simple.name;
  text += kComparisons[static_cast<size_t>(simple.test)] + simple.value;
  return text + (simple.ignoresCase ? "/i" : "");
}

// All that was understood: tests after each other, parts with " " or " > ", selectors with " , ".
std::string Understood(std::string_view text) {
  SelectorFault fault;
  std::string all;
  for (const ElementSelector& selector : ParseSelectors(text, fault)) {
    if (!all.empty()) all += " , ";
    for (const CompoundSelector& part : selector.parts) {
      if (&part != &selector.parts.front()) all += part.isChild ? " > " : " ";
      if (part.tests.empty()) all += "*";
      for (const SimpleSelector& simple : part.tests) all += Written(simple);
    }
  }
  EXPECT_EQ(fault.what, "");
  return all;
}

TEST(ElementSelector, UnderstandsSelectors) {
  const struct {
    const char* what;
    const char* text;
    const char* expected;
  } kCases[] = {
      {"an element, in any case", "NAV", "enav"},
      {"an element that a page defines", "my-menu", "emy-menu"},
      {"any element", "*", "*"},
      {"a class, whose case counts", ".sideBar", ".sideBar"},
      {"an id", "#footer", "#footer"},
      {"several at once", "div.a.b#c", "ediv.a.b#c"},
      {"any element with a class", "*.a", ".a"},
      {"anywhere inside", "#menu  a", "#menu ea"},
      {"right inside, with blanks and without", "ul > li>a", "eul > eli > ea"},
      {"a list", " .a , .b>c ", ".a , .b > ec"},
      {"an attribute", "[ DATA-x ]", "@data-x"},
      {"all comparisons", "[a=b][c~=d][e|=f][g^=h][i$=j][k*=l]", "@a=b@c~=d@e|=f@g^=h@i$=j@k*=l"},
      {"texts in quotes", "[a='b c'][d = \"e'f\"]", "@a=b c@d=e'f"},
      {"an empty text", "[a='']", "@a="},
      {"case that does not count", "[a='B' i][c=D I]", "@a=b/i@c=d/i"},
      {"case that counts", "[a=B s]", "@a=B"},
      {"what must not be", "div:not(.a):not( [b] , #c, p )", "ediv!.a!@b!#c!ep"},
      {"nothing but what must not be", ":not(.a)", "!.a"},
      {"an escaped sign", "a.md\\:hidden", "ea.md:hidden"},
      {"a character by its number", ".\\31 23.\\E9 t\\E9", ".123.\u00E9t\u00E9"},
      {"letters beyond ASCII", ".men\u00FC", ".men\u00FC"},
      {"signs that are no combinators in a text", "[a='>,+ ~']", "@a=>,+ ~"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Understood(c.text), c.expected);
  }
}

TEST(ElementSelector, KeepsWhatTheOwnerWrote) {
  SelectorFault fault;
  const std::vector<ElementSelector> selectors = ParseSelectors(" .A > b , [ c ] ", fault);
  ASSERT_EQ(selectors.size(), 2u);
  EXPECT_EQ(selectors[0].text, ".A > b");
  EXPECT_EQ(selectors[1].text, "[ c ]");
}

TEST(ElementSelector, SaysWhereItCannotGoOn) {
  constexpr const char* kNothing =
      "The name of an element, *, .class, #id or [attribute] must stand here.";
  constexpr const char* kName = "A name must stand here; other texts stand in quotes: [id=\"4\"].";
  constexpr const char* kBeside =
      "Elements beside others are not told apart: only a blank and > can stand between.";
  constexpr const char* kColon = "Of what begins with a colon only :not(...) is known.";
  const struct {
    const char* text;
    size_t at;
    const char* what;
  } kCases[] = {
      {"", 0, kNothing},
      {"  ", 2, kNothing},
      {".a,", 3, kNothing},
      {",.a", 0, kNothing},
      {"> a", 0, kNothing},
      {"a >", 3, kNothing},
      {"a > > b", 4, kNothing},
      {".", 1, kName},
      {"#4", 1, kName},
      {"[a=4]", 3, kName},
      {".-4", 1, kName},
      {"h1 + p", 3, kBeside},
      {"h1~p", 2, kBeside},
      {"a:hover", 1, kColon},
      {"p::before", 1, kColon},
      {"a:not", 1, kColon},
      {"svg|a", 3, "Namespaces are not known."},
      {"a /* b */", 2, "A remark cannot stand in a selector."},
      {"[a", 2, "Behind the name of the attribute ], =, ~=, |=, ^=, $= or *= must stand."},
      {"[a!=b]", 2, "Behind the name of the attribute ], =, ~=, |=, ^=, $= or *= must stand."},
      {"[a=b", 4, "The bracket that ends the attribute is missing."},
      {"[a=b x]", 5, "The bracket that ends the attribute is missing."},
      {"[a='b]", 3, "The quote at the end of the text is missing."},
      {":not(.a", 7, "In :not(...) a single element, class, id or attribute must stand."},
      {":not(.a.b)", 7, "In :not(...) a single element, class, id or attribute must stand."},
      {":not()", 5, kNothing},
      {".a\\", 2, "A character must stand behind the backslash."},
      {".a\\110000 ", 2, "There is no such character."},
      {".a\\d800", 2, "There is no such character."},
      {"a b c$", 5, kNothing},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    SelectorFault fault;
    EXPECT_TRUE(ParseSelectors(c.text, fault).empty());
    EXPECT_EQ(fault.at, c.at);
    EXPECT_EQ(fault.what, c.what);
  }
}

}  // namespace
}  // namespace vela::indexer
