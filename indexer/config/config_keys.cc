#include "indexer/config/config_keys.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "format/recommended.h"
#include "indexer/config/built_in_template.h"
#include "indexer/config/content_keys.h"
#include "indexer/config/language_file.h"
#include "indexer/config/setting_keys.h"
#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/site/address_pattern.h"
#include "indexer/source/file_endings.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/word_forms.h"
#include "text/ascii.h"
#include "text/edit.h"
#include "text/stemmer.h"

namespace vela::indexer {

namespace {

constexpr uint32_t kSuggestionLimit = 1000000;

// One key of a table that is being read.
struct ConfigEntry {
  ConfigTable& table;
  std::string_view key;
  const ConfigSource& source;

  std::string Path(const std::string& path) const { return (source.folder / path).string(); }
};

// What a value is, and where it goes.
template <typename Value>
using Place = std::variant<Value Options::*, Value SiteConfig::*, Value CrawlRules::*>;

struct Text {
  size_t limit;  // bytes
  Place<std::string> place;
};
struct Path {  // taken from the folder of the configuration file
  Place<std::string> place;
};
struct Texts {
  size_t limit;  // bytes of each
  Place<std::vector<std::string>> place;
};
struct Number {  // from 1 on
  uint64_t limit;
  std::variant<uint64_t Options::*, uint32_t SiteConfig::*, uint64_t CrawlRules::*> place;
};
struct Setting {  // a number of settings.vdat, in the range that it has there
  std::string_view name;
};
struct Flag {
  Place<bool> place;
};
// Reads the value itself; does nothing when the table does not have the key.
using Reader = void (*)(const ConfigEntry& entry, Options& options);

struct ConfigKey {
  std::string_view table;
  std::string_view key;
  std::variant<Text, Path, Texts, Number, Setting, Flag, Reader> value;
  // What else must hold of a value that was given, and what becomes of it.
  void (*check)(const ConfigEntry& entry, Options& options) = nullptr;
};

// Runs a check whose message names no place: the key's value is where the fault is.
template <typename Check>
void CheckHere(const ConfigEntry& entry, Check check) {
  try {
    check();
  } catch (const IndexError& error) {
    // Files that cannot be read are no faults of the configuration.
    if (error.status == ExitStatus::kUsage) entry.table.Refuse(entry.key, error.what());
  }
}

void CheckBaseUrl(const ConfigEntry& entry, Options& options) {
  CheckHere(entry, [&] { CheckedBaseUrl(options.baseUrl); });
}

void ReadEndings(const ConfigEntry& site, Options& options) {
  for (const FileTypeEndings& row : kFileTypeEndings) {
    std::vector<std::string>& endings = options.config.endings[static_cast<size_t>(row.type)];
    if (!site.table.Texts(row.key, kNameLimit, endings)) continue;
    for (std::string& ending : endings) {
      if (ending.starts_with('.')) ending.erase(0, 1);
      const auto isPlain = [](char c) { return IsLower(c) || IsDigit(c); };
      if (ending.empty() || !std::ranges::all_of(ending, isPlain)) {
        site.table.Refuse(row.key,
                          "\"" + ending +
                              "\" is no ending of file names. Give small letters and digits, as "
                              "in \"html\".");
      }
    }
  }
}

void CheckTemplate(const ConfigEntry& entry, Options& options) {
  std::string& name = options.templateName;
  if (!IsBuiltInTemplate(name)) name = entry.Path(name);
}

void CheckLanguage(const ConfigEntry& entry, Options& options) {
  std::string& language = options.language;
  if (IsLanguagePath(language)) language = entry.Path(language);
  CheckHere(entry, [&] { LoadLanguage(language); });
}

void CheckCharset(const ConfigEntry& entry, Options& options) {
  CheckHere(entry, [&] { const IndexCharset charset(options.config.charset); });
}

void ReadStemming(const ConfigEntry& entry, Options& options) {
  SiteConfig& config = options.config;
  std::vector<std::string_view> names = {"off", "auto"};
  for (int32_t i = 0; i < kStemmingAlgorithmCount; ++i) names.push_back(StemmingAlgorithmName(i));
  size_t place = 0;
  if (!entry.table.Choice(entry.key, names, place)) return;
  config.stemming = static_cast<int32_t>(place) - 2;
  if (place < 2) {
    config.stemming = place == 0 ? -1 : kStemmingByPages;
    return;
  }
  CheckHere(entry, [&] {
    const IndexCharset charset(config.charset);
    const WordForms forms(charset, config.stemming);
  });
}

void ReadDates(const ConfigEntry& entry, Options& options) {
  std::vector<std::string> names;
  if (!entry.table.Texts(entry.key, kNameLimit, names)) return;
  options.config.dates.clear();
  for (const std::string& name : names) {
    constexpr std::string_view kNames[] = {"meta", "time", "file"};
    const auto* found = std::ranges::find(kNames, name);
    if (found == std::end(kNames)) {
      entry.table.RefuseValue(entry.key,
                              " cannot hold \"" + name + "\". Give some of meta, time, file.");
    }
    options.config.dates.push_back(static_cast<DateSource>(found - std::begin(kNames)));
  }
}

void ReadSitesContent(const ConfigEntry& entry, Options& options) {
  SiteConfig& config = options.config;
  ReadContentKeys(entry.table, {}, config, config.content);
}

void ReadFileDates(const ConfigEntry& entry, Options& options) {
  constexpr std::string_view kNames[] = {"auto", "always"};
  size_t place = 0;
  if (entry.table.Choice(entry.key, kNames, place)) options.config.trustsFileDates = place == 1;
}

// A text of the owner's in the form in which those of pages are.
std::string OneLine(std::string text) {
  CleanText(text);
  return CollapseBlanks(text);
}

void CheckSiteName(const ConfigEntry& entry, Options& options) {
  (void)entry;
  SiteConfig& config = options.config;
  config.siteName = OneLine(std::move(config.siteName));
  if (config.siteName == "none") config.siteName.clear();
  config.habits.names.clear();
  if (!config.siteName.empty() && config.siteName != kAutoSiteName) {
    config.habits.names.push_back(config.siteName);
  }
}

void ReadRepeatedText(const ConfigEntry& entry, Options& options) {
  constexpr std::string_view kNames[] = {"index", "leave_out"};
  size_t place = 0;
  if (entry.table.Choice(entry.key, kNames, place)) {
    options.config.leavesOutRepeatedText = place == 1;
  }
}

void ReadNearDuplicates(const ConfigEntry& entry, Options& options) {
  constexpr std::string_view kNames[] = {"report", "keep", "leave_out"};
  size_t place = 0;
  if (entry.table.Choice(entry.key, kNames, place)) {
    options.config.nearDuplicates = static_cast<NearDuplicates>(place);
  }
}

// "20 %", or the number alone.
void ReadStopWhenFewer(const ConfigEntry& entry, Options& options) {
  std::string text;
  if (!entry.table.Text(entry.key, kNameLimit, text)) return;
  std::string_view digits = text;
  if (digits.ends_with('%')) digits = TrimAll(digits.substr(0, digits.size() - 1));
  uint32_t percent = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), percent);
  if (error != std::errc() || end != digits.data() + digits.size() || percent > 100) {
    entry.table.RefuseValue(entry.key, " must be a part of a hundred, as in \"20 %\".");
  }
  options.missingPercentLimit = percent;
}

