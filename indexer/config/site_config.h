// site_config.h: what a site owner may configure, apart from where things lie (options.h).
//
// Every text is UTF-8; it is brought into the character set of the index where it is written.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "format/meta_fields.h"
#include "indexer/config/element_selector.h"
#include "indexer/source/file_endings.h"
#include "settings/settings.h"

namespace vela::indexer {

// What an index has room for.
constexpr size_t kCategoryLimit = 2000;
constexpr size_t kFieldLimit = 100;
constexpr size_t kFieldNameLimit = decltype(MetaFieldDef::name)::kCapacity;
constexpr size_t kFieldLabelLimit = decltype(MetaFieldDef::label)::kCapacity;
constexpr size_t kPageTitleLimit = 1000;        // bytes of a page's title
constexpr size_t kPageDescriptionLimit = 2000;  // and of its description
constexpr size_t kFieldTextLimit = 500;         // bytes of a text in a page's record
constexpr size_t kContentRuleLimit = 1000;
constexpr size_t kListValueCountLimit = kMetaChoiceLimit;
constexpr size_t kSelectorLimit = 200;  // of one rule and one key
constexpr size_t kSelectorCountLimit = 2 * kSelectorLimit * (kContentRuleLimit + 1);  // of all
constexpr size_t kListValueLimit = MetaListText::kCapacity;

// In the place of a StemmingAlgorithm: the one for the language that most pages say they are in.
constexpr int32_t kStemmingByPages = -2;

// A category and the addresses of its pages; see FitsAddressPattern (address_pattern.h).
struct CategoryRule {
  std::string name;
  std::vector<std::string> pages;           // made by AddressPattern; empty: of any address
  std::vector<std::string> languages = {};  // of which the page's is one; empty: any
};

// Pages whose scores are multiplied.
struct BoostRule {
  std::vector<std::string> pages;  // made by AddressPattern
  uint8_t tenths = 10;
  std::string where;  // for messages: the file and line
};

// What of pages is their content. A selector's number is its place in SiteConfig::selectors.
struct ContentRule {
  std::vector<std::string> pages = {};  // made by AddressPattern; of the site's own rule none
  std::vector<ElementSelector> excludeElements = {};
  std::vector<ElementSelector> onlyElements = {};  // empty: all that is not left out
  bool indexesNavigation = false;
  bool prefersMain = false;
  uint32_t sectionWords = 0;  // sections of a page of more words are pages of their own; 0: of none
  std::string where = {};     // for messages: the file and line
};

// A selector as messages name it.
struct NamedSelector {
  std::string text;
  std::string where;  // the file and line of its table
};

// Words that find each other's pages.
struct SynonymRule {
  std::vector<std::string> words;  // in lower case; blanks in one of several words, single ones
};

// A custom meta field.
struct FieldRule {
  std::string name;          // in request parameters and beside the value in a result
  std::string meta;          // name of the meta elements that give its value
  std::string label;         // in the form
  int32_t kind = kMetaText;  // a MetaKind
  int32_t method = 0;        // how the search compares (format/meta_fields.h)
  std::vector<std::string> values;
};

// A page that the owner puts first for some words.
struct RecommendedRule {
  std::string keywords;    // several are separated by ","
  std::string address;     // absolute, or from the site's address on
  std::string where;       // for messages: the file and line
  std::string title = {};  // plain text in the place of the page's own; empty: none is given
  std::string text = {};   // the same of its description
};

// Where a page's date comes from.
enum class DateSource : uint8_t { kMeta, kTime, kFile };

// The value of a key of settings.vdat.
struct SettingValue {
  bool isText = false;
  int32_t number = 0;
  std::string text = {};
};

// What is done with a page that says nearly the same as one before it.
enum class NearDuplicates : uint8_t { kReport, kKeep, kLeaveOut };

// What the pages of a site were found to share (collect/site_habits.h).
struct SiteHabits {
  std::vector<std::string> names;  // that titles end or begin in, in the order to take them off
  std::string sharedTitle;         // that most pages have; empty: none
  std::vector<uint64_t> repeatedTexts;  // hashes of words that most pages have, sorted
};

// In the place of a name.
constexpr const char* kAutoSiteName = "auto";

struct SiteConfig {
  FileEndings endings = DefaultFileEndings();

  std::string charset = "utf-8";
  int32_t stemming = -1;  // a StemmingAlgorithm; -1: off; kStemmingByPages
  bool images = true;
  bool linkTexts = true;  // what links call a page counts for it
  std::vector<DateSource> dates = {DateSource::kMeta, DateSource::kFile};  // tried in this order
  bool trustsFileDates = false;      // even where most of the files were changed on one day
  bool recognisesLanguages = false;  // of pages that name none, from their text
  bool languageCategories = false;   // one for each language of the site joins the categories
  bool leavesOutRepeatedText = false;
  NearDuplicates nearDuplicates = NearDuplicates::kReport;

  ContentRule content;                    // of pages that none of these fits
  std::vector<ContentRule> contentRules;  // the first that fits a page holds
  std::vector<NamedSelector> selectors;   // of all these rules

  std::vector<CategoryRule> categories;
  std::vector<FieldRule> fields;
  std::vector<BoostRule> boosts;  // the first that fits a page holds
  std::vector<SynonymRule> synonyms;
  std::vector<RecommendedRule> recommended;
  std::string recommendedFile;  // its lines join `recommended`; empty: none

  std::string siteName;  // to take off titles; kAutoSiteName: what is found; empty: none
  SiteHabits habits;     // the run fills them, before it takes the first page in

  bool spelling = true;
  bool suggestions = true;
  uint32_t mostSuggestions = 5000;

  bool extensions = true;     // those of ExtensionKeys (setting_keys.h) are switched on
  std::string searchAddress;  // of the search on the web, absolute; empty: not known
  std::string searchName;
  std::string searchDescription;
  std::string styleSheet;  // of XML answers; empty: none, as browsers warn of such a sheet

  bool logging = false;
  std::string logFile = "logs/searchwords.log";  // from the index folder on

  // Keys of settings.vdat that differ from the defaults: from the tables that are made for them
  // and, winning over those, from the table [settings].
  std::map<std::string, SettingValue, std::less<>> settings;
};

// Whether pictures are pages of their own.
inline bool IndexesPictures(const SiteConfig& config) {
  return !config.endings[static_cast<size_t>(FileType::kPicture)].empty();
}

}  // namespace vela::indexer
