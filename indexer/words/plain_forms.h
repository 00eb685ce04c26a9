// plain_forms.h: how a word with accents is typed without them: "cafe" for "café", "ue" as well as
// "u" for "ü", "ss" for "ß".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// The forms of `surface` without accents, lower-cased: at most three, none for plain ASCII.
// "größe" gives "grosse", "groesse" and, as it is written where there is no ß, "grösse".
std::vector<std::string> PlainForms(std::string_view surface);

}  // namespace vela::indexer
