#include "indexer/write/dictionary_writer.h"

#include <string>

#include "format/dictionary.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

DictionarySizes WriteDictionary(const std::filesystem::path& path,
                                std::span<const std::string> reserved, const Vocabulary& vocabulary,
                                const std::vector<uint32_t>& order,
                                const std::vector<uint64_t>& offsets, const IndexCharset& charset) {
  DictionarySizes sizes;
  OutFile file(path);
  const auto writeBase = [&](std::string_view text, int64_t offset, size_t variants) {
    file.Write(text);
    file.Write(" " + std::to_string(offset) + " " + std::to_string(variants) + "\n");
    ++sizes.entries;
    sizes.baseBytes += static_cast<uint64_t>(BasewordBufferBytes(text.size()));
  };
  for (const std::string& text : reserved) {
    writeBase(charset.WithReferences(text), kNoWordList, 0);
  }
  for (const uint32_t number : order) {
    const Word& word = vocabulary.words[number];
    writeBase(TextOf(word, vocabulary), static_cast<int64_t>(offsets[number]), word.variantCount);
    for (uint32_t v = word.firstVariant; v != kNone32; v = vocabulary.variants[v].next) {
      const std::string_view text = TextOf(vocabulary.variants[v], vocabulary);
      file.Write(text);
      file.Write("\n");
      ++sizes.variants;
      sizes.variantBytes += static_cast<uint64_t>(VariantBufferBytes(text.size()));
    }
  }
  sizes.fileBytes = file.Finish();
  return sizes;
}

}  // namespace vela::indexer
