#include "indexer/config/config_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "indexer/config/built_in_template.h"
#include "indexer/config/config_table.h"
#include "indexer/config/embedded_files.h"
#include "indexer/config/language_file.h"
#include "indexer/config/owner_file.h"
#include "indexer/config/recommended_rules.h"
#include "indexer/config/setting_keys.h"
#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/site/address_pattern.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/stored_text.h"
#include "indexer/words/word_forms.h"
#include "settings/settings.h"
#include "text/ascii.h"
#include "text/stemmer.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr size_t kMostPathBytes = 4000;
constexpr size_t kMostAddressBytes = 1900;  // an answer has room for a query behind it
constexpr size_t kMostPatternBytes = 2083;
constexpr size_t kMostNameBytes = 500;
constexpr int64_t kMostSuggestions = 1000000;
constexpr int64_t kAny = 2147483647;
constexpr char kExampleName[] = "vela_index.example.toml";

// Where paths in the file begin, and how the file is called in messages.
struct ConfigSource {
  std::string file;
  fs::path folder;

  std::string Path(const std::string& path) const { return (folder / path).string(); }
};

// Runs a check whose message names no place: `key`, which the table has, is where the fault is.
template <typename Check>
void CheckAt(const ConfigTable& table, std::string_view key, Check check) {
  try {
    check();
  } catch (const IndexError& error) {
    // Files that cannot be read are no faults of the configuration.
    if (error.status == ExitStatus::kUsage) table.Refuse(key, error.what());
  }
}

void SetNumber(std::string_view key, int64_t value, SiteConfig& config) {
  config.settings[std::string(key)] = {false, static_cast<int32_t>(value), {}};
}

void ReadSite(ConfigTable table, const ConfigSource& source, Options& options) {
  if (table.Text("folder", kMostPathBytes, options.site)) options.site = source.Path(options.site);
  if (table.Text("base_url", kMostAddressBytes, options.baseUrl)) {
    CheckAt(table, "base_url", [&] { CheckedBaseUrl(options.baseUrl); });
  }
  if (table.Text("out", kMostPathBytes, options.out)) options.out = source.Path(options.out);
  table.Texts("exclude", kMostPathBytes, options.exclude);
  SiteConfig& config = options.config;
  for (const auto& [key, endings] :
       {std::pair("html", &config.htmlEndings), std::pair("text", &config.textEndings)}) {
    if (!table.Texts(key, kMostNameBytes, *endings)) continue;
    for (std::string& ending : *endings) {
      if (ending.starts_with('.')) ending.erase(0, 1);
      const auto isPlain = [](char c) { return IsLower(c) || IsDigit(c); };
      if (ending.empty() || !std::ranges::all_of(ending, isPlain)) {
        table.Refuse(key, "\"" + ending +
                              "\" is no ending of file names. Give small letters and digits, as "
                              "in \"html\".");
      }
    }
  }
  std::string& name = options.templateName;
  if (table.Text("template", kMostPathBytes, name) && !IsBuiltInTemplate(name)) {
    name = source.Path(name);
  }
  std::string& language = options.language;
  if (table.Text("language", kMostPathBytes, language)) {
    if (language.ends_with(".vlang") || language.find('/') != language.npos) {
      language = source.Path(language);
    }
    CheckAt(table, "language", [&] { LoadLanguage(language); });
  }
  table.Finish();
}

void ReadStemming(ConfigTable& table, SiteConfig& config) {
  std::vector<std::string_view> names = {"off"};
  for (int32_t i = 0; i < kStemmingAlgorithmCount; ++i) names.push_back(StemmingAlgorithmName(i));
  size_t place = 0;
  if (!table.Choice("stemming", names, place)) return;
  config.stemming = static_cast<int32_t>(place) - 1;
  CheckAt(table, "stemming", [&] {
    const IndexCharset charset(config.charset);
    const WordForms forms(charset, config.stemming);
  });
}

