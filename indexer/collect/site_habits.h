// site_habits.h: what the pages of a site share, found by a look at some of them before the first
// is taken in, and taken off each.
#pragma once

#include <string>
#include <vector>

#include "indexer/collect/repeated_text.h"
#include "indexer/collect/site_name.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"

namespace vela::indexer {

// Whether the configuration asks for what only such a look tells.
bool WantsLook(const SiteConfig& config);

// Pages in the order of the site, and what is found.
class HabitsLook {
 public:
  void AddPage(const Page& page);
  // What the configuration asks for.
  SiteHabits Finish(const SiteConfig& config) const;
  // Some of the stretches of text that `habits` leaves out, each once, for the owner to see.
  std::vector<std::string> Examples(const SiteHabits& habits) const;

 private:
  SiteTitles titles_;
  RepeatedText texts_;
  std::vector<std::vector<TextRun>> bodies_;  // of the first pages
};

// Whether AsSeen makes anything of the page.
bool ChangesPage(const SiteHabits& habits, const Page& page);

// The page without what all share: the name of the site goes from its title, which is its first
// heading where most pages have one title; repeated text from its body.
Page AsSeen(const SiteHabits& habits, const Page& page);

}  // namespace vela::indexer
