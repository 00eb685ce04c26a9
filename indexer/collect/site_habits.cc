#include "indexer/collect/site_habits.h"

#include <algorithm>

#include "indexer/extract/read_page.h"
#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {

constexpr size_t kExampleLimit = 3;
constexpr size_t kExamplePages = 20;

}  // namespace

bool WantsLook(const SiteConfig& config) {
  return config.siteName == kAutoSiteName || config.leavesOutRepeatedText;
}

void HabitsLook::AddPage(const Page& page) {
  if (!page.content.title.empty()) titles_.Add(page.content.title);
  texts_.Add(page.content.body);
  if (bodies_.size() < kExamplePages) bodies_.push_back(page.content.body);
}

SiteHabits HabitsLook::Finish(const SiteConfig& config) const {
  SiteHabits habits;
  if (config.siteName == kAutoSiteName) {
    habits.names = titles_.Names();
    habits.sharedTitle = titles_.SharedTitle();
  }
  if (config.leavesOutRepeatedText) habits.repeatedTexts = texts_.Repeated();
  return habits;
}

std::vector<std::string> HabitsLook::Examples(const SiteHabits& habits) const {
  std::vector<std::string> examples;
  for (std::vector<TextRun> body : bodies_) {
    std::vector<std::string> taken;
    LeaveOutRepeated(habits.repeatedTexts, body, &taken);
    for (std::string& text : taken) {
      text = CollapseBlanks(text);
      if (examples.size() == kExampleLimit) return examples;
      const bool isNew = std::ranges::find(examples, text) == examples.end();
      if (isNew) examples.push_back(std::move(text));
    }
  }
  return examples;
}

bool ChangesPage(const SiteHabits& habits, const Page& page) {
  return !habits.repeatedTexts.empty() || !habits.names.empty() ||
         (!habits.sharedTitle.empty() && page.content.title == habits.sharedTitle);
}

Page AsSeen(const SiteHabits& habits, const Page& page) {
  Page seen = page;
  std::string heading;
  if (!habits.sharedTitle.empty() && page.content.title == habits.sharedTitle) {
    heading = HeadingTitle(page.content);
  }
  seen.facts.title =
      heading.empty() ? WithoutSiteName(page.facts.title, habits.names) : std::move(heading);
  LeaveOutRepeated(habits.repeatedTexts, seen.content.body);
  return seen;
}

}  // namespace vela::indexer
