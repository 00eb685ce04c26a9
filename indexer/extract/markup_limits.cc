#include "indexer/extract/markup_limits.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <span>

#include "indexer/words/lower_copy.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

// Elements whose end tag no page leaves out; deeper nesting than this makes the parser, which looks
// through its open elements at every tag, slow beyond use.
constexpr int32_t kDepthLimit = 2000;
// The parser compares each attribute of a tag with all before it.
constexpr size_t kAttributeLimit = 2000;

constexpr std::string_view kTagBlanks = " \t\n\r\f";

// Elements that are empty, or whose end tags pages may leave out: they nest only inside others.
constexpr std::string_view kUncounted[] = {
    "area",  "base",   "body",  "br",    "col",   "colgroup", "dd",    "dt",       "embed",  "head",
    "hr",    "html",   "img",   "input", "li",    "link",     "meta",  "optgroup", "option", "p",
    "param", "source", "tbody", "td",    "tfoot", "th",       "thead", "tr",       "track",  "wbr",
};

// Their content is text up to their end tag.
constexpr std::string_view kRawText[] = {
    "iframe", "noembed", "noframes", "script", "style", "textarea", "title", "xmp",
};

// HTML elements that end a drawing or formula in which they stand.
constexpr std::string_view kEndsForeign[] = {
    "b",      "big",  "blockquote", "body",  "br",   "center", "code",    "dd",   "div",
    "dl",     "dt",   "em",         "embed", "h1",   "h2",     "h3",      "h4",   "h5",
    "h6",     "head", "hr",         "i",     "img",  "li",     "listing", "menu", "meta",
    "nobr",   "ol",   "p",          "pre",   "ruby", "s",      "small",   "span", "strike",
    "strong", "sub",  "sup",        "table", "tt",   "u",      "ul",      "var",
};

// Elements of drawings and formulas whose content is HTML again.
constexpr std::string_view kHtmlInForeign[] = {
    "annotation-xml", "desc", "foreignobject", "mi", "mn", "mo", "ms", "mtext", "title",
};

bool IsTagBlank(char c) { return kTagBlanks.find(c) != kTagBlanks.npos; }

bool IsOneOf(std::span<const std::string_view> names, std::string_view name) {
  return std::ranges::binary_search(names, name);
}

// What is open where the scan is, as far as the tags alone tell. Elements are counted by name, so
// that crossed end tags hide nothing; a page made to mislead it gains a slow run and no more.
struct OpenElements {
  std::map<std::string, int32_t, std::less<>> counts;
  int32_t depth = 0;

  bool Has(std::string_view name) const {
    const auto found = counts.find(name);
    return found != counts.end() && found->second > 0;
  }
  bool InForeign() const {
    return (Has("svg") || Has("math")) &&
           std::ranges::none_of(kHtmlInForeign, [&](auto name) { return Has(name); });
  }
  void Begin(const std::string& name) {
    ++counts[name];
    ++depth;
  }
  void End(std::string_view name) {
    const auto found = counts.find(name);
    if (found == counts.end() || found->second == 0) return;  // ends nothing
    --found->second;
    --depth;
  }
  void EndForeign() {
    for (const char* name : {"svg", "math"}) {
      while (Has(name)) End(name);
    }
  }
};

struct Tag {
  bool closes = false;
  bool selfCloses = false;
  std::string name;       // in lower case
  size_t attributes = 0;  // roughly
  size_t end = 0;         // the place of its ">", or the end of the page
};

void ReadAttributes(std::string_view html, Tag& tag) {
  char last = ' ';        // the byte before, blanks aside
  bool apart = true;      // blanks or the end of a quote stand before
  bool unquoted = false;  // inside a value without quotes
  size_t at = tag.end;
  for (; at < html.size() && html[at] != '>'; ++at) {
    const char c = html[at];
    if (IsTagBlank(c)) {
      apart = true;
      unquoted = unquoted && last == '=';  // in `a=b= "c"` the quote begins a name
      continue;
    }
    if ((c == '"' || c == '\'') && last == '=' && !unquoted) {
      at = std::min(html.find(c, at + 1), html.size() - 1);
      apart = true;
    } else {
      if (last == '=' && !unquoted) {
        unquoted = true;
      } else if (apart || (last == '/' && !unquoted)) {
        ++tag.attributes;
      }
      apart = false;
    }
    last = c;
  }
  tag.selfCloses = last == '/' && !unquoted;
  tag.end = at;
}

