#include "indexer/report/report_text.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(ReportText, HoldsOneObjectForEachThingLeftOut) {
  IndexSummary summary;
  for (const char* path : {"a.html", "b.html", "c.html", "d\"\\\n.html"}) {
    AddLeftOut(summary.files, Reason::kNoText, path);
  }
  AddLeftOut(summary.otherKinds, Reason::kOtherKind, "a.zip", ".zip");
  AddLeftOut(summary.metaValues, Reason::kNoAmount, "e.html", "price", "cheap");
  AddLeftOut(summary.remarks, Reason::kNotWellFormed, "f.xhtml", {}, "line 3: mismatched tag");
  summary.warnings.push_back({Reason::kUnusedBoost, "x.toml, line 4", ""});
  EXPECT_EQ(ReportText(summary),
            R"({"path":"a.html","reason":"no_text","text":"no text"}
{"path":"b.html","reason":"no_text","text":"no text"}
{"path":"c.html","reason":"no_text","text":"no text"}
{"path":"d\"\\\u000a.html","reason":"no_text","text":"no text"}
{"path":"a.zip","reason":"other_kind","text":"of a kind that is not read"}
{"path":"e.html","field":"price","value":"cheap","reason":"no_amount","text":"no amount"}
{"path":"f.xhtml","remark":"not_well_formed","subject":"line 3: mismatched tag","text":"no well-formed XHTML, read as HTML"}
{"remark":"unused_boost","where":"x.toml, line 4","subject":"","text":"x.toml, line 4: this [[boost]] fits no page"}
)");
}

}  // namespace
}  // namespace vela::indexer
