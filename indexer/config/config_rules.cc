#include "indexer/config/config_rules.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "format/meta_fields.h"
#include "format/page_data.h"
#include "format/synonyms.h"
#include "indexer/config/config_keys.h"
#include "indexer/config/content_keys.h"
#include "indexer/site/address_pattern.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/detected_language.h"
#include "settings/settings.h"
#include "text/ascii.h"
#include "text/lower.h"

namespace vela::indexer {

namespace {

constexpr size_t kBoostLimit = 1000;
constexpr size_t kSynonymLimit = 10000;

void ReadPages(ConfigTable& table, const std::string& what, std::vector<std::string>& pages) {
  if (!table.Texts("pages", kAddressLimit, pages) || pages.empty()) {
    table.RefuseWhole(what + " needs pages = [\"news/*\"], the addresses of its pages.");
  }
  for (std::string& pattern : pages) pattern = AddressPattern(pattern);
}

void ReadCategory(ConfigTable table, SiteConfig& config) {
  CategoryRule rule;
  if (!table.Text("name", kNameLimit, rule.name) || rule.name.empty()) {
    table.RefuseWhole("A [[category]] needs name = \"...\".");
  }
  const bool hasLanguages = table.Texts("languages", kNameLimit, rule.languages);
  for (std::string& language : rule.languages) {
    if (!IsLanguageCode(language)) {
      table.Refuse("languages", "\"" + language +
                                    "\" is no language. Give codes of two or three small letters, "
                                    "without a region, as in \"pt\".");
    }
  }
  if (hasLanguages && rule.languages.empty()) {
    table.RefuseValue("languages", " needs one language at least.");
  }
  if (!hasLanguages) {
    ReadPages(table, "The category \"" + rule.name + "\"", rule.pages);
  } else if (table.Texts("pages", kAddressLimit, rule.pages)) {
    for (std::string& pattern : rule.pages) pattern = AddressPattern(pattern);
  }
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

// A key that is left out is as [index] has it.
void ReadContent(ConfigTable table, SiteConfig& config) {
  ContentRule rule = config.content;
  ReadPages(table, "A [[content]]", rule.pages);
  rule.where = table.Where();
  ReadContentKeys(table, rule.where, config, rule);
  table.Finish();
  config.contentRules.push_back(std::move(rule));
}

void ReadSynonym(ConfigTable table, SiteConfig& config) {
  SynonymRule rule;
  if (!table.Texts("words", kNameLimit, rule.words) || rule.words.size() < 2) {
    table.RefuseWhole("A [[synonym]] needs words = [\"e-mail\", \"mail\"], two at least.");
  }
  if (rule.words.size() > kSynonymAlternativesLimit) {
    table.RefuseValue("words", " has more than " + std::to_string(kSynonymAlternativesLimit) + ".");
  }
  for (std::string& word : rule.words) {
    CleanText(word);
    word = CollapseBlanks(word);
    LowerText(word.data(), word.size(), true);
    const auto blanks = static_cast<size_t>(std::ranges::count(word, ' '));
    const bool hasSign = word.find_first_of("\"*?<>&") != word.npos || word.starts_with('-');
    if (word.empty() || hasSign || blanks >= kSynonymWordsLimit) {
      table.Refuse("words", "\"" + word + "\" cannot be a synonym. Give a word, or up to " +
                                std::to_string(kSynonymWordsLimit) +
                                " that stand side by side, as they are typed.");
    }
  }
  table.Finish();
  config.synonyms.push_back(std::move(rule));
}

// The search program knows a field's way of comparing by a number.
struct FieldKind {
  std::string_view name;
  int32_t kind;
  std::vector<std::string_view> methods;
};

const FieldKind kFieldKinds[] = {
    {"text", kMetaText, {"contains", "equal", "begins"}},
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
  const bool list = HasMetaList(rule.kind);
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
  table.Text("meta", kNameLimit, rule.meta);
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

}  // namespace

void ReadRuleTables(ConfigTable& top, const std::string& file, SiteConfig& config) {
  const struct {
    const char* name;
    size_t limit;
    void (*read)(ConfigTable, SiteConfig&);
  } kRules[] = {
      {"category", kCategoryLimit, &ReadCategory},  {"boost", kBoostLimit, &ReadBoost},
      {"content", kContentRuleLimit, &ReadContent}, {"field", kFieldLimit, &ReadField},
      {"synonym", kSynonymLimit, &ReadSynonym},
  };
  for (const auto& rule : kRules) {
    const std::string name = "[[" + std::string(rule.name) + "]]";
    size_t count = 0;
    for (const toml::table* each : top.Tables(rule.name)) {
      ConfigTable table(each, file, name);
      if (++count > rule.limit) {
        table.RefuseWhole("There are more than " + std::to_string(rule.limit) + " " + name + ".");
      }
      rule.read(std::move(table), config);
    }
  }
}

}  // namespace vela::indexer
