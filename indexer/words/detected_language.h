// detected_language.h: the language that a text is written in, by its letters and words.
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// The bytes of a text that are looked at; more make no difference.
constexpr size_t kLanguageSampleBytes = 4096;

// The language of `text`, UTF-8, from its first kLanguageSampleBytes: its code in small letters,
// without a region ("pt", "zh"). Of markup (`isMarkup`) what stands between its tags counts. Empty
// for less than some ten words, for no UTF-8, and for what may be one language or another.
std::string DetectedLanguage(std::string_view text, bool isMarkup = false);

// Whether `code` may be that of a language: two or three small letters.
bool IsLanguageCode(std::string_view code);

}  // namespace vela::indexer
