// language_file.h: the texts of the search page, from a language that comes with the program or a
// file of the owner's.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// The names of the languages that come with the program: "dutch", "english" and so on.
std::vector<std::string_view> BuiltInLanguages();

// The lines of a built-in language ("german") or of a .vlang file; see CheckedLanguage.
std::string LoadLanguage(const std::string& language);

// Checks the content of a language file, lines `STR_KEY = "text"` for each of the 49 keys, and
// returns those lines in the order of the keys. Throws IndexError naming what is missing; `name`
// is how the file is called in the message.
std::string CheckedLanguage(std::string_view content, const std::string& name);

}  // namespace vela::indexer
