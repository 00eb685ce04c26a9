#include "indexer/write/autocomplete_writer.h"

#include "format/keyword_line.h"
#include "indexer/words/stored_text.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

AutocompleteSizes WriteAutocomplete(const std::filesystem::path& path,
                                    std::span<const std::string> texts, uint64_t mostLines,
                                    size_t lineLength, const IndexCharset& charset) {
  AutocompleteSizes sizes;
  OutFile file(path);
  std::string exact;
  for (const std::string& text : texts) {
    if (sizes.lines == mostLines) break;
    if (!charset.utf8() && !charset.Exactly(text, exact)) continue;
    const std::string line = StoredText(text, charset) + "\n";
    if (line.size() > KeywordLineLimit(static_cast<int64_t>(lineLength))) continue;
    file.Write(line);
    ++sizes.lines;
    sizes.texts.push_back(text);
  }
  sizes.fileBytes = file.Finish();
  return sizes;
}

}  // namespace vela::indexer
