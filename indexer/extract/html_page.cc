#include "indexer/extract/html_page.h"

#include <gumbo.h>

#include <algorithm>
#include <csetjmp>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "indexer/extract/markup_limits.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

// Nodes of a page take ten to thirty times the markup; a page that makes the parser repeat elements
// without end is given up here.
constexpr size_t kTreeFactorLimit = 60;
constexpr size_t kLeastTreeBytes = size_t{64} << 20;

// Memory of one parse, freed as a whole: the tree is never walked to free it, as that is recursive.
struct Arena {
  struct Block {
    Block* next;
  };
  static constexpr size_t kBlockBytes = size_t{1} << 20;
  Block* blocks = nullptr;
  char* at = nullptr;
  size_t left = 0;
  size_t used = 0;
  size_t limit = 0;
  jmp_buf giveUp;

  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena() {
    while (blocks != nullptr) {
      Block* next = blocks->next;
      free(blocks);
      blocks = next;
    }
  }
};

void* ArenaAllocate(void* userdata, size_t size) {
  auto* arena = static_cast<Arena*>(userdata);
  constexpr size_t kAlign = alignof(std::max_align_t);
  constexpr size_t kHead = (sizeof(Arena::Block) + kAlign - 1) / kAlign * kAlign;
  size = (std::max<size_t>(size, 1) + kAlign - 1) / kAlign * kAlign;
  if (size > arena->left) {
    const size_t blockBytes = std::max(Arena::kBlockBytes, size + kHead);
    arena->used += blockBytes;
    void* memory = arena->used > arena->limit ? nullptr : malloc(blockBytes);
    // The parser does not expect a failed allocation; it is left without unwinding. All it holds
    // lies in the arena.
    if (memory == nullptr) longjmp(arena->giveUp, 1);
    auto* block = static_cast<Arena::Block*>(memory);
    block->next = arena->blocks;
    arena->blocks = block;
    arena->at = static_cast<char*>(memory) + kHead;
    arena->left = blockBytes - kHead;
  }
  void* result = arena->at;
  arena->at += size;
  arena->left -= size;
  return result;
}

void ArenaFree(void*, void*) {}

// Null when the tree would pass the arena's limit. No object with a destructor may live in here.
GumboOutput* Parse(Arena& arena, std::string_view html) {
  GumboOptions options = kGumboDefaultOptions;
  options.allocator = &ArenaAllocate;
  options.deallocator = &ArenaFree;
  options.userdata = &arena;
  options.max_errors = 0;
  if (setjmp(arena.giveUp) != 0) return nullptr;
  return gumbo_parse_with_options(&options, html.data(), html.size());
}

const char* Attribute(const GumboElement& element, const char* name) {
  const GumboAttribute* attribute = gumbo_get_attribute(&element.attributes, name);
  return attribute == nullptr ? nullptr : attribute->value;
}

std::string LowerAscii(const char* text) { return LowerAsciiCopy(text == nullptr ? "" : text); }

// True when the blank- or comma-separated list `text` holds `word`.
bool HoldsWord(const std::string& text, std::string_view word) {
  size_t i = 0;
  while (i < text.size()) {
    const size_t begin = text.find_first_not_of(" ,;\t\r\n", i);
    if (begin == text.npos) return false;
    const size_t end = std::min(text.find_first_of(" ,;\t\r\n", begin), text.size());
    if (std::string_view(text).substr(begin, end - begin) == word) return true;
    i = end;
  }
  return false;
}

bool IsOneOf(GumboTag tag, std::initializer_list<GumboTag> tags) {
  return std::ranges::find(tags, tag) != tags.end();
}

