// picture_page.h: from a picture to the page of what it says of itself.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes title, description, keywords, author and date of a JPEG, PNG, WebP or TIFF file, from XMP,
// else from IPTC, else from EXIF, else from the texts of PNG; keywords and author are its text. One
// that says nothing gives an empty page. kDamaged: it is no such file; else as `budget` ended it.
[[nodiscard]] Reason ReadPicturePage(std::string_view bytes, ReadingBudget& budget,
                                     PageContent& page);

}  // namespace vela::indexer
