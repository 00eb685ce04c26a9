#include "indexer/collect/section_pages.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "indexer/words/heading_text.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/word_cut.h"

namespace vela::indexer {

namespace {

constexpr uint8_t kLowestHeading = 3;
// Of a section that is worth a result.
constexpr uint32_t kLeastWords = 30;
constexpr size_t kSectionLimit = 2000;  // of one page

uint32_t CountWords(std::string_view text) {
  uint32_t count = 0;
  while (!NextChunk(text).empty()) ++count;
  return count;
}

bool MayBegin(const TextRun& run) {
  return run.headingLevel >= 1 && run.headingLevel <= kLowestHeading && !run.anchor.empty() &&
         run.anchor.size() <= kSectionAnchorLimit;
}

}  // namespace

std::vector<SectionPage> TakeSections(Page& page, uint32_t words) {
  std::vector<TextRun>& body = page.content.body;
  std::vector<uint32_t> counts;
  uint64_t all = 0;
  for (const TextRun& run : body) {
    counts.push_back(CountWords(run.text));
    all += counts.back();
  }
  if (all <= words) return {};
  const std::string title = LowerUtf8Copy(PlainHeading(page.facts.title));
  std::vector<size_t> starts;
  uint64_t since = 0;  // words of the section under way
  bool hasText = false;
  for (size_t i = 0; i < body.size() && starts.size() < kSectionLimit; ++i) {
    const bool isFull = starts.empty() || since >= kLeastWords;
    if (MayBegin(body[i]) && isFull) {
      const std::string heading = LowerUtf8Copy(PlainHeading(body[i].text));
      const bool isOfPage =
          starts.empty() && !hasText && (body[i].headingLevel == 1 || title.starts_with(heading));
      if (!isOfPage && !heading.empty()) {
        starts.push_back(i);
        since = 0;
      }
    }
    since += counts[i];
    hasText = hasText || counts[i] != 0;
  }
  std::vector<SectionPage> sections;
  for (size_t i = 0; i < starts.size(); ++i) {
    const size_t end = i + 1 < starts.size() ? starts[i + 1] : body.size();
    SectionPage section = {.anchor = body[starts[i]].anchor, .page = {}};
    section.page.facts = page.facts;
    section.page.facts.title = PlainHeading(body[starts[i]].text);
    if (!page.facts.title.empty()) section.page.facts.title += " - " + page.facts.title;
    PageContent& content = section.page.content;
    content.metas = page.content.metas;
    content.language = page.content.language;
    content.linkShare = page.content.linkShare;
    content.body.assign(std::move_iterator(body.begin() + static_cast<ptrdiff_t>(starts[i])),
                        std::move_iterator(body.begin() + static_cast<ptrdiff_t>(end)));
    sections.push_back(std::move(section));
  }
  if (!starts.empty()) body.resize(starts.front());
  return sections;
}

}  // namespace vela::indexer
