// config_file_fuzz.cc: the site owner's configuration. Input: the text of the file.
#include <string>

#include "indexer/config/config_file.h"
#include "indexer/report/index_error.h"
#include "program/fuzz/check.h"

namespace vela::fuzz {
namespace {

constexpr char kName[] = "/nowhere/vela_index.toml";

void CheckOptions(const indexer::Options& options) {
  VELA_CHECK(options.memoryMegabytes >= 1);
  VELA_CHECK(options.memoryMegabytes <= indexer::kMemoryMegabytesLimit);
  VELA_CHECK(options.maxFileMegabytes >= 1);
  VELA_CHECK(options.maxFileMegabytes <= indexer::kFileMegabytesLimit);
  for (const indexer::FieldRule& field : options.config.fields) {
    VELA_CHECK(!field.name.empty());
    for (const std::string& value : field.values) VELA_CHECK(!value.empty());
  }
  for (const auto& [key, value] : options.config.settings) {
    // One line of settings.vdat, between quotes.
    VELA_CHECK(!key.empty() && value.text.find_first_of("\"\n") == value.text.npos);
  }
}

// What was read as one text, or the message about a wrong file.
std::string Listing(std::string_view text) {
  indexer::Options options;
  try {
    indexer::ReadConfigText(text, kName, options);
  } catch (const indexer::IndexError& error) {
    const std::string_view message = error.what();
    VELA_CHECK(!message.empty());
    if (error.status == indexer::ExitStatus::kUsage) VELA_CHECK(message.starts_with(kName));
    return std::string(message);
  }
  CheckOptions(options);
  std::string all = options.site + '\n' + options.baseUrl + '\n' + options.out + '\n' +
                    options.templateName + '\n' + options.language + '\n';
  for (const std::string& pattern : options.exclude) all += pattern + '\n';
  const indexer::SiteConfig& config = options.config;
  all += config.charset + ' ' + std::to_string(config.stemming) + '\n';
  for (const auto& rule : config.categories) all += rule.name + '\n';
  for (const auto& rule : config.fields) all += rule.name + '=' + rule.label + '\n';
  for (const auto& rule : config.boosts) all += rule.where + std::to_string(rule.tenths) + '\n';
  for (const auto& rule : config.recommended) all += rule.keywords + '>' + rule.address + '\n';
  for (const auto& [key, value] : config.settings) {
    all += key + '=' + (value.isText ? value.text : std::to_string(value.number)) + '\n';
  }
  return all;
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela::fuzz;
  const std::string_view text = Text(data, size);
  VELA_CHECK(Listing(text) == Listing(text));
  return 0;
}