bool IsInline(GumboTag tag) {
  return IsOneOf(
      tag, {GUMBO_TAG_A,      GUMBO_TAG_ABBR,   GUMBO_TAG_ACRONYM, GUMBO_TAG_B,     GUMBO_TAG_BDI,
            GUMBO_TAG_BDO,    GUMBO_TAG_BIG,    GUMBO_TAG_CITE,    GUMBO_TAG_CODE,  GUMBO_TAG_DATA,
            GUMBO_TAG_DEL,    GUMBO_TAG_DFN,    GUMBO_TAG_EM,      GUMBO_TAG_FONT,  GUMBO_TAG_I,
            GUMBO_TAG_INS,    GUMBO_TAG_KBD,    GUMBO_TAG_MARK,    GUMBO_TAG_NOBR,  GUMBO_TAG_Q,
            GUMBO_TAG_RUBY,   GUMBO_TAG_S,      GUMBO_TAG_SAMP,    GUMBO_TAG_SMALL, GUMBO_TAG_SPAN,
            GUMBO_TAG_STRIKE, GUMBO_TAG_STRONG, GUMBO_TAG_SUB,     GUMBO_TAG_SUP,   GUMBO_TAG_TIME,
            GUMBO_TAG_TT,     GUMBO_TAG_U,      GUMBO_TAG_VAR,     GUMBO_TAG_WBR});
}

// Takes no room on the page: a word goes on behind it.
bool IsInvisible(GumboTag tag) {
  return IsOneOf(tag, {GUMBO_TAG_SCRIPT, GUMBO_TAG_STYLE, GUMBO_TAG_TEMPLATE, GUMBO_TAG_NOSCRIPT});
}

// Never part of what a visitor reads on a page.
bool IsNeverText(GumboTag tag) {
  return IsOneOf(tag, {GUMBO_TAG_SCRIPT, GUMBO_TAG_STYLE, GUMBO_TAG_TEMPLATE, GUMBO_TAG_NOSCRIPT,
                       GUMBO_TAG_IFRAME, GUMBO_TAG_NOFRAMES, GUMBO_TAG_NOEMBED, GUMBO_TAG_OBJECT,
                       GUMBO_TAG_CANVAS, GUMBO_TAG_AUDIO, GUMBO_TAG_VIDEO, GUMBO_TAG_SELECT,
                       GUMBO_TAG_OPTION, GUMBO_TAG_DATALIST, GUMBO_TAG_TEXTAREA, GUMBO_TAG_BUTTON,
                       GUMBO_TAG_HEAD, GUMBO_TAG_NAV, GUMBO_TAG_RP});
}

