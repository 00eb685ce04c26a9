// dictionary_check.h: the check of the dictionary (format/dictionary.h).
#pragma once

#include <cstdint>
#include <vector>

#include "inspector/check/check_input.h"

namespace vela::inspector {

// How many spellings beside its own each word has, by number, as page text can name them; nothing
// where the dictionary cannot be used.
std::vector<uint32_t> CheckDictionary(const CheckInput& input);

}  // namespace vela::inspector
