// korean_forms.h: a Korean word without the particle that is written onto it: "패키지" for
// "패키지를", "Debian" for "Debian을".
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// `word` (UTF-8) without the longest particle at its end that fits the sound before it; empty when
// there is none and when less than two syllables, or a letter or digit of ASCII, would be left.
std::string WithoutParticle(std::string_view word);

}  // namespace vela::indexer
