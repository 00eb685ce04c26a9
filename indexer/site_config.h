// site_config.h: what a site owner may configure, apart from where things lie (options.h).
//
// Every text is UTF-8; it is brought into the character set of the index where it is written.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "settings/settings.h"

namespace vela::indexer {

// A category and the addresses of its pages; see CategorySet.
struct CategoryRule {
  std::string name;
  std::vector<std::string> pages;
};

// A custom meta field. `meta` is the name of the meta elements that give its value.
struct FieldRule {
  std::string name;
  std::string meta;
  std::string label;
  std::string extraText;
  int32_t kind = kTextField;  // a MetaKind or kTextField
  int32_t method = 0;         // how the search compares; see src/search/filters.h
  std::vector<std::string> values;

  static constexpr int32_t kTextField = 1;
};

// Pages that the owner puts first for some words.
struct RecommendedRule {
  std::string keywords;  // several are separated by ","
  std::string address;
  std::string where;  // for messages: the file and line, or the table
};

// Where a page's date comes from, tried in the order given.
enum class DateSource : uint8_t { kMeta, kTime, kFile };

// The value of a key of settings.vdat.
struct SettingValue {
  bool isText = false;
  int32_t number = 0;
  std::string text;
};

struct SiteConfig {
  std::string charset = "utf-8";
  int32_t stemming = -1;  // a number of src/text/stemmer.h; -1: off
  bool images = true;
  std::vector<DateSource> dates = {DateSource::kMeta, DateSource::kFile};

  std::vector<CategoryRule> categories;
  std::vector<FieldRule> fields;
  std::vector<RecommendedRule> recommended;

  bool spelling = true;
  bool suggestions = true;
  uint32_t mostSuggestions = 5000;

  // Keys of settings.vdat that differ from the defaults, from the tables that are made for them
  // and, winning over those, from the table [settings].
  std::map<std::string, SettingValue, std::less<>> settings;
};

}  // namespace vela::indexer
