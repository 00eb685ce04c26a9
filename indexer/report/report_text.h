// report_text.h: all that a run left out, and what it had to remark, for programs and for people
// who look for one file.
//
// JSON lines, an object each, in this order:
//
//   {"path":"a/b.html","reason":"no_text","text":"no text"}      a file that is no page
//   {"path":...,"field":"price","value":"cheap","reason":"no_amount","text":...}
//                                                                a value that its field cannot take
//   {"path":"a.xhtml","remark":"not_well_formed","subject":"line 3: mismatched tag","text":...}
//                                                                a page, in the index all the same
//   {"path":"a.html","remark":"broken_link","subject":"https://x.example/b.html","link":"next",...}
//                                                                a link that leads nowhere
//   {"remark":"unused_boost","where":"x.toml, line 4","subject":"","text":...}
//                                                                a rule that had no use
//
// `reason` and `remark` are codes (ReasonCode). Of what is no UTF-8 in a path or value the
// bytes are as they were: whoever writes the file repairs them.
#pragma once

#include <string>

#include "indexer/report/summary.h"

namespace vela::indexer {

std::string ReportText(const IndexSummary& summary);

}  // namespace vela::indexer
