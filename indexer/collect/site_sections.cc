#include "indexer/collect/site_sections.h"

#include "indexer/words/heading_text.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/stored_text.h"

namespace vela::indexer {

namespace {

// Of the running text of a page that is worth links into it.
constexpr uint32_t kLeastWords = 300;
// Bytes of a heading as it is shown.
constexpr size_t kHeadingLimit = 90;
// The sections of one page, and the texts of all.
constexpr size_t kPageLimit = 2000;
constexpr size_t kTextLimit = size_t{1} << 30;

}  // namespace

void AddSections(const PageTexts& page, const PageTokens& tokens, uint32_t number,
                 uint64_t firstToken, const IndexCharset& charset, SiteSections& sections) {
  if (tokens.bodyWords < kLeastWords) return;
  const size_t before = sections.sections.size();
  const std::string title = LowerUtf8Copy(PlainHeading(page.title));
  for (const SectionStart& start : tokens.sections) {
    if (sections.sections.size() - before == kPageLimit || sections.texts.size() > kTextLimit)
      break;
    const TextRun& run = page.content.body[start.run];
    const std::string heading = PlainHeading(run.text);
    // What stands below it needs no other place than the page.
    const bool isOfPage = run.headingLevel == 1 ||
                          (run.headingLevel != 0 && title.starts_with(LowerUtf8Copy(heading)));
    if (isOfPage && sections.sections.size() == before) continue;
    const std::string shown = StoredText(heading, kHeadingLimit, charset);
    sections.sections.push_back({.token = firstToken + start.token,
                                 .page = number,
                                 .text = static_cast<uint32_t>(sections.texts.size()),
                                 .anchorLength = static_cast<uint16_t>(run.anchor.size()),
                                 .headingLength = static_cast<uint16_t>(shown.size())});
    sections.texts.append(run.anchor).append(shown);
  }
  if (sections.sections.size() == before) return;
  sections.sections.push_back({.token = firstToken + tokens.bodyTokens, .page = number});
}

}  // namespace vela::indexer
