// html_tokens_fuzz.cc: markup cut into tokens. Input: a byte that says by its lowest bit whether
// CDATA sections are text, then the markup.
#include <string>

#include "indexer/extract/html_tokens.h"
#include "program/fuzz/check.h"

namespace vela::fuzz {
namespace {

using indexer::Attribute;
using indexer::TokenKind;

// A piece of the page, or one reference resolved.
void CheckText(std::string_view text, std::string_view page) {
  VELA_CHECK(!text.empty());
  const bool ofPage = text.data() >= page.data() && text.data() < page.data() + page.size();
  VELA_CHECK(ofPage || text.size() <= 8);
}

void CheckTag(const indexer::Tag& tag, bool isStart) {
  VELA_CHECK(!tag.name.empty());
  VELA_CHECK(tag.name.find_first_of(" \t\n\r\f/>") == tag.name.npos);
  VELA_CHECK(isStart || tag.present == 0);
  for (size_t i = 0; i < tag.values.size(); ++i) {
    const auto attribute = static_cast<Attribute>(i);
    // References are at least as long as what they stand for, but for a few by one byte in five.
    const std::string value = AttributeValue(tag, attribute);
    VELA_CHECK(HasAttribute(tag, attribute) || value.empty());
    if (HasAttribute(tag, attribute)) VELA_CHECK(value.size() <= tag.values[i].size() * 2);
  }
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  if (size == 0) return 0;
  const bool inForeign = (data[0] & 1) != 0;
  const std::string_view page = Text(data + 1, size - 1);
  indexer::ReadingBudget budget;
  indexer::HtmlTokens tokens(page, budget);
  size_t count = 0;
  for (;;) {
    const TokenKind kind = tokens.Next(inForeign);
    if (kind == TokenKind::kEnd) break;
    VELA_CHECK(++count <= page.size());
    if (kind == TokenKind::kText) CheckText(tokens.text(), page);
    if (kind == TokenKind::kStartTag || kind == TokenKind::kEndTag) {
      CheckTag(tokens.tag(), kind == TokenKind::kStartTag);
    }
    if (kind == TokenKind::kStartTag && Has(tokens.tag().element, indexer::kRawText)) {
      VELA_CHECK(tokens.TakeRawText().size() <= page.size());
    }
  }
  VELA_CHECK(budget.steps <= 1 + 8 * page.size());
  return 0;
}
