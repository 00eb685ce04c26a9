#include "indexer/extract/meta_elements.h"

#include <utility>

#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {

// More or longer ones than this are not meant for readers.
constexpr size_t kMetaLimit = 300;
constexpr size_t kMetaBytesLimit = 20000;

}  // namespace

std::string OneLine(std::string text) {
  CleanText(text);
  return CollapseBlanks(text);
}

void AddMeta(std::string_view name, std::string text, PageContent& page) {
  if (name.empty() || page.metas.size() == kMetaLimit || text.size() > kMetaBytesLimit) return;
  text = OneLine(std::move(text));
  if (!text.empty()) page.metas.emplace_back(name, std::move(text));
}

}  // namespace vela::indexer
