#include "indexer/collect/site_habits.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

Page PageOf(const std::string& title, const std::string& heading, const std::string& text) {
  Page page;
  page.content.title = page.facts.title = title;
  page.content.body = {{text, 0}, {heading + " ", 2}};
  return page;
}

TEST(SiteHabits, AreWhatTheConfigurationAsksFor) {
  HabitsLook look;
  for (int i = 0; i < 12; ++i) {
    look.AddPage(PageOf("T" + std::to_string(i) + " | S", "H", "one two three four five six"));
  }
  SiteConfig config;
  EXPECT_FALSE(WantsLook(config));
  EXPECT_TRUE(look.Finish(config).names.empty());
  EXPECT_TRUE(look.Finish(config).repeatedTexts.empty());
  config.siteName = "S";  // named: nothing has to be found
  EXPECT_FALSE(WantsLook(config));
  config.siteName = kAutoSiteName;
  EXPECT_TRUE(WantsLook(config));
  EXPECT_EQ(look.Finish(config).names, std::vector<std::string>{"S"});
  config.siteName.clear();
  config.leavesOutRepeatedText = true;
  EXPECT_TRUE(WantsLook(config));
  const SiteHabits habits = look.Finish(config);
  EXPECT_EQ(habits.repeatedTexts.size(), 1u);
  EXPECT_EQ(look.Examples(habits), std::vector<std::string>{"one two three four five six"});
}

TEST(SiteHabits, AreTakenOffAPage) {
  const Page page = PageOf("A | S", "Heading", "text");
  EXPECT_FALSE(ChangesPage({}, page));
  const SiteHabits named = {.names = {"S"}, .sharedTitle = "", .repeatedTexts = {}};
  EXPECT_TRUE(ChangesPage(named, page));
  EXPECT_EQ(AsSeen(named, page).facts.title, "A");
  const SiteHabits shared = {.names = {"S"}, .sharedTitle = "A | S", .repeatedTexts = {}};
  EXPECT_EQ(AsSeen(shared, page).facts.title, "Heading");
  Page without = page;
  without.content.body.pop_back();
  EXPECT_EQ(AsSeen(shared, without).facts.title, "A");
  EXPECT_EQ(AsSeen(shared, PageOf("B | S", "Heading", "text")).facts.title, "B");
}

}  // namespace
}  // namespace vela::indexer
