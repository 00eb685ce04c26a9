// built_in_template.h: the templates of the search page that come with the program.
#pragma once

#include <string_view>
#include <vector>

namespace vela::indexer {

// The names of all: "default", "minimal", "embed".
std::vector<std::string_view> BuiltInTemplates();

// The embedded file of the built-in template of that name; empty when there is no such template.
std::string_view BuiltInTemplateFile(std::string_view name);

inline bool IsBuiltInTemplate(std::string_view name) { return !BuiltInTemplateFile(name).empty(); }

}  // namespace vela::indexer
