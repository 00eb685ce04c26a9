// section_packer.h: one block of sections (format/sections.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "format/sections.h"

namespace vela::indexer {

// Takes sections until its block is full, and begins again.
class SectionPacker {
 public:
  // Whether the block has no room for a section of such texts.
  bool IsFullFor(size_t textBytes) const {
    return count_ == kSectionsPerBlock || textBytes > kSectionTextRoom - texts_.size();
  }
  // Adds one that begins so many bytes of the page text behind the one before. The block is not
  // full for it.
  void Add(uint64_t behind, std::string_view anchor, std::string_view heading);
  bool empty() const { return count_ == 0; }

  // Ends the block, which is valid until the next one ends.
  std::string_view Finish();

 private:
  struct Copy {
    size_t behind = 0;
    size_t count = 0;  // below kSectionCopyLeast: none
  };

  void PutNumber(uint64_t number);
  void PutLiterals(std::string_view bytes);
  Copy LongestCopy(size_t at) const;
  void Learn(size_t at);

  size_t count_ = 0;   // of sections
  std::string block_;  // as it is written
  std::string finished_;
  std::string texts_;  // of its sections
  // Places of the texts, added one: the last one where such three bytes begin, by a hash of them,
  // and by place the one before it of that hash; 0: none.
  std::vector<uint16_t> last_ = std::vector<uint16_t>(size_t{1} << kHashBits);
  std::vector<uint16_t> before_ = std::vector<uint16_t>(kSectionTextRoom);

  static constexpr int kHashBits = 11;
};

}  // namespace vela::indexer