void CheckSearchAddress(const ConfigEntry& entry, Options& options) {
  const std::string& address = options.config.searchAddress;
  const bool absolute = address.starts_with("http://") || address.starts_with("https://");
  if (absolute && address.find_first_of("?#\" <>") == address.npos) return;
  entry.table.RefuseValue(entry.key,
                          " must be the whole address of search.cgi, as in "
                          "\"https://www.example.org/search/search.cgi\".");
}

void ReadRecommendedPages(const ConfigEntry& entry, Options& options) {
  const toml::table* pages = entry.table.Table(entry.key);
  if (pages == nullptr) return;
  std::vector<RecommendedRule> recommended;
  ConfigTable rules(pages, entry.source.file, "[recommended.pages]");
  for (const auto& [key, node] : *pages) {
    RecommendedRule rule;
    rule.keywords = key.str();
    rules.Text(key.str(), kBaseAddressLimit, rule.address);
    rule.where = entry.source.file + ", line " + std::to_string(key.source().begin.line);
    recommended.push_back(std::move(rule));
  }
  // The table is sorted by its keys; the first of two that fit a query is shown first.
  std::ranges::sort(recommended, {}, [&](const RecommendedRule& rule) {
    const toml::source_position at = pages->get(rule.keywords)->source().begin;
    return std::pair(at.line, at.column);
  });
  std::ranges::move(recommended, std::back_inserter(options.config.recommended));
}

