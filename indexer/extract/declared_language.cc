#include "indexer/extract/declared_language.h"

#include "indexer/extract/html_tokens.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

// As far as a character set is looked for (declared_charset.h).
constexpr size_t kDeclarationBytes = 4096;

}  // namespace

std::string DeclaredLanguage(std::string_view markup) {
  ReadingBudget budget;
  HtmlTokens tokens(markup.substr(0, kDeclarationBytes), budget);
  for (TokenKind kind = tokens.Next(false); kind != TokenKind::kEnd; kind = tokens.Next(false)) {
    if (kind != TokenKind::kStartTag) continue;
    const Tag& tag = tokens.tag();
    if (tag.element != Element::kHtml) return {};  // it comes first, or is left out
    std::string language = LowerAsciiCopy(AttributeValue(tag, Attribute::kLang));
    if (language.empty()) language = LowerAsciiCopy(AttributeValue(tag, Attribute::kXmlLang));
    const size_t begin = language.find_first_not_of(kMarkupBlanks);
    if (begin == language.npos) return {};
    return language.substr(begin, language.find_first_of("-_ \t\n\r\f", begin) - begin);
  }
  return {};
}

}  // namespace vela::indexer