void ReadIndex(ConfigTable table, Options& options) {
  SiteConfig& config = options.config;
  int64_t number = 0;
  if (table.Number("memory", 1, static_cast<int64_t>(kMemoryMegabytesLimit), number)) {
    options.memoryMegabytes = static_cast<uint64_t>(number);
  }
  if (table.Number("max_file_size", 1, static_cast<int64_t>(kFileMegabytesLimit), number)) {
    options.maxFileMegabytes = static_cast<uint64_t>(number);
  }
  if (table.Text("charset", kMostNameBytes, config.charset)) {
    CheckAt(table, "charset", [&] { const IndexCharset charset(config.charset); });
  }
  ReadStemming(table, config);
  std::vector<std::string> names;
  if (table.Texts("dates", kMostNameBytes, names)) {
    config.dates.clear();
    for (const std::string& name : names) {
      constexpr std::string_view kNames[] = {"meta", "time", "file"};
      const auto* found = std::ranges::find(kNames, name);
      if (found == std::end(kNames)) {
        table.Refuse("dates", "dates in [index] cannot hold \"" + name +
                                  "\". Give some of meta, time, file.");
      }
      config.dates.push_back(static_cast<DateSource>(found - std::begin(kNames)));
    }
  }
  table.Flag("images", config.images);
  table.Finish();
}

void ReadSearch(ConfigTable table, SiteConfig& config) {
  if (table.Text("address", kMostAddressBytes, config.searchAddress)) {
    const std::string& address = config.searchAddress;
    const bool absolute = address.starts_with("http://") || address.starts_with("https://");
    if (!absolute || address.find_first_of("?#\" <>") != address.npos) {
      table.Refuse("address",
                   "address in [search] must be the whole address of search.cgi, as in "
                   "\"https://www.example.org/search/search.cgi\".");
    }
  }
  table.Text("name", kMostNameBytes, config.searchName);
  table.Text("description", kMostNameBytes, config.searchDescription);
  table.Text("style_sheet", kMostAddressBytes, config.styleSheet);
  table.Finish();
}

void ReadSpelling(ConfigTable table, SiteConfig& config) {
  table.Flag("use", config.spelling);
  int64_t below = 0;
  if (table.Number("below", 0, kAny, below)) SetNumber("SpellingWhenLessThan", below, config);
  table.Finish();
}

void ReadSuggestions(ConfigTable table, SiteConfig& config) {
  table.Flag("use", config.suggestions);
  int64_t most = 0;
  if (table.Number("most", 1, kMostSuggestions, most)) {
    config.mostSuggestions = static_cast<uint32_t>(most);
  }
  table.Finish();
}

void ReadRecommended(ConfigTable table, const ConfigSource& source, SiteConfig& config) {
  if (table.Text("file", kMostPathBytes, config.recommendedFile)) {
    config.recommendedFile = source.Path(config.recommendedFile);
  }
  int64_t most = 0;
  if (table.Number("most", 1, 1000, most)) SetNumber("RecommendedMax", most, config);
  if (const toml::table* pages = table.Table("pages"); pages != nullptr) {
    ConfigTable rules(pages, source.file, "[recommended.pages]");
    for (const auto& [key, node] : *pages) {
      RecommendedRule rule;
      rule.keywords = key.str();
      rules.Text(key.str(), kMostAddressBytes, rule.address);
      rule.where = source.file + ", line " + std::to_string(key.source().begin.line);
      config.recommended.push_back(std::move(rule));
    }
    // The table is sorted by its keys; the first of two that fit a query is shown first.
    std::ranges::sort(config.recommended, {}, [&](const RecommendedRule& rule) {
      const toml::source_position at = pages->get(rule.keywords)->source().begin;
      return std::pair(at.line, at.column);
    });
  }
  table.Finish();
}

void ReadLog(ConfigTable table, SiteConfig& config) {
  table.Flag("use", config.logging);
  if (table.Text("file", 255, config.logFile)) {
    if (config.logFile.empty() || config.logFile.starts_with('/') ||
        config.logFile.find('"') != config.logFile.npos) {
      table.Refuse("file", "file in [log] must be a path from the index folder on.");
    }
  }
  SetNumber("Logging", config.logging ? 1 : 0, config);
  config.settings["LogFileName"] = {true, 0, config.logFile};
  table.Finish();
}

void ReadPages(ConfigTable& table, const std::string& what, std::vector<std::string>& pages) {
  if (!table.Texts("pages", kMostPatternBytes, pages) || pages.empty()) {
    table.RefuseWhole(what + " needs pages = [\"news/*\"], the addresses of its pages.");
  }
  for (std::string& pattern : pages) pattern = AddressPattern(pattern);
}

