// search_program.h: the program that answers searches, in the index folder under the name that the
// web server asks for.
#pragma once

#include <filesystem>
#include <string>

namespace vela::indexer {

constexpr char kSearchProgramName[] = "search.cgi";

// Copies the program `file`, which may be a link, into the new index folder `fresh`, executable for
// everybody. It comes into place together with the index, and a program that is running there is
// not written to. Throws IndexError.
void InstallProgram(const std::string& file, const std::filesystem::path& fresh);

}  // namespace vela::indexer
