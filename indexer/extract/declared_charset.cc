#include "indexer/extract/declared_charset.h"

#include <algorithm>

#include "indexer/extract/html_tokens.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

// How far a declaration may stand from the start of a page. Browsers look at 1 kB, and take a later
// one when they come to it.
constexpr size_t kDeclarationBytes = 4096;

bool IsQuote(char c) { return c == '"' || c == '\''; }

// Takes off `text`, in lower case, what stands before the first `name` that "=" follows, and that.
bool PassKey(std::string_view& text, std::string_view name) {
  for (size_t at = text.find(name); at != text.npos; at = text.find(name)) {
    text.remove_prefix(at + name.size());
    const size_t next = text.find_first_not_of(kMarkupBlanks);
    if (next == text.npos || text[next] != '=') continue;
    text.remove_prefix(next + 1);
    text.remove_prefix(std::min(text.find_first_not_of(kMarkupBlanks), text.size()));
    return true;
  }
  return false;
}

// "text/html; charset=utf-8", in lower case. Empty when a quote is not closed.
std::string_view CharsetOfType(std::string_view type) {
  if (!PassKey(type, "charset") || type.empty()) return {};
  if (!IsQuote(type[0])) {
    return type.substr(0, std::min(type.find_first_of(kMarkupBlanks), type.find(';')));
  }
  const size_t end = type.find(type[0], 1);
  return end == type.npos ? std::string_view() : type.substr(1, end - 1);
}

// "<?xml version='1.0' encoding='utf-8'?>", in lower case, from its start on.
std::string_view CharsetOfXml(std::string_view declaration) {
  declaration = declaration.substr(0, declaration.find('>'));
  if (!PassKey(declaration, "encoding") || declaration.empty() || !IsQuote(declaration[0]))
    return {};
  const size_t end = declaration.find(declaration[0], 1);
  return end == declaration.npos ? std::string_view() : declaration.substr(1, end - 1);
}

std::string CharsetOfMeta(const Tag& tag) {
  std::string charset;
  if (HasAttribute(tag, Attribute::kCharset)) {
    charset = LowerAsciiCopy(AttributeValue(tag, Attribute::kCharset));
  } else if (LowerAsciiCopy(AttributeValue(tag, Attribute::kHttpEquiv)) == "content-type") {
    charset = CharsetOfType(LowerAsciiCopy(AttributeValue(tag, Attribute::kContent)));
  }
  charset.erase(0, charset.find_first_not_of(kMarkupBlanks));
  return charset.substr(0, charset.find_last_not_of(kMarkupBlanks) + 1);
}

}  // namespace

void ForEachDeclaredCharset(std::string_view markup,
                            const std::function<bool(const std::string& name)>& use) {
  markup = markup.substr(0, kDeclarationBytes);
  const auto isTaken = [&use](const std::string& name) { return !name.empty() && use(name); };
  if (markup.starts_with("<?xml") && isTaken(std::string(CharsetOfXml(LowerAsciiCopy(markup))))) {
    return;
  }
  ReadingBudget budget;
  HtmlTokens tokens(markup, budget);
  for (TokenKind kind = tokens.Next(false); kind != TokenKind::kEnd; kind = tokens.Next(false)) {
    if (kind != TokenKind::kStartTag) continue;
    if (tokens.tag().element == Element::kMeta) {
      if (isTaken(CharsetOfMeta(tokens.tag()))) return;
    } else if (Has(tokens.tag().element, kRawText)) {
      tokens.TakeRawText();
    }
  }
}

}  // namespace vela::indexer