void ReadCategory(ConfigTable table, SiteConfig& config) {
  CategoryRule rule;
  if (!table.Text("name", kMostNameBytes, rule.name) || rule.name.empty()) {
    table.RefuseWhole("A [[category]] needs name = \"...\".");
  }
  ReadPages(table, "The category \"" + rule.name + "\"", rule.pages);
  table.Finish();
  config.categories.push_back(std::move(rule));
}

void ReadBoost(ConfigTable table, SiteConfig& config) {
  BoostRule rule;
  ReadPages(table, "A [[boost]]", rule.pages);
  double factor = 1;
  if (!table.Decimal("factor", 0.1, 25.5, factor)) {
    table.RefuseWhole("A [[boost]] needs factor = 1.5, by which scores are multiplied.");
  }
  rule.tenths = static_cast<uint8_t>(std::lround(factor * 10));
  rule.where = table.Where();
  table.Finish();
  config.boosts.push_back(std::move(rule));
}

// The search program knows a field's way of comparing by a number.
struct FieldKind {
  std::string_view name;
  int32_t kind;
  std::vector<std::string_view> methods;
};

const FieldKind kFieldKinds[] = {
    {"text", FieldRule::kTextField, {"contains", "equal", "begins"}},
    {"number", kMetaNumeric, {"equal", "at_most", "at_least"}},
    {"money", kMetaMoney, {"equal", "at_most", "at_least"}},
    {"choice", kMetaDropDown, {"equal"}},
    {"choices", kMetaMultiple, {"any", "all"}},
};

bool IsParameterName(const std::string& name) {
  return !name.empty() && IsAlpha(name[0]) && std::ranges::all_of(name, [](char c) {
    return IsAlphaNumeric(c) || c == '_' || c == '-';
  });
}

void CheckFieldName(const ConfigTable& table, const std::string& name, const SiteConfig& config) {
  if (!IsParameterName(name) || name.starts_with("vela_") || name == "masternode") {
    table.Refuse("name", "\"" + name +
                             "\" cannot name a field: it begins with a letter, goes on with "
                             "letters, digits, \"_\" and \"-\", and does not begin with vela_.");
  }
  for (const FieldRule& other : config.fields) {
    if (other.name == name) table.Refuse("name", "There is another field \"" + name + "\".");
  }
}

void CheckFieldValues(ConfigTable& table, FieldRule& rule, bool given) {
  const bool list = rule.kind == kMetaDropDown || rule.kind == kMetaMultiple;
  if (given && !list) {
    table.Refuse("values", "Only fields of kind choice and choices have values.");
  }
  if (list && (rule.values.empty() || rule.values.size() > kListValueCountLimit)) {
    table.RefuseWhole("The field \"" + rule.name +
                      "\" needs values = [\"one\", \"two\"], at most " +
                      std::to_string(kListValueCountLimit) + ".");
  }
  for (std::string& value : rule.values) {
    CleanText(value);  // as those of the pages are
    value = CollapseBlanks(value);
    const bool separates = rule.kind == kMetaMultiple && value.find_first_of(",;") != value.npos;
    if (value.empty() || separates) {
      table.Refuse("values",
                   "A value must not be empty nor, in choices, hold a comma or semicolon.");
    }
  }
}

void ReadField(ConfigTable table, SiteConfig& config) {
  FieldRule rule;
  if (!table.Text("name", kFieldNameLimit, rule.name)) {
    table.RefuseWhole("A [[field]] needs name = \"...\".");
  }
  CheckFieldName(table, rule.name, config);
  rule.meta = rule.name;
  rule.label = rule.name;
  table.Text("meta", kMostNameBytes, rule.meta);
  table.Text("label", kFieldLabelLimit, rule.label);
  std::vector<std::string_view> kinds;
  for (const FieldKind& kind : kFieldKinds) kinds.push_back(kind.name);
  size_t kind = 0;
  table.Choice("kind", kinds, kind);
  rule.kind = kFieldKinds[kind].kind;
  size_t method = 0;
  table.Choice("compare", kFieldKinds[kind].methods, method);
  rule.method = static_cast<int32_t>(method);
  const bool hasValues = table.Texts("values", kListValueLimit, rule.values);
  CheckFieldValues(table, rule, hasValues);
  table.Finish();
  config.fields.push_back(std::move(rule));
}

