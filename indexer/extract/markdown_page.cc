#include "indexer/extract/markdown_page.h"

#include <md4c-html.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "indexer/extract/html_page.h"
#include "indexer/extract/meta_elements.h"
#include "indexer/extract/plain_text_page.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view TakeLine(std::string_view& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

// A value as YAML and TOML write it on one line.
std::string_view ValueOf(std::string_view text) {
  text = Trimmed(text);
  const bool isQuoted = text.size() >= 2 && text.front() == text.back() &&
                        (text.front() == '"' || text.front() == '\'');
  const bool isList = text.size() >= 2 && text.front() == '[' && text.back() == ']';
  return isQuoted || isList ? text.substr(1, text.size() - 2) : text;
}

void TakeProperty(std::string_view name, std::string_view value, PageContent& page) {
  constexpr std::pair<std::string_view, std::string_view> kMetas[] = {
      {"author", "author"}, {"keywords", "keywords"},        {"tags", "keywords"},
      {"date", "date"},     {"lastmod", "dcterms.modified"}, {"updated", "dcterms.modified"},
      {"lang", "language"}, {"language", "language"},
  };
  if (name == "title") page.title = OneLine(std::string(value));
  if (name == "description") page.description = OneLine(std::string(value));
  for (const auto& [key, meta] : kMetas) {
    if (name == key) AddMeta(meta, std::string(value), page);
  }
}

// Takes the front matter off the text, with what it says. Without its end there is none.
void TakeFrontMatter(std::string_view& text, PageContent& page) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  std::string_view rest = text;
  const std::string_view fence = Trimmed(TakeLine(rest));
  if (fence != "---" && fence != "+++") return;
  PageContent said;
  while (!rest.empty()) {
    const std::string_view line = TakeLine(rest);
    if (Trimmed(line) == fence || (fence == "---" && Trimmed(line) == "...")) {
      page = std::move(said);
      text = rest;
      return;
    }
    const size_t colon = line.find(fence == "---" ? ':' : '=');
    // What is indented belongs to the value of another.
    if (colon == line.npos || kBlanks.find(line.front()) != kBlanks.npos) continue;
    TakeProperty(LowerAsciiCopy(Trimmed(line.substr(0, colon))), ValueOf(line.substr(colon + 1)),
                 said);
  }
}

struct Rendering {
  ReadingBudget& budget;
  std::string html;
  bool failedToAllocate = false;
};

// No exception may pass through the parser, which is C.
void OnHtml(const char* text, MD_SIZE size, void* self) {
  auto& rendering = *static_cast<Rendering*>(self);
  if (rendering.failedToAllocate || !TakeSteps(rendering.budget, size) ||
      !TakeBytes(rendering.budget, size)) {
    return;
  }
  try {
    rendering.html.append(text, size);
  } catch (const std::bad_alloc&) {
    rendering.failedToAllocate = true;
  }
}

}  // namespace

Reason ParseMarkdownPage(std::string_view text, ReadingBudget& budget, PageContent& page,
                         const ContentChoice& choice) {
  page = PageContent();
  PageContent said;
  TakeFrontMatter(text, said);
  if (text.size() > UINT32_MAX / 2) return Reason::kMarkupTooLarge;
  Rendering rendering = {.budget = budget, .html = {}};
  const int result = md_html(text.data(), static_cast<MD_SIZE>(text.size()), &OnHtml, &rendering,
                             MD_DIALECT_GITHUB, MD_HTML_FLAG_SKIP_UTF8_BOM);
  if (rendering.failedToAllocate) throw std::bad_alloc();
  if (budget.status != Reason::kNone) return budget.status;
  if (result != 0) throw std::bad_alloc();  // the only thing that can fail
  const Reason reason = ParseHtmlPage(rendering.html, budget, page, choice);
  if (reason != Reason::kNone) return reason;
  if (!said.title.empty()) page.title = std::move(said.title);
  if (!said.description.empty()) page.description = std::move(said.description);
  page.metas.insert(page.metas.begin(), said.metas.begin(), said.metas.end());
  const bool hasHeading =
      std::ranges::any_of(page.body, [](const TextRun& run) { return run.headingLevel != 0; });
  if (page.title.empty() && !hasHeading) page.title = PlainTextTitle(text);
  return Reason::kNone;
}

}  // namespace vela::indexer
