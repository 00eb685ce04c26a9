// dictionary_fuzz.cc: the reader of the dictionary. Input: a line with NumKeywords,
// OutputBasewordBufferSize, OutputVariantBufferSize and NumVariants, then the file.
#include <cstdio>
#include <memory>
#include <string>

#include "index/dictionary.h"
#include "program/fuzz/check.h"
#include "settings/settings.h"

namespace vela::fuzz {
namespace {

void CheckWords(const Dictionary& dictionary, const Settings& settings) {
  VELA_CHECK(dictionary.size() <= settings.NumKeywords);
  for (int32_t i = 0; i < dictionary.size(); ++i) {
    const DictEntry entry = dictionary.EntryAt(i);
    VELA_CHECK(entry.word == dictionary.WordAt(i));
    VELA_CHECK(entry.word.find_first_of(" \n") == std::string_view::npos);
    const int32_t found = dictionary.FindExact(entry.word, 0);
    VELA_CHECK(found >= 0 && found <= i && dictionary.WordAt(found) == entry.word);
    VELA_CHECK(dictionary.DisplayText(i, 0) == entry.word);

    VariantReader reader(dictionary, entry);
    int32_t count = 0;
    std::string_view variant;
    while (reader.Next(variant)) {
      VELA_CHECK(!variant.empty() && variant.size() < 400);
      if (count < 255) VELA_CHECK(dictionary.DisplayText(i, count + 1) == variant);
      ++count;
    }
  }
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view input = Text(data, size);
  const auto settings = std::make_unique<Settings>();
  const std::string sizes(TakeLine(input));
  if (sscanf(sizes.c_str(), "%d %d %d %d", &settings->NumKeywords,
             &settings->OutputBasewordBufferSize, &settings->OutputVariantBufferSize,
             &settings->NumVariants) != 4) {
    return 0;
  }
  const LookupFile noLookup;
  Dictionary dictionary;
  const DictionaryResult result = dictionary.Load(input, *settings, noLookup);
  VELA_CHECK(result.entries == 0 || result.entries - 1 <= settings->NumKeywords);
  if (result.status == DictionaryStatus::kOk) CheckWords(dictionary, *settings);
  return 0;
}