void ReadRecommendedPage(const ConfigEntry& entry, Options& options) {
  const std::string name = "[[recommended.page]]";
  for (const toml::table* each : entry.table.Tables(entry.key)) {
    ConfigTable table(each, entry.source.file, name);
    RecommendedRule rule;
    if (!table.Text("keywords", kRecommendedKeywordsLimit, rule.keywords)) {
      table.RefuseWhole("A " + name + " needs keywords = \"...\", separated by commas.");
    }
    if (!table.Text("address", kBaseAddressLimit, rule.address) || rule.address.empty()) {
      table.RefuseWhole("A " + name + " needs address = \"...\".");
    }
    table.Text("title", kPageTitleLimit, rule.title);
    table.Text("text", kPageDescriptionLimit, rule.text);
    rule.title = OneLine(std::move(rule.title));
    rule.text = OneLine(std::move(rule.text));
    rule.where = table.Where();
    table.Finish();
    options.config.recommended.push_back(std::move(rule));
  }
}

void ReadLogFile(const ConfigEntry& entry, Options& options) {
  std::string& file = options.config.logFile;
  const TextKey& setting = *std::ranges::find(TextKeys(), "LogFileName", &TextKey::key);
  if (!entry.table.Text(entry.key, setting.mostBytes, file)) return;
  if (file.empty() || file.starts_with('/') || file.find('"') != file.npos) {
    entry.table.RefuseValue(entry.key, " must be a path from the index folder on.");
  }
}

void CheckInclude(const ConfigEntry& entry, Options& options) {
  (void)entry;
  for (std::string& pattern : options.crawlRules.include) pattern = AddressPattern(pattern);
}

void CheckExclude(const ConfigEntry& entry, Options& options) {
  (void)entry;
  for (std::string& pattern : options.crawlRules.exclude) pattern = AddressPattern(pattern);
}

void ReadDelay(const ConfigEntry& entry, Options& options) {
  entry.table.Decimal(entry.key, 0, kCrawlDelayLimit, options.crawlRules.delay);
}

void ReadMinutes(const ConfigEntry& entry, Options& options) {
  entry.table.Decimal(entry.key, 0, kCrawlMinutesLimit, options.crawlRules.minutes);
}

void ReadRetries(const ConfigEntry& entry, Options& options) {
  int64_t retries = 0;
  if (!entry.table.Number(entry.key, 0, kCrawlRetriesLimit, retries)) return;
  options.crawlRules.retries = static_cast<uint64_t>(retries);
}

