// config_table.h: taking values out of one table of the configuration file, with messages that name
// the line.
#pragma once

#include <toml++/toml.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// Throws IndexError (usage): "FILE, line N: TEXT". `node` is what the text is about.
[[noreturn]] void RefuseConfig(const std::string& file, const toml::source_region& source,
                               const std::string& text);

// One table. Each call of a reader makes its key known; Finish refuses all others. A reader leaves
// its argument as it is when the key is not there, and throws IndexError (usage) for a value of
// another type or out of range.
class ConfigTable {
 public:
  // `table` may be null: a table that the file does not have. `name` is how it is called in
  // messages: "[site]".
  ConfigTable(const toml::table* table, std::string file, std::string name)
      : table_(table), file_(std::move(file)), name_(std::move(name)) {}

  // A text of one line and at most `limit` bytes. False when the key is not there.
  bool Text(std::string_view key, size_t limit, std::string& value);
  // The same, from one of `choices`; `value` becomes its place.
  bool Choice(std::string_view key, std::span<const std::string_view> choices, size_t& value);
  bool Texts(std::string_view key, size_t limit, std::vector<std::string>& values);
  bool Number(std::string_view key, int64_t least, int64_t most, int64_t& value);
  bool Decimal(std::string_view key, double least, double most, double& value);
  bool Flag(std::string_view key, bool& value);
  // A table inside the table; null when it is not there.
  const toml::table* Table(std::string_view key);
  // [[key]]; empty when there are none.
  std::vector<const toml::table*> Tables(std::string_view key);

  // For messages: the file and the line at which the table, which is there, begins.
  std::string Where() const;
  // Refuses the value of `key`, which is there.
  [[noreturn]] void Refuse(std::string_view key, const std::string& text) const;
  // The same, with the names of key and table before the text: " must be ...".
  [[noreturn]] void RefuseValue(std::string_view key, const std::string& text) const;
  // The table lacks something: names the line in which it begins.
  [[noreturn]] void RefuseWhole(const std::string& text) const;

  void Finish() const;

 private:
  const toml::node* Find(std::string_view key);
  std::string CheckedText(std::string_view key, const toml::node& node, size_t limit) const;

  const toml::table* table_;
  std::string file_;
  std::string name_;
  std::vector<std::string> known_;
};

}  // namespace vela::indexer
