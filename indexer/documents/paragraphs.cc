#include "indexer/documents/paragraphs.h"

namespace vela::indexer {

void Paragraphs::Break() { text_.Break(PageText::kPageStrand, TextShare::kContent); }

// Each heading is a section of its own, so that two in a row stay two.
TextStyle Paragraphs::StyleOf(uint8_t headingLevel) {
  TextStyle style{.headingLevel = headingLevel};
  if (headingLevel != 0) style.section = text_.StartSection({});
  return style;
}

void Paragraphs::Begin(uint8_t headingLevel) {
  Break();
  open_.push_back(StyleOf(headingLevel));
}

void Paragraphs::SetLevel(uint8_t headingLevel) {
  if (isOpen()) open_.back() = StyleOf(headingLevel);
}

void Paragraphs::End() {
  if (!isOpen()) return;
  open_.pop_back();
  Break();
}

void Paragraphs::Append(std::string_view text) {
  if (isOpen() && !text.empty()) text_.Append(PageText::kPageStrand, open_.back(), text);
}

}  // namespace vela::indexer