// The keys of a table stand together, in the order in which they are read and named.
const ConfigKey kConfigKeys[] = {
    {"site", "folder", Path{&Options::site}},
    {"site", "base_url", Text{kBaseAddressLimit, &Options::baseUrl}, &CheckBaseUrl},
    {"site", "out", Path{&Options::out}},
    {"site", "exclude", Texts{kPathLimit, &Options::exclude}},
    {"site", "follow_links", Flag{&Options::followLinks}},
    {"site", "site_name", Text{kNameLimit, &SiteConfig::siteName}, &CheckSiteName},
    {"site", {}, &ReadEndings},  // the keys of kFileTypeEndings
    {"site", "template", Text{kPathLimit, &Options::templateName}, &CheckTemplate},
    {"site", "language", Text{kPathLimit, &Options::language}, &CheckLanguage},

    {"crawl", "start", Texts{kBaseAddressLimit, &Options::crawl}},
    {"crawl", "sitemaps", Texts{kBaseAddressLimit, &Options::sitemaps}},
    {"crawl", "state", Path{&Options::state}},
    {"crawl", "hosts", Texts{kNameLimit, &CrawlRules::hosts}},
    {"crawl", "include", Texts{kBaseAddressLimit, &CrawlRules::include}, &CheckInclude},
    {"crawl", "exclude", Texts{kBaseAddressLimit, &CrawlRules::exclude}, &CheckExclude},
    {"crawl", "find_sitemaps", Flag{&CrawlRules::usesSitemaps}},
    {"crawl", "depth", Number{kCrawlDepthLimit, &CrawlRules::depth}},
    {"crawl", "pages", Number{kCrawlPagesLimit, &CrawlRules::pages}},
    {"crawl", "max_size", Number{kCrawlMegabytesLimit, &CrawlRules::megabytes}},
    {"crawl", "minutes", &ReadMinutes},
    {"crawl", "connections", Number{kCrawlConnectionsLimit, &CrawlRules::connections}},
    {"crawl", "delay", &ReadDelay},
    {"crawl", "timeout", Number{kCrawlTimeoutLimit, &CrawlRules::timeout}},
    {"crawl", "retries", &ReadRetries},
    {"crawl", "auth_file", Path{&CrawlRules::authFile}},
    {"crawl", "ca_file", Path{&CrawlRules::caFile}},
    {"crawl", "contact", Text{kNameLimit, &CrawlRules::contact}},

    {"index", "state", Path{&Options::state}},
    {"index", "memory", Number{kMemoryMegabytesLimit, &Options::memoryMegabytes}},
    {"index", "max_file_size", Number{kFileMegabytesLimit, &Options::maxFileMegabytes}},
    {"index", "jobs", Number{kJobsLimit, &Options::jobs}},
    {"index", "charset", Text{kNameLimit, &SiteConfig::charset}, &CheckCharset},
    {"index", "stemming", &ReadStemming},  // after the character set, which it must suit
    {"index", "dates", &ReadDates},
    {"index", "file_dates", &ReadFileDates},
    {"index", "stop_when_fewer", &ReadStopWhenFewer},
    {"index", "keep_last", Flag{&Options::keepLast}},
    {"index", "images", Flag{&SiteConfig::images}},
    {"index", "link_texts", Flag{&SiteConfig::linkTexts}},
    {"index", {}, &ReadSitesContent},  // the keys of content_keys.h
    {"index", "repeated_text", &ReadRepeatedText},
    {"index", "near_duplicates", &ReadNearDuplicates},
    {"index", "recognise_languages", Flag{&SiteConfig::recognisesLanguages}},
    {"index", "language_categories", Flag{&SiteConfig::languageCategories}},

    {"search", "extensions", Flag{&SiteConfig::extensions}},
    {"search", "address", Text{kBaseAddressLimit, &SiteConfig::searchAddress}, &CheckSearchAddress},
    {"search", "name", Text{kNameLimit, &SiteConfig::searchName}},
    {"search", "description", Text{kNameLimit, &SiteConfig::searchDescription}},
    {"search", "style_sheet", Text{kBaseAddressLimit, &SiteConfig::styleSheet}},

    {"spelling", "use", Flag{&SiteConfig::spelling}},
    {"spelling", "below", Setting{"SpellingWhenLessThan"}},

    {"suggestions", "use", Flag{&SiteConfig::suggestions}},
    {"suggestions", "most", Number{kSuggestionLimit, &SiteConfig::mostSuggestions}},

    {"recommended", "file", Path{&SiteConfig::recommendedFile}},
    {"recommended", "most", Setting{"RecommendedMax"}},
    {"recommended", "page", &ReadRecommendedPage},
    {"recommended", "pages", &ReadRecommendedPages},

    {"log", "use", Flag{&SiteConfig::logging}},
    {"log", "file", &ReadLogFile},
};

