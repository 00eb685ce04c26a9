#include "indexer/collect/site_sections.h"

#include "indexer/words/heading_text.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/stored_text.h"

namespace vela::indexer {

namespace {

// Of the running text of a page that is worth links into it.
constexpr uint32_t kLeastWords = 300;
// The sections of one page, and the texts of all.
constexpr size_t kPageLimit = 2000;
constexpr size_t kTextLimit = size_t{1} << 30;

}  // namespace

std::vector<PageSection> SectionsOf(const PageTexts& page, const PageWords& words,
                                    std::span<const SectionStart> starts,
                                    const IndexCharset& charset) {
  std::vector<PageSection> sections;
  if (words.bodyWords < kLeastWords) return sections;
  const std::string title = LowerUtf8Copy(PlainHeading(page.title));
  for (const SectionStart& start : starts) {
    if (sections.size() == kPageLimit) break;
    const TextRun& run = page.content.body[start.run];
    const std::string heading = PlainHeading(run.text);
    // What stands below it needs no other place than the page.
    const bool isOfPage = run.headingLevel == 1 ||
                          (run.headingLevel != 0 && title.starts_with(LowerUtf8Copy(heading)));
    if (isOfPage && sections.empty()) continue;
    sections.push_back({.token = start.token,
                        .anchor = run.anchor,
                        .heading = StoredText(heading, kHeadingLimit, charset)});
  }
  return sections;
}

void AddSections(std::span<const PageSection> page, uint32_t number, uint64_t firstToken,
                 uint32_t bodyTokens, SiteSections& sections) {
  if (page.empty() || sections.texts.size() > kTextLimit) return;
  for (const PageSection& section : page) {
    sections.sections.push_back({.token = firstToken + section.token,
                                 .page = number,
                                 .text = static_cast<uint32_t>(sections.texts.size()),
                                 .anchorLength = static_cast<uint16_t>(section.anchor.size()),
                                 .headingLength = static_cast<uint16_t>(section.heading.size())});
    sections.texts.append(section.anchor).append(section.heading);
  }
  sections.sections.push_back({.token = firstToken + bodyTokens, .page = number});
}

}  // namespace vela::indexer
