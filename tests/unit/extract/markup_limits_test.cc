#include "indexer/extract/markup_limits.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

std::string Repeat(const std::string& text, int32_t count) {
  std::string all;
  for (int32_t i = 0; i < count; ++i) all += text;
  return all;
}

TEST(MarkupLimits, OrdinaryPagesPass) {
  const struct {
    const char* what;
    std::string html;
  } kCases[] = {
      {"comparisons in a script", "<script>" + Repeat("for(i=0;i<n;i++)x();", 2500) + "</script>"},
      {"a comment", "<!-- " + Repeat("<div>", 2500) + "-->"},
      {"drawn elements that close themselves",
       "<svg>" + Repeat("<circle r=1 /><path d='M0 0'/>", 2500) + "</svg>"},
      {"a text box", "<textarea>" + Repeat("<b>", 2500) + "</textarea>"},
      {"a value in quotes", "<p title='" + Repeat("<div>", 2500) + "'>"},
      {"a script within a script's comment",
       "<script><!--" + Repeat("<script></script>", 2500) + Repeat("<n>", 2500) + "--></script>"},
      {"character data of a drawing", "<svg><![CDATA[" + Repeat("<g>", 2500) + "]]></svg>"},
      {"list entries without an end", Repeat("<li>x", 2500)},
      {"choices without an end", "<select>" + Repeat("<optgroup><option>x", 2500) + "</select>"},
      {"icons, each with its parts", Repeat("<svg><g><path/></g></svg><p>x", 2500)},
      {"icons that a paragraph ends", Repeat("<svg><p>x", 2500)},
      {"elements side by side", Repeat("<div><b>x</b></div>", 50000)},
      {"unfinished", "<div a='"},
      {"no tags", Repeat("< <= <1 </ <", 5000)},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(CheckMarkup(c.html), Reason::kNone);
  }
}

TEST(MarkupLimits, DeepMarkupIsRefusedHoweverItHides) {
  const struct {
    const char* what;
    std::string html;
  } kCases[] = {
      {"plain", Repeat("<div>", 2001)},
      {"end tags that end nothing", Repeat("<div></x>", 2001)},
      {"self-closing, which HTML does not know", Repeat("<div/>", 2001)},
      {"annotations of signs", "<ruby>" + Repeat("<rt>", 2001)},
      {"groups of choices outside a list", Repeat("<optgroup>", 2001)},
      {"drawings", Repeat("<svg><g>", 1001)},
      {"table cells of a drawing", "<svg>" + Repeat("<td>", 2001)},
      {"HTML in a drawing", "<svg><foreignObject>" + Repeat("<div>", 2001)},
      {"behind a style that names its own end",
       "<style></stylex a='</style>" + Repeat("<div>", 2001) + "'>"},
      {"behind a script within a script's comment",
       "<script><!--<script></script><x a='--></script>" + Repeat("<div>", 2001) + "'>"},
      {"behind an empty comment", "<!-->" + Repeat("<div>", 2001) + "-->"},
      {"behind character data where there is none", "<![CDATA[>" + Repeat("<div>", 2001) + "]]>"},
      {"behind a quote in a name", "<p a=b= '>" + Repeat("<div>", 2001) + "'>"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(CheckMarkup(c.html), Reason::kMarkupTooDeep);
  }
  EXPECT_EQ(CheckMarkup(Repeat("<div>", 2000)), Reason::kNone);
}

TEST(MarkupLimits, ATagHasAtMost2000Attributes) {
  EXPECT_EQ(CheckMarkup("<p" + Repeat(" a", 2000) + ">"), Reason::kNone);
  EXPECT_EQ(CheckMarkup("<p" + Repeat(" a", 2001) + ">"), Reason::kMarkupTooLarge);
  EXPECT_EQ(CheckMarkup("<p" + Repeat("/a='b'", 2001) + ">"), Reason::kMarkupTooLarge);
  EXPECT_EQ(CheckMarkup("<p a=\"" + Repeat(" a", 2001) + "\">"), Reason::kNone);
}

}  // namespace
}  // namespace vela::indexer
