#include "indexer/extract/subtitles_page.h"

#include <algorithm>
#include <string>
#include <utility>

#include "indexer/extract/character_references.h"
#include "indexer/extract/meta_elements.h"
#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kSignature = "WEBVTT";
constexpr std::string_view kArrow = "-->";
constexpr std::string_view kBlanks = " \t\r";

std::string_view TakeLine(std::string_view& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  return line.substr(0, line.find_last_not_of(kBlanks) + 1);
}

// Without "<i>", "<v Ann>", "<00:00:01.000>" and "{\an8}", and with references resolved.
std::string Spoken(std::string_view line) {
  std::string out;
  // Behind the last of these nothing closes; a line is as long as its author wants.
  const size_t length = line.size();
  const size_t angles = line.rfind('>') + 1;
  const size_t braces = line.rfind('}') + 1;
  while (!line.empty()) {
    const size_t at = length - line.size();
    const char c = line.front();
    const bool opensAngle = c == '<' && at < angles;
    const bool opensBrace = line.starts_with("{\\") && at < braces;
    if (opensAngle || opensBrace) {
      line.remove_prefix(line.find(opensAngle ? '>' : '}') + 1);
      continue;
    }
    const CharacterReference reference =
        c == '&' ? ReadCharacterReference(line, false) : CharacterReference();
    if (reference.length != 0) {
      out.append(reference.text, reference.textLength);
      line.remove_prefix(reference.length);
      continue;
    }
    out += c;
    line.remove_prefix(1);
  }
  return out;
}

}  // namespace

void ParseSubtitlesPage(std::string_view text, PageContent& page) {
  page = PageContent();
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  if (text.starts_with(kSignature)) {
    std::string_view title = TakeLine(text).substr(kSignature.size());
    constexpr std::string_view kDash = "\u2013";
    const auto trim = [&title] {
      title.remove_prefix(std::min(title.find_first_not_of(" \t-:"), title.size()));
    };
    for (trim(); title.starts_with(kDash); trim()) title.remove_prefix(kDash.size());
    page.title = OneLine(std::string(title));
    while (!TakeLine(text).empty()) {
    }
  }
  TextRun said;
  std::string before;
  // Comments, styles and regions have no times.
  bool isBehindTimes = false;
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    if (line.empty()) isBehindTimes = false;
    if (!isBehindTimes) {
      isBehindTimes = line.find(kArrow) != line.npos;
      continue;
    }
    std::string spoken = OneLine(Spoken(line));
    if (spoken.empty() || spoken == before) continue;
    said.text.append(spoken).append(" ");
    before = std::move(spoken);
  }
  CleanText(said.text);
  if (!said.text.empty()) page.body.push_back(std::move(said));
}

}  // namespace vela::indexer
