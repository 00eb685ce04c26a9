#include "indexer/write/settings_writer.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

#include "format/keyword_line.h"
#include "format/page_info.h"
#include "format/settings_file.h"
#include "indexer/config/extensions.h"
#include "indexer/config/setting_keys.h"
#include "indexer/report/index_error.h"
#include "indexer/words/query_folding.h"
#include "indexer/words/stored_text.h"
#include "indexer/words/word_cut.h"
#include "indexer/write/out_file.h"
#include "settings/setting_keys.h"

namespace vela::indexer {

namespace {

constexpr char kLineLengthKey[] = "MaxKeyWordLineLen";
constexpr std::string_view kCutSignsKey = "CutSigns";

// GCC 12 takes nothing of this for a constant while it adds the checks of the sanitizers.
#ifdef __SANITIZE_ADDRESS__
#define VELA_AT_COMPILE_TIME constexpr
#else
#define VELA_AT_COMPILE_TIME consteval
#endif

// Keys that the search program reads, by their names; with any other the compiler meets the throw.
struct NumberName {
  VELA_AT_COMPILE_TIME NumberName(const char* name) : key(name) {
    if (FindNumberSetting(name) == nullptr) throw std::logic_error(name);
  }
  std::string_view key;
};
struct TextName {
  VELA_AT_COMPILE_TIME TextName(const char* name) : key(name) {
    if (FindTextSetting(name) == nullptr) throw std::logic_error(name);
  }
  std::string_view key;
};

// The lines of the file as they are put together.
struct SettingsText {
  const IndexCharset& charset;
  std::string text;

