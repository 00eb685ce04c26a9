#include "indexer/write/settings_writer.h"

#include <gtest/gtest.h>

#include "indexer/config/setting_keys.h"
#include "indexer/report/index_error.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(SettingsWriter, RefusesNumbersThatTheSearchCannotRead) {
  const support::ScratchDirectory scratch;
  IndexFacts facts;
  facts.pages = uint64_t{1} << 31;
  EXPECT_THROW(WriteSettings(scratch.path() / "settings.vdat", facts, {}, {}, ""), IndexError);
}

std::string Written(const SiteConfig& config) {
  const support::ScratchDirectory scratch;
  WriteSettings(scratch.path() / "settings.vdat", {}, config, {}, "");
  return ReadFile(scratch.path() / "settings.vdat");
}

TEST(SettingsWriter, WithoutExtensionsNoneIsWrittenButThoseNamed) {
  SiteConfig config;
  config.extensions = false;
  std::string written = Written(config);
  for (const NumberKey& key : ExtensionKeys()) {
    EXPECT_EQ(written.find('\n' + std::string(key.key) + " = "), written.npos) << key.key;
  }
  config.settings["Ranking"] = {.number = 1};
  written = Written(config);
  EXPECT_NE(written.find("\nRanking = 1\n"), written.npos);
  EXPECT_EQ(written.find("\nPassages"), written.npos);
}

TEST(SettingsWriter, AnExtensionIsSwitchedOffByItsName) {
  SiteConfig config;
  for (const NumberKey& key : ExtensionKeys())
    config.settings[std::string(key.key)] = {.number = 0};
  EXPECT_EQ(Written(config), [] {
    SiteConfig without;
    without.extensions = false;
    return Written(without);
  }());
}

}  // namespace
}  // namespace vela::indexer
