#include "support/with_extensions.h"

#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "format/autocomplete.h"
#include "format/corrections.h"
#include "format/page_text.h"
#include "format/sections.h"
#include "format/settings_file.h"
#include "format/synonyms.h"
#include "indexer/write/completions_writer.h"
#include "indexer/write/sections_writer.h"
#include "settings/settings_file.h"
#include "support/recipe.h"
#include "support/with_lookup.h"

namespace vela::support {

namespace {

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string Numbers(std::initializer_list<uint32_t> numbers) {
  std::string bytes;
  for (const uint32_t number : numbers) {
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(number >> shift));
  }
  return bytes;
}

// "pear" and "plum" on two pages each, then "apple".
std::string CorrectionsBytes() {
  constexpr size_t kFewest = 4;  // letters of the words, and one more of the last
  std::string bytes = std::string("correct") + '\0' + Numbers({3, 13});
  for (size_t letters = 0; letters < kWordLettersLimit + 2; ++letters) {
    bytes += Numbers({letters <= kFewest ? 0U : letters == kFewest + 1 ? 2U : 3U});
  }
  const auto bit = [](char letter) { return 1U << (letter - 'a'); };
  bytes +=
      Numbers({bit('p') | bit('e') | bit('a') | bit('r'), bit('p') | bit('l') | bit('u') | bit('m'),
               bit('a') | bit('p') | bit('l') | bit('e')});
  return bytes + Numbers({3, 2, 2}) + Numbers({0, 4, 8, 13}) + "pearplumapple";
}

// Instead of "pear" there may be "plum", and, at half the weight, "big apple" on page 1.
std::string SynonymsBytes() {
  std::string bytes = std::string("synonym") + '\0' + Numbers({1, 2, 1, 17});
  bytes += Numbers({0, 0, 4, 2}) + Numbers({4, 0, 100, 8, 0, 50, 17, 1, 0});
  bytes += std::string("\x1E\x02\x01\0\0", 5) + Numbers({20}) + std::string(1, '\0');
  return bytes + "pearplumbig apple";
}

}  // namespace

bool SwitchExtensionsOn(const std::filesystem::path& directory) {
  if (!AddLookup(directory)) return false;
  const std::filesystem::path path = directory / kSettingsFileName;
  const std::string former = ReadWholeFile(path);
  const auto settings = std::make_unique<Settings>();
  if (ReadSettings(*settings, former) != SettingsStatus::kOk) return false;
  indexer::SiteSections sections(directory);
  sections.Add({.token = 0}, "one", "First");
  sections.Add({.token = 6}, "two", {});
  sections.AddEnd(9);
  if (indexer::WriteSections(
          directory / kSectionsFileName, sections,
          {.generation = settings->LookupGeneration,
           .pageTextSize = std::filesystem::file_size(directory / kPageTextFileName),
           .tokenBytes = static_cast<size_t>(settings->DictIDLen)}) == 0) {
    return false;
  }
  std::vector<std::string> texts;
  std::ifstream lines(directory / kAutoCompleteFileName);
  for (std::string line; std::getline(lines, line);) texts.push_back(line);
  if (indexer::WriteCompletions(directory, texts) == 0) return false;
  WriteFile(directory / kCorrectionsFileName, CorrectionsBytes());
  WriteFile(directory / kSynonymsFileName, SynonymsBytes());
  std::string extensions = "StopWords = \"the a\"\nSynonyms = 1\n";
  for (const char* key :
       {"CutSigns", "PlainQueries", "OfferWords", "Ranking", "SpellingDistance", "ShowCorrected",
        "Passages", "SectionLinks", "CompleteAnyWord", "CutRuns", "AmendedAnswers"}) {
    extensions += std::string(key) + " = 1\n";
  }
  WriteFile(path, extensions + former);
  return true;
}

}  // namespace vela::support
