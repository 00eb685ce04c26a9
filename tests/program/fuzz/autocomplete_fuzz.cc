// autocomplete_fuzz.cc: the list of suggestions. Input: a line with MaxKeyWordLineLen and UseUTF8,
// two lines with a word each, then the file.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "format/autocomplete.h"
#include "index/autocomplete.h"
#include "output/autocomplete.h"
#include "program/fuzz/check.h"
#include "program/fuzz/written.h"
#include "settings/index_directory.h"
#include "support/scratch_directory.h"
#include "text/word_compare.h"

namespace vela::fuzz {
namespace {

constexpr std::string_view kBefore =
    "<div class=\"vela_ac_item\" onclick=\"VelaAutoComplete_UseSuggestion(&quot;";
constexpr std::string_view kBetween =
    "&quot;);\"><a class=\"vela_ac_item\" href=\"#\" target=\"_self\">";
constexpr std::string_view kAfter = "</a></div>\n";

// The suggestions of an answer, each of which stands in its item twice.
std::vector<std::string_view> Items(std::string_view answer) {
  std::vector<std::string_view> items;
  while (!answer.empty()) {
    VELA_CHECK(answer.starts_with(kBefore));
    const size_t item = answer.find(kAfter) + kAfter.size();
    VELA_CHECK(item >= kAfter.size());
    std::string_view rest = answer.substr(0, item);
    const size_t marks = kBefore.size() + kBetween.size() + kAfter.size();
    VELA_CHECK(rest.size() >= marks && (rest.size() - marks) % 2 == 0);
    const std::string_view text = rest.substr(kBefore.size(), (rest.size() - marks) / 2);
    VELA_CHECK(rest.substr(kBefore.size() + text.size(), kBetween.size()) == kBetween);
    VELA_CHECK(rest.substr(rest.size() - kAfter.size() - text.size(), text.size()) == text);
    VELA_CHECK(text.find_first_of("\r\n") == text.npos);
    items.push_back(text);
    answer.remove_prefix(item);
  }
  return items;
}

std::string Answer(const IndexDirectory& directory, const Settings& settings,
                   std::span<const std::string_view> words) {
  return Written([&](Response& response) {
    SuggestionReader suggestions;
    VELA_CHECK(suggestions.Open(directory, settings) == LoadStatus::kOk);
    WriteAutoComplete(response, suggestions, words, settings.UseUTF8 == 1);
  });
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  static const support::ScratchDirectory scratch;
  std::string_view file = Text(data, size);
  const auto settings = std::make_unique<Settings>();
  const std::string numbers(TakeLine(file));
  if (sscanf(numbers.c_str(), "%d %d", &settings->MaxKeyWordLineLen, &settings->UseUTF8) != 2) {
    return 0;
  }
  settings->MaxKeyWordLineLen = std::min(settings->MaxKeyWordLineLen, 10000);
  const auto word = [&file] {
    const std::string_view line = TakeLine(file);
    return line.substr(0, line.find('\0'));
  };
  const std::string_view first = word();
  const std::string_view words[] = {first, word()};
  if (file.find(kAfter.substr(0, kAfter.size() - 1)) != file.npos) return 0;  // would end an item
  std::ofstream(scratch.path() / kAutoCompleteFileName, std::ios::binary | std::ios::trunc) << file;
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());

  // The empty word begins every suggestion; any other list is picked from that one, in its order.
  const std::string_view everything[] = {""};
  const std::string all = Answer(directory, *settings, everything);
  const std::string picked = Answer(directory, *settings, words);
  std::vector<std::string_view> expected;
  for (const std::string_view item : Items(all)) {
    for (const std::string_view w : words) {
      if (PrefixMatches(item, w, settings->UseUTF8 == 1)) expected.push_back(item);
    }
  }
  VELA_CHECK(Items(picked) == expected);
  return 0;
}
