#include "indexer/extract/plain_text_page.h"

#include <algorithm>
#include <string_view>

#include "indexer/words/clean_text.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr size_t kTitleLimit = 120;  // bytes; a longer first line is a paragraph
constexpr std::string_view kBlanks = " \t\r\f\v";

// Takes the next line off the text, without its end and the blanks around it.
std::string_view TakeLine(std::string_view& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  return line.substr(0, line.find_last_not_of(kBlanks) + 1);
}

// What the front matter of a Markdown file, lines between two of "---", calls its title. The text
// is then what comes behind; without front matter nothing happens.
std::string_view TakeFrontMatter(std::string_view& text) {
  constexpr std::string_view kKey = "title:";
  std::string_view rest = text;
  if (TakeLine(rest) != "---") return {};
  std::string_view title;
  while (!rest.empty()) {
    const bool indented = rest.front() == ' ' || rest.front() == '\t';
    std::string_view line = TakeLine(rest);
    if (line == "---" || line == "...") {
      text = rest;
      return title;
    }
    if (indented || !line.starts_with(kKey) || !title.empty()) continue;
    line.remove_prefix(kKey.size());
    title = line.substr(std::min(line.find_first_not_of(kBlanks), line.size()));
    const bool quoted = title.size() >= 2 && title.front() == title.back() &&
                        (title.front() == '"' || title.front() == '\'');
    if (quoted) title = title.substr(1, title.size() - 2);
  }
  return {};  // "---" was a rule
}

// Passes over comments of HTML, as a licence stands in, and lines of nothing but signs.
std::string_view FirstLine(std::string_view text) {
  constexpr std::string_view kComment = "<!--";
  constexpr std::string_view kCommentEnd = "-->";
  while (!text.empty()) {
    const size_t begin = text.find_first_not_of(" \t\r\n\f\v");
    if (begin == text.npos) return {};
    text.remove_prefix(begin);
    if (text.starts_with(kComment)) {
      const size_t end = text.find(kCommentEnd);
      if (end == text.npos) return {};
      text.remove_prefix(end + kCommentEnd.size());
      continue;
    }
    const std::string_view line = TakeLine(text);
    const auto says = [](char c) { return IsAlphaNumeric(c) || static_cast<signed char>(c) < 0; };
    if (std::ranges::any_of(line, says)) return line;
  }
  return {};
}

// Lines with which files begin that have no title: markup, options of a program, the head of a
// letter.
bool IsNoTitle(std::string_view line) {
  constexpr std::string_view kMarkup[] = {"<",  "|",  "[",   "!",  "{", "%",
                                          "\\", "--", ".. ", "//", "/*"};
  constexpr std::string_view kLetterHeads[] = {
      "From:",        "To:",           "Date:",         "Received:",    "Message-ID:",
      "Return-Path:", "Delivered-To:", "MIME-Version:", "Content-Type:"};
  const auto begins = [&](std::string_view with) { return line.starts_with(with); };
  return std::ranges::any_of(kMarkup, begins) || std::ranges::any_of(kLetterHeads, begins) ||
         line.ends_with("::");
}

}  // namespace

std::string PlainTextTitle(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  std::string_view line = TakeFrontMatter(text);
  if (line.empty()) {
    line = FirstLine(text);
    if (IsNoTitle(line)) return {};
    line.remove_prefix(std::min(line.find_first_not_of(" \t#=*"), line.size()));
    line = line.substr(0, line.find_last_not_of(" \t#=*") + 1);
  }
  if (line.size() > kTitleLimit) return {};
  std::string title(line);
  std::erase(title, '`');
  CleanText(title);
  return CollapseBlanks(title);
}

void ParsePlainTextPage(const std::string& text, PageContent& page) {
  page = PageContent();
  page.title = PlainTextTitle(text);
  TextRun run{text, 0};
  CleanText(run.text);
  if (run.text.find_first_not_of(' ') != run.text.npos) page.body.push_back(std::move(run));
}

}  // namespace vela::indexer
