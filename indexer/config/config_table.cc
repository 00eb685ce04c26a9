#include "indexer/config/config_table.h"

#include <algorithm>
#include <cstdio>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

std::string Joined(std::span<const std::string_view> names) {
  std::string text;
  for (const std::string_view name : names) text.append(text.empty() ? "" : ", ").append(name);
  return text;
}

}  // namespace

void RefuseConfig(const std::string& file, const toml::source_region& source,
                  const std::string& text) {
  throw IndexError(ExitStatus::kUsage,
                   file + ", line " + std::to_string(source.begin.line) + ": " + text);
}

const toml::node* ConfigTable::Find(std::string_view key) {
  known_.emplace_back(key);
  return table_ == nullptr ? nullptr : table_->get(key);
}

std::string ConfigTable::Where() const {
  return file_ + ", line " + std::to_string(table_->source().begin.line);
}

void ConfigTable::Refuse(std::string_view key, const std::string& text) const {
  RefuseConfig(file_, table_->get(key)->source(), text);
}

void ConfigTable::RefuseValue(std::string_view key, const std::string& text) const {
  Refuse(key, std::string(key) + " in " + name_ + text);
}

void ConfigTable::RefuseWhole(const std::string& text) const {
  RefuseConfig(file_, table_->source(), text);
}

std::string ConfigTable::CheckedText(std::string_view key, const toml::node& node,
                                     size_t limit) const {
  const auto text = node.value_exact<std::string>();
  // An item of a list has a line of its own.
  const auto refuse = [&](const std::string& what) {
    RefuseConfig(file_, node.source(), std::string(key) + " in " + name_ + what);
  };
  if (!text.has_value()) refuse(" must be a text in quotes.");
  const bool controls =
      std::ranges::any_of(*text, [](char c) { return static_cast<unsigned char>(c) < 0x20; });
  if (controls) refuse(" must be a text of one line.");
  if (text->size() > limit) {
    refuse(" holds " + std::to_string(text->size()) + " bytes; at most " + std::to_string(limit) +
           " are possible. Make it shorter.");
  }
  return *text;
}

bool ConfigTable::Text(std::string_view key, size_t limit, std::string& value) {
  const toml::node* node = Find(key);
  if (node == nullptr) return false;
  value = CheckedText(key, *node, limit);
  return true;
}

bool ConfigTable::Choice(std::string_view key, std::span<const std::string_view> choices,
                         size_t& value) {
  std::string text;
  if (!Text(key, std::string::npos, text)) return false;
  const auto found = std::ranges::find(choices, text);
  if (found == choices.end()) {
    RefuseValue(key, " cannot be \"" + text + "\". Give one of " + Joined(choices) + ".");
  }
  value = static_cast<size_t>(found - choices.begin());
  return true;
}

bool ConfigTable::Texts(std::string_view key, size_t limit, std::vector<std::string>& values) {
  const toml::node* node = Find(key);
  if (node == nullptr) return false;
  const toml::array* list = node->as_array();
  if (list == nullptr) {
    RefuseValue(key, " must be a list: [\"one\", \"two\"].");
  }
  values.clear();
  for (const toml::node& item : *list) values.push_back(CheckedText(key, item, limit));
  return true;
}

bool ConfigTable::Number(std::string_view key, int64_t least, int64_t most, int64_t& value) {
  const toml::node* node = Find(key);
  if (node == nullptr) return false;
  const auto number = node->value_exact<int64_t>();
  if (!number.has_value() || *number < least || *number > most) {
    RefuseValue(key, " must be a whole number from " + std::to_string(least) + " to " +
                         std::to_string(most) + ", without quotes.");
  }
  value = *number;
  return true;
}

bool ConfigTable::Decimal(std::string_view key, double least, double most, double& value) {
  const toml::node* node = Find(key);
  if (node == nullptr) return false;
  const auto number = node->value<double>();
  if (!number.has_value() || !(*number >= least && *number <= most)) {
    char range[80];
    snprintf(range, sizeof range, " must be a number from %g to %g.", least, most);
    RefuseValue(key, range);
  }
  value = *number;
  return true;
}

bool ConfigTable::Flag(std::string_view key, bool& value) {
  const toml::node* node = Find(key);
  if (node == nullptr) return false;
  const auto flag = node->value_exact<bool>();
  if (!flag.has_value()) {
    RefuseValue(key, " must be true or false, without quotes.");
  }
  value = *flag;
  return true;
}

const toml::table* ConfigTable::Table(std::string_view key) {
  const toml::node* node = Find(key);
  if (node == nullptr) return nullptr;
  if (!node->is_table()) {
    Refuse(key, std::string(key) + " must be a table: write [" + std::string(key) +
                    "] on a line of its own.");
  }
  return node->as_table();
}

std::vector<const toml::table*> ConfigTable::Tables(std::string_view key) {
  const toml::node* node = Find(key);
  std::vector<const toml::table*> tables;
  if (node == nullptr) return tables;
  const toml::array* list = node->as_array();
  const bool fits = list != nullptr && std::ranges::all_of(*list, [](const toml::node& item) {
                      return item.is_table();
                    });
  if (!fits) {
    Refuse(key, std::string(key) + " must be a list of tables: write [[" + std::string(key) +
                    "]] before each.");
  }
  for (const toml::node& item : *list) tables.push_back(item.as_table());
  return tables;
}

void ConfigTable::Finish() const {
  if (table_ == nullptr) return;
  for (const auto& [key, node] : *table_) {
    if (std::ranges::find(known_, key.str()) != known_.end()) continue;
    const std::vector<std::string_view> names(known_.begin(), known_.end());
    RefuseConfig(file_, key.source(),
                 "there is no \"" + std::string(key.str()) + "\" in " + name_ +
                     ". Known there: " + Joined(names) + ".");
  }
}

}  // namespace vela::indexer