// `nameAt` is the place of its first letter.
Tag ReadTag(std::string_view html, size_t nameAt, bool closes) {
  Tag tag;
  tag.closes = closes;
  tag.end = std::min(html.find_first_of(" \t\n\r\f/>", nameAt), html.size());
  tag.name = LowerAsciiCopy(html.substr(nameAt, tag.end - nameAt));
  ReadAttributes(html, tag);
  return tag;
}

// `at` is behind "<!": "<!-->" is whole.
size_t EndOfComment(std::string_view html, size_t at) {
  for (at = html.find("--", at); at != html.npos; at = html.find("--", at + 1)) {
    const std::string_view rest = html.substr(at);
    if (rest.starts_with("-->") || rest.starts_with("--!>")) break;
  }
  return at;
}

// Whether the tag `start` ("<script", "</style") stands at the beginning of `text`.
bool StartsTag(std::string_view text, std::string_view start) {
  return text.size() > start.size() &&
         std::equal(start.begin(), start.end(), text.begin(),
                    [](char a, char b) { return a == ToLowerAscii(b); }) &&
         (IsTagBlank(text[start.size()]) || text[start.size()] == '/' || text[start.size()] == '>');
}

// The place of the end tag of an element with raw text that begins at `at`; npos: none. In a script
// a comment may hold the tags of another script.
size_t EndOfRawText(std::string_view html, size_t at, const std::string& name) {
  const bool isScript = name == "script";
  const std::string end = "</" + name;
  bool inComment = false;
  bool inInner = false;
  for (; at < html.size(); ++at) {
    at = std::min(html.find_first_of("<-", at), html.size());
    const std::string_view rest = html.substr(at);
    if (StartsTag(rest, end)) {
      if (!inInner) return at;
      inInner = false;
    } else if (!isScript) {
      continue;
    } else if (rest.starts_with("<!--")) {
      inComment = true;
      ++at;  // its hyphens may end it: "<!-->"
    } else if (rest.starts_with("-->")) {
      inComment = inInner = false;
    } else if (inComment && StartsTag(rest, "<script")) {
      inInner = true;
    }
  }
  return html.npos;
}

// Takes a start tag in. Returns whether the element's content is raw text.
bool Begin(const Tag& tag, OpenElements& open) {
  if (open.InForeign()) {
    if (tag.selfCloses) return false;
    if (!IsOneOf(kEndsForeign, tag.name)) {
      open.Begin(tag.name);
      return false;
    }
    open.EndForeign();
  }
  const bool inSelect = open.Has("select");
  if (IsOneOf(kRawText, tag.name) && (!inSelect || tag.name == "script")) return true;
  // Groups of choices stand beside one another only in a list.
  const bool counted = tag.name == "optgroup" ? !inSelect : !IsOneOf(kUncounted, tag.name);
  if (counted) open.Begin(tag.name);
  return false;
}

}  // namespace

Reason CheckMarkup(std::string_view html) {
  OpenElements open;
  for (size_t at = html.find('<'); at < html.size(); at = html.find('<', at)) {
    const std::string_view rest = html.substr(at);
    if (rest.starts_with("<!--")) {
      at = EndOfComment(html, at + 2);
      continue;
    }
    if (rest.starts_with("<![CDATA[") && open.InForeign()) {
      at = html.find("]]>", at);
      continue;
    }
    const bool closes = rest.starts_with("</");
    const size_t nameAt = at + (closes ? 2 : 1);
    const char first = nameAt < html.size() ? html[nameAt] : '\0';
    if (!IsAlpha(first)) {
      const bool ignored = closes || first == '!' || first == '?';
      at = ignored ? html.find('>', nameAt) : nameAt;
      continue;
    }
    const Tag tag = ReadTag(html, nameAt, closes);
    at = tag.end;
    if (tag.attributes > kAttributeLimit) return Reason::kMarkupTooLarge;
    if (closes) {
      open.End(tag.name);
    } else if (Begin(tag, open)) {
      at = EndOfRawText(html, at, tag.name);
    }
    if (open.depth > kDepthLimit) return Reason::kMarkupTooDeep;
  }
  return Reason::kNone;
}

}  // namespace vela::indexer
