// language_file.h: the texts of the search page, from a language that comes with the program or a
// file of the owner's. Either holds lines `KEY = "text"` in UTF-8; lines of other keys than the
// two kinds below are passed over.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// The words of the built-in templates, as they stand in HTML, by their keys TEMPLATE_....
using TemplateWords = std::map<std::string, std::string, std::less<>>;

struct Language {
  // Lines of the 49 keys STR_... and of those of kFurtherTexts that the file has, in their order,
  // as settings.vdat has them.
  std::string strings;
  TemplateWords templateWords;
};

// The names of the languages that come with the program: "dutch", "english" and so on.
std::vector<std::string_view> BuiltInLanguages();

// Whether the name of a language is that of a file.
bool IsLanguagePath(std::string_view language);

// A built-in language ("german") or a .vlang file. Template words that it lacks are English. Throws
// IndexError; see ReadLanguage.
Language LoadLanguage(const std::string& language);

// What the content of a language file gives by itself. Throws IndexError (usage) naming a key STR_
// that is missing or a line that is not in the form; `name` is how the file is called in the
// message.
Language ReadLanguage(std::string_view content, const std::string& name);

}  // namespace vela::indexer
