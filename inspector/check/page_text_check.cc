#include "inspector/check/page_text_check.h"

#include <string>

#include "format/page_text.h"
#include "index/page_text.h"
#include "inspector/findings/plain_text.h"
#include "search/lookup.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

TextStarts CheckPageText(const CheckInput& input, std::span<const uint32_t> spellings) {
  const OpenedIndex& index = input.index;
  const Settings& settings = index.settings;
  const std::string_view file = index.pageText.bytes();
  const auto add = [&](Fault fault, Place place, std::string detail) {
    input.findings.Add(fault, kPageTextFileName, place, std::move(detail));
  };
  if (!index.pageText.isOpen()) {
    if (NeedsPageText(settings)) {
      add(Fault::kMissing, kWholeFile, {});
      input.findings.SetUnusable();
    }
    return {};
  }
  const bool hasWidth = settings.DictIDLen > static_cast<int32_t>(kTokenVariantWidth) &&
                        settings.DictIDLen <= static_cast<int32_t>(kTokenWidthLimit);
  if (!hasWidth || spellings.empty()) return {};
  if (file.empty() && !NeedsPageText(settings)) return {};
  const auto width = static_cast<uint64_t>(settings.DictIDLen);
  if (file.size() % width != 0) {
    add(Fault::kWrongSize, Byte(file.size() - file.size() % width),
        "not a whole number of tokens of " + std::to_string(width) + " bytes (DictIDLen)");
  }
  const auto firstWord = static_cast<uint32_t>(FirstSearchedWord(settings));
  TextStarts starts = {0};
  input.progress.Begin(kPageTextFileName, file.size());
  PageTextReader reader = {.file = file, .tokenSize = settings.DictIDLen};
  SeekPageText(reader, 0);
  PageTextToken token;
  uint64_t at = 0;
  for (; ReadPageTextToken(reader, token) != 0; at += width) {
    if (token.word == kPageEndWord) {
      starts.push_back(at + width);
      input.progress.Step(at);
    }
    if (token.word >= spellings.size()) {
      add(Fault::kUnknownWord, Byte(at),
          "word " + std::to_string(token.word) + " of " + CountText(spellings.size()));
      continue;
    }
    const uint32_t most = token.word < firstWord ? 0 : spellings[token.word];
    if (token.variant > most) {
      add(Fault::kUnknownVariant, Byte(at),
          "spelling " + std::to_string(token.variant) + " of word " + std::to_string(token.word) +
              ", " + Quoted(index.dictionary.WordAt(static_cast<int32_t>(token.word))) +
              ", which has " + std::to_string(most));
    }
  }
  if (starts.back() != at) {
    add(Fault::kWrongForm, Byte(starts.back()), "the text of the last page has no end");
  }
  if (static_cast<int64_t>(starts.size()) - 1 != settings.NumPages) {
    add(Fault::kWrongCount, kWholeFile,
        "the texts of " + CountOfText(starts.size() - 1, "page", "pages") + ", but NumPages is " +
            std::to_string(settings.NumPages));
  }
  return starts;
}

}  // namespace vela::inspector