  void Add(NumberName name, int64_t value) { AddNumber(name.key, value); }
  void AddNumber(std::string_view key, int64_t value) {
    if (value > std::numeric_limits<int32_t>::max()) {
      throw IndexError(ExitStatus::kFailed, "The site is too large for one index (" +
                                                std::string(key) + " = " + std::to_string(value) +
                                                "). Index its parts into several folders.");
    }
    text.append(key).append(" = ").append(std::to_string(value)).append("\n");
  }
  void AddCount(NumberName name, uint64_t value) {
    Add(name, static_cast<int64_t>(std::min<uint64_t>(value, std::numeric_limits<int64_t>::max())));
  }
  void AddText(TextName name, std::string_view value) { AddQuoted(name.key, value); }
  void AddQuoted(std::string_view key, std::string_view value) {
    text.append(key).append(" = \"").append(charset.WithReferences(value)).append("\"\n");
  }
  void AddLine(std::string_view line) { text.append(line).append("\n"); }
};

void AddOwnersText(const TextKey& key, std::string_view value, SettingsText& out) {
  // References for what the character set lacks make a text longer than it was when it was read.
  if (out.charset.WithReferences(value).size() > key.mostBytes) {
    throw IndexError(ExitStatus::kUsage, std::string(key.key) + " is too long when written in " +
                                             out.charset.name() + ", with more than " +
                                             std::to_string(key.mostBytes) +
                                             " bytes. Make it shorter.");
  }
  out.AddQuoted(key.key, value);
}

void AddOwnersKeys(const SiteConfig& config, SettingsText& out) {
  for (const NumberKey& key : NumberKeys()) {
    if (key.key == kLineLengthKey) continue;
    const auto given = config.settings.find(key.key);
    int32_t value = given == config.settings.end() ? key.value : given->second.number;
    if (key.key == "UseVelaImage" && !config.images) value = 0;
    out.AddNumber(key.key, value);
  }
  for (const TextKey& key : TextKeys()) {
    const auto given = config.settings.find(key.key);
    AddOwnersText(key, given == config.settings.end() ? key.value : given->second.text, out);
  }
}

int32_t WrittenValue(const NumberKey& key, const SiteConfig& config, const IndexCharset& charset) {
  // In a single-byte set the program knows the signs of ASCII alone.
  const bool isGiven = config.settings.contains(key.key);
  if (key.key == kCutSignsKey && !charset.utf8() && !isGiven) return 0;
  return ExtensionValue(config, key.key);
}

// Those that are off are not written: without their key they are off.
void AddExtensions(const IndexFacts& facts, const SiteConfig& config, SettingsText& out) {
  for (const NumberKey& key : ExtensionKeys()) {
    const int32_t value = WrittenValue(key, config, out.charset);
    if (value != 0) out.AddNumber(key.key, value);
  }
  for (const TextKey& key : ExtensionTextKeys()) {
    const auto given = config.settings.find(key.key);
    const std::string_view standard = config.extensions ? std::string_view(facts.stopWords) : "";
    const std::string_view value = given == config.settings.end() ? standard : given->second.text;
    if (!value.empty()) AddOwnersText(key, value, out);
  }
}

void AddCharset(const IndexCharset& charset, bool cutsSigns, int32_t stemming, SettingsText& out) {
  out.Add("UseUTF8", charset.utf8() ? 1 : 0);
  out.AddText("Charset", charset.name());
  out.Add("Codepage", charset.codepage());
  out.Add("MapAccents", 1);
  std::vector<Folding> table;
  // In UTF-8 the program folds case by itself.
  for (size_t i = 0; i < charset.uppers().size(); ++i) {
    table.push_back({{charset.uppers()[i]}, {charset.lowers()[i]}});
  }
  for (const Folding& folding : QueryFoldings(cutsSigns)) {
    if (stemming == kStemTurkish && IsUnfoldedInTurkish(folding)) continue;
    Folding written;
    const bool hasBoth =
        charset.Exactly(folding.from, written.from) && charset.Exactly(folding.to, written.to);
    if (hasBoth) table.push_back(std::move(written));
  }
  const auto addItems = [&](std::string_view key, std::string Folding::*item) {
    out.text.append(key);
    for (size_t i = 0; i < table.size(); ++i) {
      out.text.append(i == 0 ? " = \"" : ",\"").append(table[i].*item) += '"';
    }
    out.text += '\n';
  };
  addItems(kAccentCharsKey, &Folding::from);
  addItems(kNormalCharsKey, &Folding::to);
}

void AddCategories(const std::vector<CategoryRule>& categories, SettingsText& out) {
  out.Add("UseCats", categories.empty() ? 0 : 1);
  if (categories.empty()) return;
  out.AddCount("NumCats", categories.size());
  out.AddCount("NumCatBytes", CategorySetBytes(categories.size()));
  out.AddLine(kCategoryNamesLine);
  for (const CategoryRule& category : categories) {
    out.AddLine(StoredText(category.name, out.charset));
  }
}

void AddFields(const std::vector<FieldRule>& fields, SettingsText& out) {
  out.Add("UseMetaFields", fields.empty() ? 0 : 1);
  if (fields.empty()) return;
  out.AddCount("NumMetaFields", fields.size());
  out.AddLine(kMetaFieldsLine);
  for (const FieldRule& field : fields) {
    out.AddLine(std::to_string(field.kind));
    out.AddLine(field.name);
    out.AddLine(StoredText(field.label, kFieldLabelLimit, out.charset));
    out.AddLine({});  // a text that the search program reads and shows nowhere
    out.AddLine(std::to_string(field.method));
    out.AddLine(std::to_string(field.values.size()));
    for (const std::string& value : field.values) {
      out.AddLine(StoredText(value, kListValueLimit, out.charset));
    }
  }
}

}  // namespace

size_t KeyWordLineLength(const SiteConfig& config, size_t longestRecommended) {
  size_t length = 0;
  for (const NumberKey& key : NumberKeys()) {
    if (key.key == kLineLengthKey) length = static_cast<size_t>(key.value);
  }
  const auto given = config.settings.find(kLineLengthKey);
  if (given != config.settings.end()) length = static_cast<size_t>(given->second.number);
  return std::max(length, KeywordLineLenFor(longestRecommended));
}

bool CutsSigns(const SiteConfig& config, const IndexCharset& charset) {
  const auto key = std::ranges::find(ExtensionKeys(), kCutSignsKey, &NumberKey::key);
  return charset.utf8() && WrittenValue(*key, config, charset) == 1;
}

uint64_t WriteSettings(const std::filesystem::path& path, const IndexFacts& facts,
                       const SiteConfig& config, const IndexCharset& charset,
                       const std::string& strings) {
  SettingsText out{charset, {}};
  out.AddText("Version", VELA_VERSION);
  AddCharset(charset, CutsSigns(config, charset), config.stemming, out);
  out.AddText("WordJoinChars", kWordJoinChars);
  out.Add("ToLowerSearchWords", 1);
  out.Add("UseStemming", config.stemming < 0 ? 0 : 1);
  if (config.stemming >= 0) out.Add("StemmingAlgo", config.stemming);
  AddOwnersKeys(config, out);
  AddExtensions(facts, config, out);
  if (facts.synonyms != 0) out.AddCount("Synonyms", facts.synonyms);
  AddCategories(config.categories, out);
  AddFields(config.fields, out);
  out.Add("Spelling", facts.spellings == 0 ? 0 : 1);
  out.AddCount("NumSpellings", facts.spellings);
  out.Add("Recommended", facts.recommended == 0 ? 0 : 1);
  out.AddCount("NumRecommended", facts.recommended);
  out.Add("UseAutoComplete", facts.autocomplete == 0 ? 0 : 1);
  out.AddCount(kLineLengthKey, facts.lineLength);

  const ReservedNumbers& reserved = facts.reserved;
  out.Add("UseBigPageInfoData", 0);
  out.AddCount("DictIDLen", facts.tokenBytes);
  out.Add("DictReservedLimit", reserved.limit);
  out.Add("DictReservedPrefixes", reserved.prefixes);
  out.Add("DictReservedSuffixes", reserved.suffixes);
  out.Add("DictReservedNoSpaces", reserved.noSpaces);
  out.Add("PhraseSigns", 1);
  out.AddCount("NumKeywords", facts.dictionary.entries);
  out.AddCount("NumVariants", facts.dictionary.variants);
  out.AddCount("OutputBasewordBufferSize", facts.dictionary.baseBytes);
  out.AddCount("OutputVariantBufferSize", facts.dictionary.variantBytes);
  out.AddCount("NumPages", facts.pages);
  out.AddCount("PageInfoSize", facts.pageInfoBytes);
  out.Add("LookupGeneration", facts.lookupGeneration);
  out.text += charset.WithReferences(strings);
  OutFile file(path);
  file.Write(out.text);
  return file.Finish();
}

}  // namespace vela::indexer
