#include "indexer/collect/equal_pages.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <string>
#include <string_view>

#include "indexer/collect/similar_pages.h"
#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {

constexpr size_t kLeastBytes = 200;  // of the text of pages that are compared

// Of several texts, each of which counts with its length. Among the most pages that an index can
// hold the chance that two of them meet is one in a hundred thousand.
class Fingerprint {
 public:
  void Add(std::string_view text) {
    value_ = XXH3_64bits_withSeed(text.data(), text.size(), value_);
  }
  uint64_t value() const { return value_; }

 private:
  uint64_t value_ = 0;
};

std::string BodyText(const PageContent& content) {
  std::string text;
  for (const TextRun& run : content.body) text.append(run.text).append(" ");
  return CollapseBlanks(text);
}

}  // namespace

PagePrints PrintsOf(const Page& page) {
  const PageContent& content = page.content;
  const std::string text = BodyText(content);
  if (text.size() < kLeastBytes) return {};
  const std::string_view path = page.facts.path;
  Fingerprint body;
  body.Add(path.substr(0, path.rfind('.')));
  body.Add(text);
  Fingerprint whole;
  whole.Add(content.title);
  whole.Add(content.description);
  for (const auto& [name, value] : content.metas) {
    whole.Add(name);
    whole.Add(value);
  }
  whole.Add(text);
  const std::optional<uint64_t> similar = SimilarityPrint(text);
  return {.isLong = true,
          .whole = whole.value(),
          .body = body.value(),
          .isComparable = similar.has_value(),
          .similar = similar.value_or(0)};
}

std::optional<uint32_t> EqualPages::EqualTo(const PagePrints& page, FileType type,
                                            uint32_t number) {
  if (!page.isLong) return std::nullopt;
  if (type != FileType::kHtml) {
    if (const uint32_t* made = bodies_.Find(page.body)) return *made;
  }
  const auto [same, isNew] = whole_.TryAdd(page.whole, number);
  if (!isNew) return *same;
  if (type == FileType::kHtml) bodies_.TryAdd(page.body, number);
  return std::nullopt;
}

}  // namespace vela::indexer
