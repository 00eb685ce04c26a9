// paragraphs.h: the text of a document in paragraphs, which may stand in one another, as those of a
// note or a drawing do.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "indexer/extract/page.h"
#include "indexer/extract/page_text.h"
#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

class Paragraphs {
 public:
  // `budget` must outlive this.
  explicit Paragraphs(ReadingBudget& budget) : text_(budget) {}

  // A paragraph begins, a heading of that level or none.
  void Begin(uint8_t headingLevel = 0);
  // Of the one that is open.
  void SetLevel(uint8_t headingLevel);
  void End();
  bool isOpen() const { return !open_.empty(); }

  // To the open paragraph; outside of all it is no text.
  void Append(std::string_view text);
  // Between two words of the paragraph.
  void AppendBlank() { Append(" "); }

  // The text to the end of the document, to be called once.
  void CopyTo(PageContent& page) { text_.CopyTo(page.body, false); }

 private:
  TextStyle StyleOf(uint8_t headingLevel);
  void Break();

  PageText text_;
  std::vector<TextStyle> open_;
};

}  // namespace vela::indexer
