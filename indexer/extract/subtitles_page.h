// subtitles_page.h: the subtitles of a film (WebVTT, SubRip) as a page.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"

namespace vela::indexer {

// Takes what is said, without times, numbers, settings and markup; a line that the one before
// repeats, as rolling captions do, stands once. The title is what stands behind "WEBVTT", if
// anything. `text` is UTF-8.
void ParseSubtitlesPage(std::string_view text, PageContent& page);

}  // namespace vela::indexer