void ReadSettingsTable(ConfigTable table, const toml::table* settings, const ConfigSource& source,
                       SiteConfig& config) {
  for (const NumberKey& key : NumberKeys()) {
    int64_t value = 0;
    if (table.Number(key.key, key.least, key.most, value)) SetNumber(key.key, value, config);
  }
  for (const TextKey& key : TextKeys()) {
    std::string value;
    if (!table.Text(key.key, key.mostBytes, value)) continue;
    if (value.find('"') != value.npos) {
      table.Refuse(key.key, std::string(key.key) + " in [settings] cannot hold a double quote.");
    }
    // What names the search in a feed is text, as in [search]; the others are pieces of a page.
    if (key.key == "XMLTitle" || key.key == "XMLDesc") value = StoredText(value, IndexCharset());
    config.settings[std::string(key.key)] = {true, 0, value};
  }
  if (settings == nullptr) return;
  for (const auto& [key, node] : *settings) {
    const std::string_view reason = RefusedKeyReason(key.str());
    if (reason.empty()) continue;
    RefuseConfig(source.file, key.source(),
                 std::string(key.str()) + " cannot be set: " + std::string(reason) + ".");
  }
  table.Finish();
}

void ReadTables(const toml::table& root, const ConfigSource& source, Options& options) {
  SiteConfig& config = options.config;
  ConfigTable top(&root, source.file, "the file");
  const auto table = [&](const std::string& name) {
    return ConfigTable(top.Table(name), source.file, "[" + name + "]");
  };
  const auto forEach = [&](const std::string& name, size_t most, auto read) {
    size_t count = 0;
    for (const toml::table* each : top.Tables(name)) {
      ConfigTable item(each, source.file, "[[" + name + "]]");
      if (++count > most) {
        item.RefuseWhole("There are more than " + std::to_string(most) + " [[" + name + "]].");
      }
      read(std::move(item), config);
    }
  };
  ReadSite(table("site"), source, options);
  ReadIndex(table("index"), options);
  ReadSearch(table("search"), config);
  ReadSpelling(table("spelling"), config);
  ReadSuggestions(table("suggestions"), config);
  ReadRecommended(table("recommended"), source, config);
  ReadLog(table("log"), config);
  forEach("category", kCategoryLimit, ReadCategory);
  constexpr size_t kMostBoosts = 1000;
  forEach("boost", kMostBoosts, ReadBoost);
  forEach("field", kFieldLimit, ReadField);
  const toml::table* settings = top.Table("settings");
  ReadSettingsTable(ConfigTable(settings, source.file, "[settings]"), settings, source, config);
  top.Finish();
}

}  // namespace

void ReadConfigText(std::string_view text, const std::string& path, Options& options) {
  const ConfigSource source = {path, fs::path(path).parent_path()};
  toml::table root;
  try {
    root = toml::parse(text, path);
  } catch (const toml::parse_error& error) {
    RefuseConfig(path, error.source(),
                 std::string(error.description()) + ". Texts stand in quotes, one key on a line.");
  }
  ReadTables(root, source, options);
  if (options.config.recommendedFile.empty()) return;
  const std::string& file = options.config.recommendedFile;
  for (RecommendedRule& rule :
       ReadRecommendedRules(ReadOwnersFile(file, "file in [recommended]"), file)) {
    options.config.recommended.push_back(std::move(rule));
  }
}

void ReadConfigFile(const std::string& path, Options& options) {
  ReadConfigText(ReadOwnersFile(path, "--config"), path, options);
}

void WriteExampleConfig(const std::string& path) {
  const EmbeddedFile* example = FindEmbeddedFile(kExampleName);
  FILE* file = fopen(path.c_str(), "wxe");
  if (file == nullptr) {
    throw IndexError(ExitStatus::kFailed,
                     errno == EEXIST ? path +
                                           " exists already and is not overwritten. Give "
                                           "another name: --init FILE."
                                     : "Cannot write " + path + ": " + strerror(errno) + ".");
  }
  const size_t written = fwrite(example->content.data(), 1, example->content.size(), file);
  const bool closed = fclose(file) == 0;
  if (written != example->content.size() || !closed) {
    unlink(path.c_str());
    throw IndexError(ExitStatus::kFailed, "Cannot write " + path + ": the disk may be full.");
  }
}

}  // namespace vela::indexer
