// site_sections.h: the sections of long pages that addresses lead to, as pages join.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/collect/page_cutter.h"
#include "indexer/collect/page_words.h"
#include "indexer/collect/temporary_file.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// One of them, or where the running text of a page ends: then without an anchor.
struct SiteSection {
  uint64_t token = 0;  // counted from the start of the page text
  uint32_t text = 0;   // where its texts begin
  uint16_t anchorLength = 0;
  uint16_t headingLength = 0;
};

// All of them, on disk until they are written.
class SiteSections {
 public:
  // `folder` is where temporary files may lie.
  explicit SiteSections(const std::filesystem::path& folder);

  // Adds the next one in the order of the page text, with its anchor and its heading.
  void Add(SiteSection section, std::string_view anchor, std::string_view heading);
  void AddEnd(uint64_t token);

  uint64_t size() const { return sections_.size() / sizeof(SiteSection); }
  // Of the texts, anchor and heading of each section, one behind the other.
  uint64_t textBytes() const { return texts_.size(); }
  // Calls `use` for every section, with its anchor and its heading.
  void ForEach(const std::function<void(const SiteSection& section, std::string_view anchor,
                                        std::string_view heading)>& use);

 private:
  TemporaryFile sections_;
  TemporaryFile texts_;
};

// One of a page.
struct PageSection {
  uint32_t token = 0;   // among the page's tokens
  std::string anchor;   // 1 to 65,535 bytes
  std::string heading;  // as it is stored, at most kHeadingLimit bytes
};

constexpr size_t kHeadingLimit = 90;

// Those of the page, whose words `words` are and whose runs with anchors begin at `starts`. A page
// that a visitor overlooks at a glance has none, nor has the heading of the whole page.
std::vector<PageSection> SectionsOf(const PageTexts& page, const PageWords& words,
                                    std::span<const SectionStart> starts,
                                    const IndexCharset& charset);

// Adds those of a page that joined, whose text begins at `firstToken` and has so many tokens of
// running text.
void AddSections(std::span<const PageSection> page, uint64_t firstToken, uint32_t bodyTokens,
                 SiteSections& sections);

}  // namespace vela::indexer
