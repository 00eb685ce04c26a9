#include "indexer/write/completions_writer.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "format/autocomplete.h"
#include "format/completions.h"
#include "indexer/words/plain_forms.h"
#include "indexer/write/out_file.h"
#include "settings/index_directory.h"
#include "text/completion_fold.h"

namespace vela::indexer {

namespace {

std::string Folded(std::string text) {
  text.resize(FoldForCompletion(text.data(), text.size()));
  return text;
}

// The text with each word in its first form without accents.
std::string WithoutAccents(std::string_view folded) {
  std::string plain;
  while (!folded.empty()) {
    const std::string_view word = folded.substr(0, folded.find(' '));
    const std::vector<std::string> forms = PlainForms(word);
    plain.append(plain.empty() ? "" : " ").append(forms.empty() ? std::string(word) : forms[0]);
    folded.remove_prefix(std::min(word.size() + 1, folded.size()));
  }
  return plain;
}

struct Tables {
  std::vector<CompletionLine> lines;
  std::vector<CompletionBeginning> beginnings;
  std::string texts;
};

void AddText(std::string_view folded, Tables& tables) {
  const auto line = static_cast<uint32_t>(tables.lines.size());
  for (size_t at = 0; at < folded.size(); ++at) {
    if (!BeginsWord(folded, at)) continue;
    tables.beginnings.push_back({static_cast<uint32_t>(tables.texts.size() + at),
                                 at == 0 ? line | kCompletionOfLine : line});
  }
  tables.texts.append(folded).append("\n");
}

void Sort(Tables& tables) {
  const auto textOf = [&](const CompletionBeginning& beginning) {
    const std::string_view rest = std::string_view(tables.texts).substr(beginning.at);
    return rest.substr(0, rest.find('\n'));
  };
  std::ranges::sort(tables.beginnings,
                    [&](const CompletionBeginning& a, const CompletionBeginning& b) {
                      const int order = textOf(a).compare(textOf(b));
                      return order != 0 ? order < 0 : a.at < b.at;
                    });
}

template <typename Record>
void WriteRecords(OutFile& file, std::span<const Record> records) {
  file.Write({reinterpret_cast<const char*>(records.data()), records.size_bytes()});
}

}  // namespace

uint64_t WriteCompletions(const std::filesystem::path& folder, std::span<const std::string> texts) {
  IndexDirectory directory;
  OpenIndexDirectory(directory, folder.string());
  FileImage image;
  if (!image.Open(directory, kAutoCompleteFileName, false)) return 0;
  const std::string_view autocomplete = image.bytes();
  Tables tables;
  size_t start = 0;
  for (const std::string& text : texts) {
    const std::string folded = Folded(text);
    const std::string plain = WithoutAccents(folded);
    const size_t begin = tables.texts.size();
    AddText(folded, tables);
    if (plain != folded) AddText(plain, tables);
    tables.lines.push_back({static_cast<uint32_t>(start), static_cast<uint32_t>(begin),
                            static_cast<uint32_t>(tables.texts.size() - begin)});
    start = autocomplete.find('\n', start) + 1;
  }
  if (tables.texts.empty() || tables.texts.size() > UINT32_MAX ||
      autocomplete.size() > UINT32_MAX) {
    return 0;
  }
  Sort(tables);
  const CompletionsHeader header = {.autocomplete = {autocomplete.size(), FileSample(autocomplete)},
                                    .lines = tables.lines.size(),
                                    .beginnings = tables.beginnings.size(),
                                    .textBytes = tables.texts.size()};
  OutFile file(folder / kCompletionsFileName);
  WriteRecords(file, std::span(&header, 1));
  WriteRecords(file, std::span<const CompletionLine>(tables.lines));
  WriteRecords(file, std::span<const CompletionBeginning>(tables.beginnings));
  file.Write(tables.texts);
  return file.Finish();
}

}  // namespace vela::indexer
