// block_bytes_fuzz.cc: the blocks of pages that are kept between runs. Input: a block as it is,
// and, so that what is behind the hash is tried, too, the same with its hash put right.
#include <filesystem>
#include <string>

#include "indexer/collect/block_bytes.h"
#include "indexer/collect/page_tokens.h"
#include "program/fuzz/check.h"

namespace vela::fuzz {
namespace {

// What is read can be joined to a site, and is written as it was read.
void CheckBlock(std::string_view bytes) {
  using namespace indexer;
  PageBlock block;
  if (!ReadBlock(bytes, block)) {
    VELA_CHECK(block.addresses.empty() && block.words.words.empty());
    return;
  }
  PageBlock again;
  VELA_CHECK(ReadBlock(BlockBytes(block), again));
  VELA_CHECK(BlockBytes(again) == BlockBytes(block));
  VELA_CHECK(MemoryOf(block) < 4000 + 200 * bytes.size());

  Vocabulary vocabulary;
  SignEntries signs;
  PageTokens tokens;
  const TokenSink sink = [&](const std::vector<PageToken>& portion) {
    for (const PageToken& token : portion) {
      if (token.number < kWordBase) continue;
      const uint32_t word = token.number - kWordBase;
      VELA_CHECK(word < vocabulary.words.size());
      VELA_CHECK(token.variant <= vocabulary.words[word].variantCount);
    }
  };
  uint32_t number = 0;
  for (const AddressBlock& address : block.addresses) {
    JoinWords(block.words, address.words, number++, {vocabulary, signs, sink}, tokens);
  }
  SiteSections sections(std::filesystem::temp_directory_path());
  AddSections(block.sections, 0, block.words.bodyTokens, sections);
  SuggestionList suggestions;
  suggestions.AddPage(block.suggestions);
  suggestions.Take("the");
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  vela::fuzz::CheckBlock(input);
  std::string hashed(input.substr(0, input.size() < 8 ? 0 : input.size() - 8));
  const uint64_t hash = vela::indexer::TextHash(hashed);
  for (size_t i = 0; i < sizeof hash; ++i) hashed += static_cast<char>(hash >> (8 * i));
  vela::fuzz::CheckBlock(hashed);
  return 0;
}
