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

TEST(SettingsWriter, StopWordsAreThoseFoundUnlessTheOwnerSaysOthers) {
  const support::ScratchDirectory scratch;
  const auto stopWords = [&](const SiteConfig& config) {
    IndexFacts facts;
    facts.stopWords = "a list that is too long to be kept in a small string";
    WriteSettings(scratch.path() / "settings.vdat", facts, config, {}, "");
    const std::string text = ReadFile(scratch.path() / "settings.vdat");
    const size_t at = text.find("\nStopWords");
    return at == text.npos ? "" : text.substr(at + 1, text.find('\n', at + 1) - at - 1);
  };
  SiteConfig config;
  EXPECT_EQ(stopWords(config),
            "StopWords = \"a list that is too long to be kept in a small string\"");
  config.extensions = false;
  EXPECT_EQ(stopWords(config), "");
  config.settings["StopWords"] = {.isText = true, .text = "an own list"};
  EXPECT_EQ(stopWords(config), "StopWords = \"an own list\"");
  config.extensions = true;
  config.settings["StopWords"] = {.isText = true, .text = ""};
  EXPECT_EQ(stopWords(config), "");
}

TEST(SettingsWriter, TheAccentTableNamesSignsWhereQueriesAreNotCutAtAll) {
  const support::ScratchDirectory scratch;
  const auto written = [&](const SiteConfig& config, const IndexCharset& charset) {
    WriteSettings(scratch.path() / "settings.vdat", {}, config, charset, "");
    return ReadFile(scratch.path() / "settings.vdat");
  };
  const IndexCharset utf8;
  const IndexCharset latin("iso-8859-1");
  const auto cuts = [](const std::string& text) {
    return text.find("\nCutSigns = 1\n") != text.npos;
  };
  const auto namesSemicolon = [](const std::string& text) {
    return text.find(",\";\",") != text.npos;
  };
  SiteConfig config;
  std::string text = written(config, utf8);
  EXPECT_TRUE(CutsSigns(config, utf8) && cuts(text) && !namesSemicolon(text));
  // There the program knows the signs of ASCII alone.
  text = written(config, latin);
  EXPECT_TRUE(!CutsSigns(config, latin) && !cuts(text) && namesSemicolon(text));
  config.extensions = false;
  text = written(config, utf8);
  EXPECT_TRUE(!CutsSigns(config, utf8) && !cuts(text) && namesSemicolon(text));
  config.settings["CutSigns"] = {.number = 1};
  text = written(config, utf8);
  EXPECT_TRUE(CutsSigns(config, utf8) && cuts(text) && !namesSemicolon(text));
}

}  // namespace
}  // namespace vela::indexer
