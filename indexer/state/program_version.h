// program_version.h: which programs turn the bytes of a site into blocks.
#pragma once

#include <string>
#include <vector>

#include "indexer/source/fingerprint.h"

namespace vela::indexer {

// Alike on machines with the same programs. Two builds of this program differ, whatever version
// they call themselves, and so do two of a library that it has loaded; `programs`, those that it
// starts (DocumentReaders), differ by their time and size, as packages give them.
Fingerprint ProgramVersion(const std::vector<std::string>& programs);

}  // namespace vela::indexer
