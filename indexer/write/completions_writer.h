// completions_writer.h: where the words of suggestions begin (format/completions.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace vela::indexer {

// Writes the file that belongs to the finished autocomplete file in `folder`, whose lines offer
// these texts, in their order. Returns its size; 0, and nothing is written, when the texts are too
// many for it.
uint64_t WriteCompletions(const std::filesystem::path& folder, std::span<const std::string> texts);

}  // namespace vela::indexer
