#include "indexer/config/config_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "indexer/config/config_keys.h"
#include "indexer/config/config_rules.h"
#include "indexer/config/config_table.h"
#include "indexer/config/embedded_files.h"
#include "indexer/config/owner_file.h"
#include "indexer/config/recommended_rules.h"
#include "indexer/config/setting_keys.h"
#include "indexer/report/index_error.h"
#include "indexer/words/stored_text.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr char kExampleName[] = "vela_index.example.toml";

void ReadSettingsTable(const toml::table* settings, const std::string& file, SiteConfig& config) {
  ConfigTable table(settings, file, "[settings]");
  for (const std::span<const NumberKey> keys : {NumberKeys(), ExtensionKeys()}) {
    for (const NumberKey& key : keys) {
      int64_t value = 0;
      if (!table.Number(key.key, key.least, key.most, value)) continue;
      config.settings[std::string(key.key)] = {.number = static_cast<int32_t>(value)};
    }
  }
  for (const std::span<const TextKey> keys : {TextKeys(), ExtensionTextKeys()}) {
    for (const TextKey& key : keys) {
      std::string value;
      if (!table.Text(key.key, key.mostBytes, value)) continue;
      if (value.find('"') != value.npos) {
        table.RefuseValue(key.key, " cannot hold a double quote.");
      }
      // What names the search in a feed is text, as in [search]; the others are pieces of a page.
      if (key.key == "XMLTitle" || key.key == "XMLDesc") value = StoredText(value, IndexCharset());
      config.settings[std::string(key.key)] = {.isText = true, .text = value};
    }
  }
  if (settings == nullptr) return;
  for (const auto& [key, node] : *settings) {
    const std::string_view reason = RefusedKeyReason(key.str());
    if (reason.empty()) continue;
    RefuseConfig(file, key.source(),
                 std::string(key.str()) + " cannot be set: " + std::string(reason) + ".");
  }
  table.Finish();
}

// What is wrong with the form of the file. The parser stumbles over the end of the line, or of the
// file, when a quote is missing, and calls that a control character.
std::string FormFault(std::string_view description) {
  const bool inText = description.find("string: ") != description.npos;
  if (inText && (description.find("control characters") != description.npos ||
                 description.find("end-of-file") != description.npos)) {
    return "the quote at the end of a text is missing";
  }
  return std::string(description);
}

void ReadTables(const toml::table& root, const ConfigSource& source, Options& options) {
  ConfigTable top(&root, source.file, "the file");
  ReadKeyTables(top, source, options);
  ReadRuleTables(top, source.file, options.config);
  SiteConfig& config = options.config;
  ReadSettingsTable(top.Table("settings"), source.file, config);
  // Whichever table says that searches are logged, the log's folder has to be there.
  config.logging = config.settings.at("Logging").number == 1;
  config.logFile = config.settings.at("LogFileName").text;
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
                 FormFault(error.description()) + ". Texts stand in quotes, one key on a line.");
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
