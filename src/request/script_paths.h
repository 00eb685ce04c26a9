// script_paths.h: where the program stands and where its index is.
#pragma once

#include <span>
#include <string_view>

#include "text/fixed_text.h"

namespace vela {

struct ScriptPaths {
  FixedText<2048> scriptFileName;  // the program's own file name, without directory
  FixedText<512> scriptDirectory;  // holds the settings and index files
  FixedText<2048> scriptUrl;       // the program as the web server names it
};

// Splits the program's path: at its last backslash, or without one at its last slash. Without
// either, the directory is the working directory.
void SplitProgramPath(ScriptPaths& paths, std::string_view programPath);

// Takes the index directory from the arguments behind the program's path: the argument after a
// switch "/I" or "/i" (more letters may follow), when it is shorter than 260 bytes. Every argument
// is looked at, so a later switch wins.
void ReadDirectorySwitch(ScriptPaths& paths, std::span<const char* const> arguments);

// Whether the arguments are the words of a query string without "=", which a web server hands to
// the program as arguments: a visitor must not choose the index directory with them. A word comes
// percent-decoded and ends at a NUL. Servers may hand over the first words only, may leave out
// words that decode to nothing, and may put a backslash before any byte.
bool AreArgumentsOfQuery(std::span<const char* const> arguments, std::string_view queryString);

}  // namespace vela