template <typename Value>
Value& PlaceOf(Options& options, Value Options::*field) {
  return options.*field;
}
template <typename Value>
Value& PlaceOf(Options& options, Value SiteConfig::*field) {
  return options.config.*field;
}
template <typename Value>
Value& PlaceOf(Options& options, Value CrawlRules::*field) {
  return options.crawlRules.*field;
}
template <typename Field>
auto& PlaceOf(Options& options, const Field& field) {
  return *std::visit([&](auto each) { return &PlaceOf(options, each); }, field);
}

// Each reads a value into its place; false when the table does not have the key.
bool Read(const Text& text, const ConfigEntry& entry, Options& options) {
  return entry.table.Text(entry.key, text.limit, PlaceOf(options, text.place));
}

bool Read(const Path& path, const ConfigEntry& entry, Options& options) {
  std::string& value = PlaceOf(options, path.place);
  if (!entry.table.Text(entry.key, kPathLimit, value)) return false;
  value = entry.Path(value);
  return true;
}

bool Read(const Texts& texts, const ConfigEntry& entry, Options& options) {
  return entry.table.Texts(entry.key, texts.limit, PlaceOf(options, texts.place));
}

bool Read(const Number& number, const ConfigEntry& entry, Options& options) {
  int64_t value = 0;
  if (!entry.table.Number(entry.key, 1, static_cast<int64_t>(number.limit), value)) return false;
  const auto set = [&](auto field) {
    auto& place = PlaceOf(options, field);
    place = static_cast<std::remove_reference_t<decltype(place)>>(value);
  };
  std::visit(set, number.place);
  return true;
}

bool Read(const Setting& setting, const ConfigEntry& entry, Options& options) {
  const NumberKey& key = *std::ranges::find(NumberKeys(), setting.name, &NumberKey::key);
  int64_t value = 0;
  if (!entry.table.Number(entry.key, key.least, key.most, value)) return false;
  options.config.settings[std::string(setting.name)] = {.number = static_cast<int32_t>(value)};
  return true;
}

bool Read(const Flag& flag, const ConfigEntry& entry, Options& options) {
  return entry.table.Flag(entry.key, PlaceOf(options, flag.place));
}

bool Read(Reader reader, const ConfigEntry& entry, Options& options) {
  reader(entry, options);
  return true;
}

}  // namespace

void ReadKeyTables(ConfigTable& top, const ConfigSource& source, Options& options) {
  const std::span<const ConfigKey> keys = kConfigKeys;
  for (auto row = keys.begin(); row != keys.end();) {
    const std::string name(row->table);
    ConfigTable table(top.Table(name), source.file, "[" + name + "]");
    for (; row != keys.end() && row->table == name; ++row) {
      const ConfigEntry entry = {table, row->key, source};
      const bool given =
          std::visit([&](const auto& value) { return Read(value, entry, options); }, row->value);
      if (given && row->check != nullptr) row->check(entry, options);
    }
    table.Finish();
  }
  // The log is named in settings.vdat whether it is used or not.
  SiteConfig& config = options.config;
  config.settings["Logging"] = {.number = config.logging ? 1 : 0};
  config.settings["LogFileName"] = {.isText = true, .text = config.logFile};
}

}  // namespace vela::indexer
