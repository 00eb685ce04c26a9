// pdf_page.h: a PDF file as a page, from what pdftotext makes of it.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"

namespace vela::indexer {

// `output`: of pdftotext with -htmlmeta, a head of HTML with the title and meta elements, then the
// text, where a form feed ends each page. Takes over the title, unless it is the name of a file,
// author, subject, keywords and dates. Each page that has text begins a section, "page=7". Lines
// that stand at the head or the foot of most pages stay once. False when the output is not of that
// form.
[[nodiscard]] bool ParsePdfText(std::string_view output, PageContent& page);

}  // namespace vela::indexer
