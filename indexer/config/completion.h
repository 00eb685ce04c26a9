// completion.h: the scripts by which a shell completes the options of vela_index and their values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// The shells for which there is a script.
std::vector<std::string_view> CompletionShells();

// The script for that shell, made from the table of options. Throws IndexError (usage) for another.
std::string CompletionScript(std::string_view shell);

}  // namespace vela::indexer
