#include "indexer/settings_writer.h"

#include <limits>
#include <map>
#include <vector>

#include "indexer/index_error.h"
#include "indexer/out_file.h"
#include "indexer/score.h"
#include "indexer/symbols.h"
#include "indexer/text_words.h"
#include "settings/language_strings.h"

namespace vela::indexer {

namespace {

// What the search program reads of a line.
constexpr size_t kMaxLineBytes = 2046;

// How a results page looks and how far a search goes. The owner of a site edits these in the file.
constexpr std::pair<std::string_view, int32_t> kDefaults[] = {
    {"NoCharset", 0},
    {"UseStemming", 0},
    {"MinWordLen", 1},  // "C", "5" and the "t" of "don't" are words
    {"ToLowerSearchWords", 1},
    {"SearchAsSubstring", 0},
    {"DefaultToAnd", 0},  // pages with all words come first anyway
    {"DefaultSort", 0},
    {"MapAccents", 0},  // words are in the dictionary with and without their accents
    {"FormFormat", 2},
    {"DisplayNumber", 1},
    {"DisplayTitle", 1},
    {"DisplayMetaDesc", 1},
    {"DisplayContext", 1},
    {"DisplayTerms", 0},
    {"DisplayScore", 0},
    {"DisplayDate", 1},
    {"DisplayFilesize", 1},
    {"DisplayURL", 1},
    {"TruncateShowURL", 90},
    {"UseDateTime", 1},
    {"Highlighting", 1},
    {"HighlightLimit", 30},
    {"GotoHighlight", 0},
    {"ContextSize", 30},
    {"MaxContextKeywords", 3},
    {"AllowExactPhrase", 1},
    {"MaxContextSeeks", 10000},
    {"MaxMatches", 100000},
    {"MaxResultsPerQuery", 1000},
    {"MaxSearchTime", 10},
    {"VelaInfo", 1},
    {"Timing", 1},
    {"Logging", 0},
    {"UseXML", 0},
    {"Spelling", 0},
    {"Recommended", 0},
    {"UseAutoComplete", 0},
    {"UseCats", 0},
    {"UseMetaFields", 0},
    {"UseBigPageInfoData", 0},
    {"MaxKeyWordLineLen", 256},
};

std::string TrimmedLine(std::string_view line) {
  const size_t begin = line.find_first_not_of(" \t\r");
  if (begin == line.npos) return {};
  return std::string(line.substr(begin, line.find_last_not_of(" \t\r") - begin + 1));
}

}  // namespace

std::string CheckedLanguage(std::string_view content, const std::string& name) {
  if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
  std::map<std::string, std::string, std::less<>> lines;
  while (!content.empty()) {
    const size_t end = std::min(content.find('\n'), content.size());
    const std::string line = TrimmedLine(content.substr(0, end));
    content.remove_prefix(std::min(end + 1, content.size()));
    const size_t keyEnd = line.find_first_of(" \t=");
    if (!line.starts_with(kLanguageKeyPrefix) || keyEnd == line.npos) continue;
    const size_t open = line.find('"');
    if (open == line.npos || line.find('"', open + 1) != line.size() - 1 ||
        line.size() > kMaxLineBytes) {
      throw IndexError(ExitStatus::kFailed, "The language file " + name +
                                                " has a line that is not of the form KEY = "
                                                "\"text\": " +
                                                line.substr(0, 80));
    }
    lines[line.substr(0, keyEnd)] = line.substr(open);
  }
  std::string checked;
  for (const std::string_view key : kLanguageKeys) {
    const auto found = lines.find(key);
    if (found == lines.end()) {
      throw IndexError(ExitStatus::kFailed, "The language file " + name + " lacks the text " +
                                                std::string(key) + ". Add the line " +
                                                std::string(key) + " = \"...\".");
    }
    checked.append(key).append(" = ").append(found->second).append("\n");
  }
  return checked;
}

uint64_t WriteSettings(const std::filesystem::path& path, const IndexFacts& facts,
                       const std::string& language) {
  std::string text;
  const auto add = [&](std::string_view key, uint64_t value) {
    if (value > std::numeric_limits<int32_t>::max()) {
      throw IndexError(ExitStatus::kFailed, "The site is too large for one index (" +
                                                std::string(key) + " = " + std::to_string(value) +
                                                "). Index its parts into several folders.");
    }
    text.append(key).append(" = ").append(std::to_string(value)).append("\n");
  };
  const auto addText = [&](std::string_view key, std::string_view value) {
    text.append(key).append(" = \"").append(value).append("\"\n");
  };
  addText("Version", VELA_VERSION);
  add("UseUTF8", 1);
  addText("Charset", "utf-8");
  add("Codepage", 65001);
  addText("WordJoinChars", kWordJoinChars);
  addText("LinkBackURL", "search.cgi");
  addText("LogFileName", ".//logs//searchwords.log");
  for (const auto& [key, value] : kDefaults) add(key, static_cast<uint64_t>(value));
  text.append("WeightProximity = ").append(std::to_string(kProximityWeight)).append("\n");

  const ReservedNumbers reserved = ReservedLimits();
  add("DictIDLen", facts.tokenBytes);
  add("DictReservedLimit", reserved.limit);
  add("DictReservedPrefixes", reserved.prefixes);
  add("DictReservedSuffixes", reserved.suffixes);
  add("DictReservedNoSpaces", reserved.noSpaces);
  add("NumKeywords", facts.dictionary.entries);
  add("NumVariants", facts.dictionary.variants);
  add("OutputBasewordBufferSize", facts.dictionary.baseBytes);
  add("OutputVariantBufferSize", facts.dictionary.variantBytes);
  add("NumPages", facts.pages);
  add("PageInfoSize", facts.pageInfoBytes);
  text += language;
  OutFile file(path);
  file.Write(text);
  return file.Finish();
}

}  // namespace vela::indexer
