#include "indexer/explanation/word_counter.h"

#include <utility>

#include "indexer/words/clean_text.h"

namespace vela::indexer {

WordCounter::WordCounter(BlockMaker& maker, std::string base)
    : maker_(maker), base_(std::move(base)) {}

uint32_t WordCounter::Of(std::string text) {
  CleanText(text);
  Page page;
  page.facts.address = base_;
  page.content.body.push_back({.text = std::move(text)});
  PageBlock block;
  if (maker_.Make(page, block) != Reason::kNone) return 0;
  return block.words.bodyWords;
}

}  // namespace vela::indexer
