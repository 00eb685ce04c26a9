// page_bytes.h: what was read of a document as bytes, for the way from the process that read it.
//
// Little-endian. A text is its length in 4 bytes and as many bytes.
//
//   offset  size  field
//   0       1     Reason: kNone, or one of IsReasonOfReader; then nothing follows
//   1             texts: title, description, canonical, base, time, markupFault
//                 4 bytes: how many meta elements; of each two texts, name and content
//                 4 bytes: how many runs; of each
//                   1 byte: headingLevel
//                   2 texts: anchor, text
#pragma once

#include <string>
#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Whether a process that reads documents may give that for leaving one out.
bool IsReasonOfReader(Reason reason);

std::string PageBytes(Reason reason, const PageContent& page);

// Reads what a process wrote that a hostile document may have taken over. False, with `page` empty,
// for anything but what PageBytes makes of texts that are clean (see CleanText).
[[nodiscard]] bool ReadPageBytes(std::string_view bytes, Reason& reason, PageContent& page);

}  // namespace vela::indexer
