#include "indexer/write/dictionary_writer.h"

#include <string>

#include "indexer/words/symbols.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

DictionarySizes WriteDictionary(const std::filesystem::path& path, const Vocabulary& vocabulary,
                                const std::vector<uint32_t>& order,
                                const std::vector<uint64_t>& offsets, const IndexCharset& charset) {
  DictionarySizes sizes;
  OutFile file(path);
  const auto writeBase = [&](std::string_view text, const std::string& numbers) {
    file.Write(text);
    file.Write(numbers);
    ++sizes.entries;
    sizes.baseBytes += text.size() + 1;
  };
  for (const std::string& text : ReservedTexts()) {
    writeBase(charset.WithReferences(text), " -1 0\n");
  }
  for (const uint32_t number : order) {
    const Word& word = vocabulary.words[number];
    writeBase(TextOf(word), " " + std::to_string(offsets[number]) + " " +
                                std::to_string(word.variantCount) + "\n");
    for (uint32_t v = word.firstVariant; v != kNone32; v = vocabulary.variants[v].next) {
      const std::string_view text = TextOf(vocabulary.variants[v]);
      file.Write(text);
      file.Write("\n");
      ++sizes.variants;
      sizes.variantBytes += text.size() + 2;
    }
  }
  sizes.fileBytes = file.Finish();
  return sizes;
}

}  // namespace vela::indexer
