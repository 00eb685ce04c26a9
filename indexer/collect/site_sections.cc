#include "indexer/collect/site_sections.h"

#include <algorithm>

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

void AddSections(std::span<const PageSection> page, uint64_t firstToken, uint32_t bodyTokens,
                 SiteSections& sections) {
  if (page.empty() || sections.textBytes() > kTextLimit) return;
  for (const PageSection& section : page) {
    sections.Add({.token = firstToken + section.token}, section.anchor, section.heading);
  }
  sections.AddEnd(firstToken + bodyTokens);
}

SiteSections::SiteSections(const std::filesystem::path& folder)
    : sections_(folder / "sections.tmp"), texts_(folder / "sectiontexts.tmp") {}

void SiteSections::Add(SiteSection section, std::string_view anchor, std::string_view heading) {
  section.text = static_cast<uint32_t>(texts_.size());
  section.anchorLength = static_cast<uint16_t>(anchor.size());
  section.headingLength = static_cast<uint16_t>(heading.size());
  sections_.Append({reinterpret_cast<const char*>(&section), sizeof section});
  texts_.Append(anchor);
  texts_.Append(heading);
}

void SiteSections::AddEnd(uint64_t token) { Add({.token = token}, {}, {}); }

void SiteSections::ForEach(
    const std::function<void(const SiteSection& section, std::string_view anchor,
                             std::string_view heading)>& use) {
  constexpr uint64_t kPortion = 4096;
  std::vector<SiteSection> portion;
  std::string texts;
  for (uint64_t done = 0; done < size(); done += portion.size()) {
    portion.resize(static_cast<size_t>(std::min(kPortion, size() - done)));
    sections_.Read(done * sizeof(SiteSection),
                   {reinterpret_cast<char*>(portion.data()), portion.size() * sizeof(SiteSection)});
    const uint32_t first = portion.front().text;
    const SiteSection& last = portion.back();
    texts.resize(size_t{last.text} + last.anchorLength + last.headingLength - first);
    if (!texts.empty()) texts_.Read(first, texts);
    for (const SiteSection& section : portion) {
      const std::string_view text = std::string_view(texts).substr(section.text - first);
      use(section, text.substr(0, section.anchorLength),
          text.substr(section.anchorLength, section.headingLength));
    }
  }
}

}  // namespace vela::indexer
