// picture_texts.h: what the pages of a site say of its pictures, which are pages of their own then:
// the alternative texts by which they show them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/page.h"
#include "indexer/site/print_table.h"
#include "indexer/source/file_endings.h"

namespace vela::indexer {

// A text for what may be a picture of the site.
struct PictureText {
  uint64_t picture = 0;  // AddressPrint
  std::string text;      // never empty, up to kPictureTextLimit bytes
};

// So many of one page at most.
inline constexpr size_t kPageTextsLimit = 1000;

// Those of the page for what lies below `base`, the site's address, ending in "/", and is called as
// pictures are; in the page's order, each once. Servers do not look at the query of an address
// ("a.jpg?v=2") that is a file's.
std::vector<PictureText> PictureTextsOf(const Page& page, const std::string& base,
                                        const FileEndings& endings);

class PictureTexts {
 public:
  // Different texts of one picture, and bytes of the texts of all, beyond which no more is kept.
  static constexpr size_t kMostTexts = 10;
  static constexpr size_t kMostBytes = size_t{64} << 20;
  explicit PictureTexts(size_t mostBytes = kMostBytes) : mostBytes_(mostBytes) {}

  // A picture of the site. All of them come before the first text.
  void AddPicture(std::string_view address);

  // Takes the texts of one more page. Those for other than pictures of the site are not kept.
  void Add(std::span<const PictureText> texts);

  // The different texts of a picture, in the order in which they came; until the next are added.
  std::span<const std::string> Of(std::string_view address) const;

  // Bytes that it takes, nearly.
  size_t memory() const {
    return places_.memory() + texts_.capacity() * sizeof(std::vector<std::string>) +
           count_ * sizeof(std::string) + bytes_;
  }

 private:
  size_t mostBytes_;
  size_t bytes_ = 0;  // of all texts
  size_t count_ = 0;
  PrintTable<uint32_t> places_;  // of the pictures' texts, by address
  std::vector<std::vector<std::string>> texts_;
};

}  // namespace vela::indexer
