// wording.h: how explanations name what they found.
#pragma once

#include <cstdint>
#include <string>

#include "indexer/report/reason.h"

namespace vela::indexer {

// "In quotes".
std::string Quoted(const std::string& text);

// The text on one line, cut where it is long.
std::string Excerpt(std::string text);

// "1 link", "2,000 links".
std::string Counted(uint64_t count, const char* one, const char* several);
std::string Words(uint64_t count);

// Of seconds since 1970: "2026-11-23 09:30 UTC".
std::string DateText(int64_t seconds);

// What became of a page that is left out; `other` is the page on account of which, or empty.
std::string LeftOutText(Reason reason, const std::string& other = {});

}  // namespace vela::indexer
