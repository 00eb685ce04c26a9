#include "indexer/explanation/explain_content.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "indexer/collect/site_habits.h"
#include "indexer/explanation/wording.h"

namespace vela::indexer {

namespace {

std::string_view PartReasonText(PartReason reason) {
  constexpr std::string_view kTexts[] = {
      "navigation",
      "surrounds the content of the page",
      "tools of the page",
      "leads past what surrounds the content",
      "hidden",
      "no text for readers",
      "template",
      "exclude_elements",
      "data-vela-ignore",
      "between vela:off and vela:on",
      "outside of the part that is the content",
  };
  return kTexts[static_cast<size_t>(reason)];
}

// What most pages of the site have (repeated_text).
void AddRepeated(const Page& page, const SiteHabits& habits, WordCounter& counter,
                 std::vector<std::string>& details, uint64_t& sum) {
  const Page seen = AsSeen(habits, page);
  size_t at = 0;
  for (const TextRun& run : page.content.body) {
    if (at < seen.content.body.size() && seen.content.body[at].text == run.text) {
      ++at;
      continue;
    }
    const bool isCut =
        at < seen.content.body.size() && run.text.find(seen.content.body[at].text) != run.text.npos;
    const uint32_t words =
        counter.Of(run.text) - (isCut ? counter.Of(seen.content.body[at].text) : 0);
    if (isCut) ++at;
    if (words == 0) continue;
    sum += words;
    details.push_back(Words(words) +
                      ": the same on most pages (repeated_text): " + Quoted(Excerpt(run.text)));
  }
}

}  // namespace

void ExplainContent(const Page& page, const MarkupNotes& notes, bool isRead,
                    const SiteConfig& config, WordCounter& counter, Explanation& said) {
  const ContentUse& use = page.content.use;
  if (isRead && use.rule != 0) {
    said.Add("Rule", "[[content]] of " + config.contentRules[use.rule - 1].where);
  }
  if (isRead && use.isChosen)
    said.Add("Content", "chosen elements alone (only_elements, data-vela-body)");
  if (isRead && use.lacksChosen) said.Add("Remark", FindingText({Reason::kNothingChosen, {}, {}}));
  if (isRead && use.isLeftOff) said.Add("Remark", FindingText({Reason::kLeftOff, {}, {}}));
  std::vector<std::string> details;
  uint64_t sum = 0;
  std::map<std::string, uint64_t> unread;
  for (const LeftOutPart& part : notes.parts) {
    if (part.reason == PartReason::kFrame && notes.countsFrame) continue;
    const uint32_t words = counter.Of(part.text);
    sum += words;
    if (words == 0 && part.reason == PartReason::kUnread) ++unread[part.element];
    const bool isOwners = part.reason == PartReason::kSelector ||
                          part.reason == PartReason::kIgnored || part.reason == PartReason::kRemark;
    if (words == 0 && !isOwners) continue;
    std::string why(PartReasonText(part.reason));
    if (part.reason == PartReason::kSelector && part.selector < config.selectors.size()) {
      const NamedSelector& selector = config.selectors[part.selector];
      why += " " + Quoted(selector.text);
      if (!selector.where.empty()) why += ", " + selector.where;
    }
    std::string text = Words(words) + ": ";
    if (!part.element.empty()) text += Excerpt(part.element) + ", ";
    text += why;
    if (words != 0) text += ": " + Quoted(Excerpt(part.text));
    details.push_back(std::move(text));
  }
  for (const auto& [element, count] : unread) {
    details.push_back(Counted(count, "element ", "elements ") + Excerpt(element) + ", " +
                      std::string(PartReasonText(PartReason::kUnread)));
  }
  if (notes.countsFrame) {
    said.Add("Remark", "the page has no text but what surrounds its content: that is taken");
  }
  if (isRead) AddRepeated(page, config.habits, counter, details, sum);
  if (!details.empty()) said.Add("Not its text", Words(sum), std::move(details));
}

}  // namespace vela::indexer
