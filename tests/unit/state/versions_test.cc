// What tells that a block, or an index, has to be made anew.
#include <gtest/gtest.h>

#include <functional>

#include "indexer/state/config_fingerprints.h"
#include "indexer/state/program_version.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(ConfigFingerprints, TellWhatHasToBeMadeAnew) {
  constexpr bool kBlocks = true;
  constexpr bool kIndexAlone = false;
  const struct {
    const char* what;
    bool blocks;
    std::function<void(SiteConfig&)> change;
  } cases[] = {
      {"charset", kBlocks, [](SiteConfig& c) { c.charset = "iso-8859-1"; }},
      {"stemming", kBlocks, [](SiteConfig& c) { c.stemming = 0; }},
      {"pictures as pages", kBlocks,
       [](SiteConfig& c) { c.endings[static_cast<size_t>(FileType::kPicture)] = {"png"}; }},
      {"images", kBlocks, [](SiteConfig& c) { c.images = false; }},
      {"link texts", kBlocks, [](SiteConfig& c) { c.linkTexts = false; }},
      {"dates", kBlocks, [](SiteConfig& c) { c.dates.pop_back(); }},
      {"a field", kBlocks, [](SiteConfig& c) { c.fields.resize(1); }},
      {"navigation", kBlocks, [](SiteConfig& c) { c.content.indexesNavigation = true; }},
      {"an element", kBlocks,
       [](SiteConfig& c) { c.content.excludeElements = {{.text = ".x", .parts = {}}}; }},
      {"a rule", kBlocks, [](SiteConfig& c) { c.contentRules.resize(1); }},
      {"a name", kBlocks, [](SiteConfig& c) { c.siteName = "N"; }},
      {"what is found", kBlocks, [](SiteConfig& c) { c.habits.repeatedTexts = {1}; }},
      {"repeated text", kBlocks, [](SiteConfig& c) { c.leavesOutRepeatedText = true; }},
      {"similar pages", kIndexAlone,
       [](SiteConfig& c) { c.nearDuplicates = NearDuplicates::kKeep; }},
      {"suggestions", kBlocks, [](SiteConfig& c) { c.suggestions = false; }},
      {"extensions", kBlocks, [](SiteConfig& c) { c.extensions = false; }},
      {"one extension", kBlocks, [](SiteConfig& c) { c.settings["Passages"] = {.number = 0}; }},
      {"another setting", kIndexAlone, [](SiteConfig& c) { c.settings["X"] = {.number = 3}; }},
      {"its text", kIndexAlone,
       [](SiteConfig& c) {
         c.settings["X"] = {true, 0, "3"};
       }},
      {"file dates", kIndexAlone, [](SiteConfig& c) { c.trustsFileDates = true; }},
      {"a category", kIndexAlone,
       [](SiteConfig& c) {
         c.categories = {{"n", {"p"}, {}}};
       }},
      {"its pages", kIndexAlone,
       [](SiteConfig& c) {
         c.categories = {{"n", {"q"}, {}}};
       }},
      {"a boost", kIndexAlone,
       [](SiteConfig& c) {
         c.boosts = {{{"p"}, 12, ""}};
       }},
      {"another boost", kIndexAlone,
       [](SiteConfig& c) {
         c.boosts = {{{"p"}, 13, ""}};
       }},
      {"synonyms", kIndexAlone,
       [](SiteConfig& c) {
         c.synonyms = {{{"a", "b"}}};
       }},
      {"one word", kIndexAlone, [](SiteConfig& c) { c.synonyms = {{{"ab"}}}; }},
      {"recommended", kIndexAlone,
       [](SiteConfig& c) {
         c.recommended = {{"k", "a", ""}};
       }},
      {"spelling", kIndexAlone, [](SiteConfig& c) { c.spelling = false; }},
      {"log", kIndexAlone, [](SiteConfig& c) { c.logging = true; }},
  };
  const ConfigFingerprints plain = FingerprintsOf(SiteConfig());
  std::vector<std::pair<Fingerprint, Fingerprint>> seen = {{plain.blocks, plain.index}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    SiteConfig config;
    c.change(config);
    const ConfigFingerprints changed = FingerprintsOf(config);
    EXPECT_EQ(changed.blocks != plain.blocks, c.blocks);
    for (const auto& [blocks, index] : seen) {
      EXPECT_FALSE(changed.blocks == blocks && changed.index == index);
    }
    seen.emplace_back(changed.blocks, changed.index);
    EXPECT_EQ(FingerprintsOf(config).index, changed.index);
  }
}

TEST(ConfigFingerprints, WhereARuleStandsIsNoPartOfIt) {
  SiteConfig one;
  SiteConfig other;
  one.boosts = {{{"p"}, 12, "x.toml, line 1"}};
  other.boosts = {{{"p"}, 12, "x.toml, line 2"}};
  EXPECT_EQ(FingerprintsOf(one).index, FingerprintsOf(other).index);
}

TEST(ProgramVersion, ChangesWithTheProgramsThatReadDocuments) {
  const support::ScratchDirectory scratch;
  const std::string reader = (scratch.path() / "reader").string();
  const Fingerprint without = ProgramVersion({reader});
  EXPECT_EQ(ProgramVersion({reader}), without);
  WriteFile(reader, "one");
  SetTime(reader, 1000);
  const Fingerprint one = ProgramVersion({reader});
  EXPECT_NE(one, without);
  EXPECT_EQ(ProgramVersion({reader}), one);
  SetTime(reader, 2000);
  EXPECT_NE(ProgramVersion({reader}), one);
  WriteFile(reader, "other");
  SetTime(reader, 1000);
  EXPECT_NE(ProgramVersion({reader}), one);
  EXPECT_NE(ProgramVersion({""}), one);
}

}  // namespace
}  // namespace vela::indexer
