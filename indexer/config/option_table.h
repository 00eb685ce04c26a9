// option_table.h: the options of the command line, one row each. The help, what is read, what must
// be given and the completion of shells (completion.h) all come from these rows.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "indexer/config/options.h"

namespace vela::indexer {

// What the command line says: the options of the run, and what only it can ask for.
struct CommandLine {
  Options options;
  std::string configFile;
  std::string initFile;
  std::string shell;
};

// Options that show something of the program itself.
enum class Shown : uint8_t { kHelp, kVersion };

// Where the value of an option goes; an option without a value is a flag.
using OptionTarget =
    std::variant<Shown, bool Options::*, uint64_t Options::*, std::string Options::*,
                 std::vector<std::string> Options::*, std::string CommandLine::*>;

// What a shell offers for the value of an option.
struct Offer {
  bool files = false;
  bool folders = false;
  std::vector<std::string_view> (*names)() = nullptr;
};

struct OptionRow {
  std::string_view name;   // "--site"; "-h,--help" with a short form
  std::string_view value;  // as the help calls it; in brackets when it may be left out
  std::string_view help;
  OptionTarget target;
  uint64_t limit = 0;               // of a number, which is 1 at least
  std::string_view otherwise = {};  // what holds without it, where that is no value of Options
  Offer offer = {};
  // Of an option that must be given here or in [site] of the configuration: what it is, and its
  // key.
  std::string_view needed = {};
  std::string_view key = {};
  // Of an option that goes with no other: what it does, and what is to be done after it.
  std::string_view alone = {};
  std::string_view after = {};
};

// In the order of the help.
std::span<const OptionRow> OptionTable();

// "--help" of "-h,--help".
std::string_view LongName(const OptionRow& row);

}  // namespace vela::indexer
