// pdf_page.h: a PDF file as a page, from what pdftotext makes of it.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// `output`: of pdftotext with -htmlmeta, a head of HTML with the title and meta elements, then the
// text, where a form feed ends each page. Takes over the title, unless it is the name of a file,
// author, subject, keywords and dates. Each page that has text begins a section, "page=7". Lines
// that stand at the head or the foot of many pages stay once. kDamaged: the output is not of that
// form. Else kNone, or why `budget` ended the reading.
[[nodiscard]] Reason ParsePdfText(std::string_view output, ReadingBudget& budget,
                                  PageContent& page);

}  // namespace vela::indexer
