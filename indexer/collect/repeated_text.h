// repeated_text.h: stretches of text that most pages of a site have: banners, menus, notes on
// rights. They are told by their words alone, six in a row at least, whatever the markup around
// them, so that two banners side by side are found as well as one.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "indexer/extract/page.h"

namespace vela::indexer {

constexpr size_t kRepeatedWords = 6;

// Takes the stretches whose every six words in a row are among `repeated` (sorted hashes, see
// shingles.h) out of `body`, but for headings, and runs of which nothing is left. `taken`: the
// stretches, unless it is null.
void LeaveOutRepeated(const std::vector<uint64_t>& repeated, std::vector<TextRun>& body,
                      std::vector<std::string>* taken = nullptr);

// Counts on how many of some pages six words stand in a row.
class RepeatedText {
 public:
  void Add(const std::vector<TextRun>& body);
  // Those on more than half of the pages, and on ten at least; sorted.
  std::vector<uint64_t> Repeated() const;

 private:
  struct Count {
    uint32_t pages = 0;
    uint32_t lastPage = 0;
  };
  std::unordered_map<uint64_t, Count> counts_;
  uint32_t pages_ = 0;
};

}  // namespace vela::indexer
