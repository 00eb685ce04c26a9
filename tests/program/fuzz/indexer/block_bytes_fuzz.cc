// block_bytes_fuzz.cc: the blocks of pages that are kept between runs. Input: a line, "page" or
// "piece", with pairs of numbers behind it; then a page, a line for each stretch of text: level of
// heading, anchor, "|", text; or "!", the text of a picture. The block of the page, or that of its
// first section, is changed where the pairs say, an offset and the byte to put there, and its hash
// put right. Other input is tried as a block, as it is and with its hash put right.
#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "indexer/collect/block_bytes.h"
#include "indexer/collect/page_tokens.h"
#include "indexer/words/clean_text.h"
#include "program/fuzz/check.h"

namespace vela::fuzz {
namespace {

// What is read can be joined to a site, and is written as it was read.
void CheckJoining(const indexer::PageBlock& block) {
  using namespace indexer;
  Vocabulary vocabulary;
  SignEntries signs;
  PageTokens tokens;
  const TextSink sink = [&](const TextStretch& stretch) {
    uint32_t count = 0;
    ForEachToken(stretch, [&](PageToken token) {
      ++count;
      if (token.number < kWordBase) return;
      const uint32_t word = token.number - kWordBase;
      VELA_CHECK(word < vocabulary.words.size());
      VELA_CHECK(token.variant <= vocabulary.words[word].variantCount);
    });
    VELA_CHECK(count == stretch.tokenCount + (stretch.end != kNone32 ? 1 : 0));
  };
  uint32_t number = 0;
  for (const AddressBlock& address : block.addresses) {
    JoinWords({&block.words, &address.words}, number++, {vocabulary, signs, sink}, tokens);
  }
  SiteSections sections(std::filesystem::temp_directory_path());
  AddSections(block.sections, 0, block.words.bodyTokens, sections);
  SuggestionList suggestions;
  suggestions.AddPage(block.suggestions);
  suggestions.Take("the");
}

// Whether the bytes are a block.
bool CheckBlock(std::string_view bytes) {
  using namespace indexer;
  PageBlock block;
  if (!ReadBlock(bytes, block)) {
    VELA_CHECK(block.addresses.empty() && block.words.words.empty() && block.pieces.empty());
    return false;
  }
  PageBlock again;
  VELA_CHECK(ReadBlock(BlockBytes(block), again));
  VELA_CHECK(BlockBytes(again) == BlockBytes(block));
  VELA_CHECK(MemoryOf(block) < 4000 + 200 * bytes.size());
  CheckJoining(block);
  for (const PageBlock& piece : block.pieces) {
    VELA_CHECK(!piece.anchor.empty() && piece.pieces.empty());
    CheckJoining(piece);
  }
  return true;
}

// The bytes but for the last eight, and the hash of those.
std::string Hashed(std::string_view bytes) {
  std::string hashed(bytes.substr(0, bytes.size() < 8 ? 0 : bytes.size() - 8));
  const uint64_t hash = indexer::TextHash(hashed);
  for (size_t i = 0; i < sizeof hash; ++i) hashed += static_cast<char>(hash >> (8 * i));
  return hashed;
}

std::optional<indexer::PageBlock> BlockOf(std::string_view lines) {
  indexer::Page page;
  page.facts.path = "a.html";
  page.facts.address = "https://x.example/a.html";
  page.facts.title = "Title";
  while (!lines.empty()) {
    const std::string_view line = TakeLine(lines);
    if (line.starts_with('!') && line.size() <= indexer::kPictureTextLimit / 3) {
      page.content.pictures.push_back(
          {"https://x.example/a.jpg", "a" + indexer::RepairedUtf8(line.substr(1))});
      continue;
    }
    const size_t bar = line.find('|');
    if (bar == 0 || bar == line.npos || line[0] < '0' || line[0] > '6') return {};
    page.content.body.push_back({.text = indexer::RepairedUtf8(line.substr(bar + 1)),
                                 .headingLevel = static_cast<uint8_t>(line[0] - '0'),
                                 .anchor = indexer::RepairedUtf8(line.substr(1, bar - 1))});
  }
  const std::string base = "https://x.example/";
  const indexer::IndexCharset charset;
  indexer::SiteConfig config;
  config.extensions = true;
  config.endings[static_cast<size_t>(FileType::kPicture)] = {"jpg"};
  config.content.sectionWords = 10;
  indexer::BlockMaker maker({.base = base, .config = config, .charset = charset});
  indexer::PageBlock block;
  if (maker.Make(page, block) != indexer::Reason::kNone) return {};
  return block;
}

// The number at the front; 0 where there is none.
size_t TakeNumber(std::string_view& text) {
  size_t number = 0;
  text.remove_prefix(std::min(text.find_first_of("0123456789"), text.size()));
  while (!text.empty() && text[0] >= '0' && text[0] <= '9') {
    number = number * 10 + static_cast<size_t>(text[0] - '0');
    text.remove_prefix(1);
  }
  return number;
}

void CheckChanges(const indexer::PageBlock& block, std::string_view changes) {
  std::string bytes = indexer::BlockBytes(block);
  VELA_CHECK(CheckBlock(bytes));
  while (!changes.empty()) {
    const size_t offset = TakeNumber(changes);
    bytes[offset % bytes.size()] = static_cast<char>(TakeNumber(changes));
  }
  CheckBlock(Hashed(bytes));
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela::fuzz;
  const std::string_view input = Text(data, size);
  std::string_view lines = input;
  const std::string_view first = TakeLine(lines);
  const bool isPiece = first.starts_with("piece");
  if (!isPiece && !first.starts_with("page")) {
    CheckBlock(input);
    CheckBlock(Hashed(input));
    return 0;
  }
  const auto block = BlockOf(lines);
  if (!block.has_value() || (isPiece && block->pieces.empty())) return 0;
  CheckChanges(isPiece ? block->pieces.front() : *block, first);
  return 0;
}