bool IsHidden(const GumboElement& element) {
  if (Attribute(element, "hidden") != nullptr) return true;
  if (LowerAscii(Attribute(element, "aria-hidden")) == "true") return true;
  std::string style = LowerAscii(Attribute(element, "style"));
  std::erase_if(style, [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
  return style.find("display:none") != style.npos || style.find("visibility:hidden") != style.npos;
}

enum class Surrounding { kNone, kNavigation, kPageFrame };

// Whether the element is what surrounds the content of a page. `ofPage`: no article, section or
// main part encloses it.
Surrounding SurroundingKind(const GumboElement& element, bool ofPage) {
  if (const char* roles = Attribute(element, "role"); roles != nullptr) {
    const std::string role = LowerAscii(roles);
    for (std::string_view name : {"navigation", "search", "menu", "menubar", "toolbar"}) {
      if (HoldsWord(role, name)) return Surrounding::kNavigation;
    }
    for (std::string_view name : {"banner", "contentinfo", "complementary"}) {
      if (HoldsWord(role, name)) return Surrounding::kPageFrame;
    }
  }
  if (ofPage && IsOneOf(element.tag, {GUMBO_TAG_HEADER, GUMBO_TAG_FOOTER, GUMBO_TAG_ASIDE})) {
    return Surrounding::kPageFrame;
  }
  return Surrounding::kNone;
}

bool EnclosesContent(const GumboElement& element) {
  if (IsOneOf(element.tag, {GUMBO_TAG_MAIN, GUMBO_TAG_ARTICLE, GUMBO_TAG_SECTION})) return true;
  return HoldsWord(LowerAscii(Attribute(element, "role")), "main");
}

struct TextCollector {
  PageContent& page;
  TextRun run;

  bool IsEmpty() const {
    return page.body.empty() && run.text.find_first_not_of(" \t\r\n") == run.text.npos;
  }

  void Append(std::string_view text, uint8_t headingLevel) {
    if (headingLevel != run.headingLevel) Flush(headingLevel);
    run.text += text;
  }
  // A block ends or begins here: no word goes on.
  void Break() {
    if (!run.text.empty() && run.text.back() != ' ') run.text += ' ';
  }
  void Flush(uint8_t nextLevel) {
    CleanText(run.text);
    if (run.text.find_first_not_of(' ') != run.text.npos) page.body.push_back(std::move(run));
    run = TextRun{{}, nextLevel};
  }
};

// All text below `node`, markup left out.
std::string PlainText(const GumboNode* node) {
  std::string text;
  std::vector<const GumboNode*> open = {node};
  while (!open.empty()) {
    const GumboNode* at = open.back();
    open.pop_back();
    if (at->type == GUMBO_NODE_ELEMENT) {
      const GumboVector& children = at->v.element.children;
      for (unsigned int i = children.length; i-- > 0;) {
        open.push_back(static_cast<const GumboNode*>(children.data[i]));
      }
    } else if (at->type == GUMBO_NODE_TEXT || at->type == GUMBO_NODE_WHITESPACE ||
               at->type == GUMBO_NODE_CDATA) {
      text += at->v.text.text;
    }
  }
  CleanText(text);
  return CollapseBlanks(text);
}

// More or longer meta elements than this are not meant for readers.
constexpr size_t kMetaLimit = 300;
constexpr size_t kMetaBytesLimit = 20000;

// Takes one meta element in. Returns false when it asks that the page be not found.
bool ReadMeta(const GumboElement& element, PageContent& page) {
  const char* content = Attribute(element, "content");
  if (content == nullptr) return true;
  const char* given = Attribute(element, "name");
  if (given == nullptr || *given == '\0') given = Attribute(element, "property");
  std::string name = LowerUtf8Copy(given == nullptr ? "" : given);  // fields may have any name
  if (name == "robots" || name == "velabot") {
    const std::string rules = LowerAscii(content);
    if (HoldsWord(rules, "noindex") || HoldsWord(rules, "none")) return false;
  }
  if (name.empty() || page.metas.size() == kMetaLimit || strlen(content) > kMetaBytesLimit) {
    return true;
  }
  std::string text = content;
  CleanText(text);
  text = CollapseBlanks(text);
  if (!text.empty()) page.metas.emplace_back(std::move(name), std::move(text));
  return true;
}

// Title, meta elements, links and base, wherever they stand. Returns false when the page asks not
// to be found.
bool ReadHeadElements(const GumboNode* root, PageContent& page) {
  bool haveTitle = false;
  std::vector<const GumboNode*> open = {root};
  while (!open.empty()) {
    const GumboNode* node = open.back();
    open.pop_back();
    if (node->type != GUMBO_NODE_ELEMENT) continue;
    const GumboElement& element = node->v.element;
    if (element.tag_namespace != GUMBO_NAMESPACE_HTML) continue;  // the title of a drawing
    switch (element.tag) {
      case GUMBO_TAG_TITLE:
        if (!haveTitle) page.title = PlainText(node);
        haveTitle = haveTitle || !page.title.empty();
        break;
      case GUMBO_TAG_META:
        if (!ReadMeta(element, page)) return false;
        break;
      case GUMBO_TAG_LINK:
        if (const char* href = Attribute(element, "href");
            href != nullptr && page.canonical.empty() &&
            HoldsWord(LowerAscii(Attribute(element, "rel")), "canonical")) {
          page.canonical = href;
        }
        break;
      case GUMBO_TAG_TIME:
        if (page.time.empty()) {
          const char* time = Attribute(element, "datetime");
          page.time = time != nullptr ? time : PlainText(node);
        }
        break;
      case GUMBO_TAG_BASE:
        if (const char* href = Attribute(element, "href"); href != nullptr && page.base.empty()) {
          page.base = href;
        }
        break;
      default:
        break;
    }
    for (unsigned int i = element.children.length; i-- > 0;) {
      open.push_back(static_cast<const GumboNode*>(element.children.data[i]));
    }
  }
  for (const char* name : {"description", "og:description"}) {
    if (page.description.empty()) page.description = MetaContent(page, name);
  }
  return true;
}

// One open element on the way down.
struct Level {
  const GumboNode* node;
  unsigned int next = 0;     // the child to visit next
  uint8_t headingLevel = 0;  // in force inside
  bool ofPage = true;        // no part of the page's content encloses it
};

void CollectText(const GumboNode* root, bool withPageFrame, PageContent& page) {
  TextCollector out{page, {}};
  std::vector<Level> open = {{root}};
  while (!open.empty()) {
    Level& level = open.back();
    const GumboVector& children = level.node->v.element.children;
    if (level.next >= children.length) {
      if (!IsInline(level.node->v.element.tag)) out.Break();
      open.pop_back();
      continue;
    }
    const auto* node = static_cast<const GumboNode*>(children.data[level.next++]);
    const uint8_t headingLevel = level.headingLevel;
    const bool ofPage = level.ofPage;
    if (node->type == GUMBO_NODE_TEXT || node->type == GUMBO_NODE_CDATA ||
        node->type == GUMBO_NODE_WHITESPACE) {
      out.Append(node->v.text.text, headingLevel);
      continue;
    }
    if (node->type != GUMBO_NODE_ELEMENT) continue;
    const GumboElement& element = node->v.element;
    const Surrounding surrounding = SurroundingKind(element, ofPage);
    if (element.tag == GUMBO_TAG_A && out.IsEmpty() && ofPage) {
      // A link into the page before its text is for skipping what surrounds it.
      const char* href = Attribute(element, "href");
      if (href != nullptr && href[0] == '#') continue;
    }
    if (IsNeverText(element.tag) || IsHidden(element) || surrounding == Surrounding::kNavigation ||
        (surrounding == Surrounding::kPageFrame && !withPageFrame)) {
      if (!IsInline(element.tag) && !IsInvisible(element.tag)) out.Break();
      continue;
    }
    if (element.tag == GUMBO_TAG_IMG || element.tag == GUMBO_TAG_AREA) {
      if (const char* alt = Attribute(element, "alt"); alt != nullptr && alt[0] != '\0') {
        out.Break();
        out.Append(alt, headingLevel);
        out.Break();
      }
      continue;
    }
    if (!IsInline(element.tag)) out.Break();
    Level inner{node};
    inner.headingLevel = headingLevel;
    if (element.tag >= GUMBO_TAG_H1 && element.tag <= GUMBO_TAG_H6) {
      inner.headingLevel = static_cast<uint8_t>(element.tag - GUMBO_TAG_H1 + 1);
    }
    inner.ofPage = ofPage && !EnclosesContent(element);
    open.push_back(inner);
  }
  out.Flush(0);
}

}  // namespace

Reason ParseHtmlPage(std::string_view html, PageContent& page) {
  page = PageContent();
  if (const Reason reason = CheckMarkup(html); reason != Reason::kNone) return reason;
  const auto arena = std::make_unique<Arena>();
  arena->limit = kLeastTreeBytes + html.size() * kTreeFactorLimit;
  const GumboOutput* tree = Parse(*arena, html);
  if (tree == nullptr) return Reason::kMarkupTooLarge;
  if (!ReadHeadElements(tree->root, page)) return Reason::kNoindex;
  CollectText(tree->root, false, page);
  if (page.body.empty()) CollectText(tree->root, true, page);
  return Reason::kNone;
}

}  // namespace vela::indexer
