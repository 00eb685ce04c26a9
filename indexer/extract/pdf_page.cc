#include "indexer/extract/pdf_page.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "indexer/extract/html_page.h"
#include "indexer/extract/meta_elements.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/lower_copy.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

// Ends the head; in the head itself the sign "<" is written in another way.
constexpr std::string_view kTextBegin = "\n<pre>\n";
constexpr std::string_view kTextEnd = "</pre>\n</body>\n</html>\n";

// What programs write into the title of a document that has none: the name of its file, or of the
// program with it.
bool IsNoTitle(std::string_view title) {
  constexpr std::string_view kFileEndings[] = {".doc", ".docx", ".odt", ".pdf",  ".ppt", ".pptx",
                                               ".xls", ".xlsx", ".dvi", ".indd", ".qxd", ".tex",
                                               ".rtf", ".pub",  ".ps",  ".wpd",  ".cdr"};
  const std::string lower = LowerAsciiCopy(title);
  return lower == "untitled" || lower.starts_with("microsoft word - ") ||
         lower.starts_with("microsoft powerpoint - ") ||
         std::ranges::any_of(kFileEndings,
                             [&](std::string_view ending) { return lower.ends_with(ending); });
}

// What the first line says, when it is short enough for a title.
std::string TitleFromLine(std::string_view line) {
  constexpr size_t kTitleLimit = 120;  // bytes
  const auto says = [](char c) { return IsAlpha(c) || static_cast<signed char>(c) < 0; };
  if (line.size() > kTitleLimit || !std::ranges::any_of(line, says)) return {};
  return OneLine(std::string(line));
}

// Titles, meta elements and dates as they stand in the head.
void TakeHead(std::string_view head, PageContent& page) {
  constexpr std::pair<std::string_view, std::string_view> kNames[] = {
      {"author", "author"},
      {"subject", "subject"},
      {"keywords", "keywords"},
      {"moddate", "dcterms.modified"},
      {"creationdate", "dcterms.date"},
  };
  PageContent told;
  ReadingBudget budget = StartReading({}, head.size());
  if (ParseHtmlPage(head, budget, told) != Reason::kNone) return;
  if (!IsNoTitle(told.title)) page.title = std::move(told.title);
  for (const auto& [of, name] : kNames) AddMeta(name, std::string(MetaContent(told, of)), page);
  page.description = OneLine(std::string(MetaContent(told, "subject")));
}

std::string_view TakeUpTo(std::string_view& text, char end) {
  const size_t at = std::min(text.find(end), text.size());
  const std::string_view taken = text.substr(0, at);
  text.remove_prefix(std::min(at + 1, text.size()));
  return taken;
}

bool IsBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r\f") == std::string_view::npos;
}

// A line as it is compared with those of other pages: numbers are those of the page.
std::string Pattern(std::string_view line) {
  std::string pattern;
  for (const char c : line) {
    if (!IsDigit(c)) {
      pattern += c;
    } else if (!pattern.ends_with('0')) {
      pattern += '0';
    }
  }
  return CollapseBlanks(pattern);
}

// Adds an element when the budget allows it: lines and pages of a byte take many times that.
template <typename Element>
bool Add(Element element, std::vector<Element>& elements, ReadingBudget& budget) {
  if (elements.size() == elements.capacity()) {
    constexpr size_t kFirst = 16;
    const size_t more = std::max(elements.capacity(), kFirst);
    if (!TakeBytes(budget, more * sizeof(Element))) return false;
    elements.reserve(elements.size() + more);
  }
  elements.push_back(std::move(element));
  return true;
}

// The lines of one page that say anything.
std::vector<std::string_view> LinesOf(std::string_view text, ReadingBudget& budget) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::string_view line = TakeUpTo(text, '\n');
    if (!IsBlank(line) && !Add(line, lines, budget)) break;
  }
  return lines;
}

// How many lines from the head and from the foot of a page may repeat.
constexpr size_t kEdgeLines = 2;

template <typename Visit>
void VisitEdges(const std::vector<std::string_view>& lines, const Visit& visit) {
  for (size_t i = 0; i < lines.size(); ++i) {
    if (i < kEdgeLines || lines.size() - i <= kEdgeLines) visit(i);
  }
}

// The patterns of lines that repeat at the edges of pages.
std::unordered_set<std::string> Repeated(const std::vector<std::vector<std::string_view>>& pages) {
  constexpr uint32_t kLeastPages = 4;
  std::unordered_map<std::string, uint32_t> counts;
  for (const std::vector<std::string_view>& lines : pages) {
    std::unordered_set<std::string> ofPage;
    VisitEdges(lines, [&](size_t i) { ofPage.insert(Pattern(lines[i])); });
    for (const std::string& pattern : ofPage) ++counts[pattern];
  }
  // Even pages have other lines than odd ones; those of chapters hold for some.
  std::unordered_set<std::string> repeated;
  for (const auto& [pattern, count] : counts) {
    if (count >= kLeastPages && count * 5 >= pages.size()) repeated.insert(pattern);
  }
  return repeated;
}

void AddRun(std::string text, std::string anchor, PageContent& page) {
  CleanText(text);
  if (IsBlank(text)) return;
  page.body.push_back({.text = std::move(text), .headingLevel = 0, .anchor = std::move(anchor)});
}

// The first line is a run of its own: the heading of its section.
void AddPage(const std::vector<std::string_view>& lines, size_t number, PageContent& page) {
  if (lines.empty()) return;
  std::string first(lines.front());
  std::string rest;
  for (size_t i = 1; i < lines.size(); ++i) rest.append(lines[i]).append(" ");
  AddRun(first + ' ', "page=" + std::to_string(number), page);
  AddRun(std::move(rest), {}, page);
}

}  // namespace

Reason ParsePdfText(std::string_view output, ReadingBudget& budget, PageContent& page) {
  page = PageContent();
  const size_t begin = output.find(kTextBegin);
  if (begin == output.npos || !output.ends_with(kTextEnd)) return Reason::kDamaged;
  TakeHead(output.substr(0, begin), page);
  std::string_view text = output.substr(begin + kTextBegin.size());
  text.remove_suffix(std::min(kTextEnd.size(), text.size()));
  std::vector<std::vector<std::string_view>> pages;
  while (!text.empty() && Add(LinesOf(TakeUpTo(text, '\f'), budget), pages, budget)) {
  }
  if (budget.status != Reason::kNone) return budget.status;
  const std::unordered_set<std::string> repeated = Repeated(pages);
  std::unordered_set<std::string> kept;
  for (size_t i = 0; i < pages.size(); ++i) {
    std::vector<std::string_view> lines;
    size_t next = 0;
    VisitEdges(pages[i], [&](size_t at) {
      lines.insert(lines.end(), pages[i].begin() + static_cast<std::ptrdiff_t>(next),
                   pages[i].begin() + static_cast<std::ptrdiff_t>(at));
      next = at + 1;
      const std::string pattern = Pattern(pages[i][at]);
      if (!repeated.contains(pattern) || kept.insert(pattern).second) {
        lines.push_back(pages[i][at]);
      }
    });
    if (page.title.empty() && page.body.empty() && !lines.empty()) {
      page.title = TitleFromLine(lines.front());
    }
    AddPage(lines, i + 1, page);
  }
  return Reason::kNone;
}

}  // namespace vela::indexer
