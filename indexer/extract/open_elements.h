// open_elements.h: the elements that are open at a place of the markup. Whether one of a name is
// open, and whether an end tag reaches it, is known without looking through them: each element
// holds where the next of its name below it is, and the nearest that stop an end tag.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/html_elements.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/extract/text_rules.h"

namespace vela::indexer {

enum class Namespace : uint8_t { kHtml, kMathMl, kSvg };

// What stands where in the list of open elements; the lowest is 0.
using ElementPlace = int32_t;
constexpr ElementPlace kNotOpen = -1;

struct OpenElement {
  Element element = Element::kOther;
  Namespace space = Namespace::kHtml;
  bool holdsHtmlText = false;  // MathML: its text, and all but two elements in it, are HTML
  bool holdsHtml = false;      // MathML and SVG: all in it is HTML
  bool isBeforeTable = false;  // stands in a table, but in the page before that
  ElementRole role;
  TextState inside;
  PageText::Place tablePlace = 0;  // of a table: where what does not belong in it goes
  PageText::Strand beforeTable = PageText::kPageStrand;  // the strand there; that of the page: none
  // Kept by OpenElements.
  bool isEnded = false;             // by End
  ElementPlace below = kNotOpen;    // the next one below of the same name
  ElementPlace special = kNotOpen;  // the highest up to here that no ordinary end tag reaches past
  ElementPlace item = kNotOpen;     // of those, the highest but for address, div and p
  ElementPlace scope = kNotOpen;    // the highest up to here that no end tag of a block passes
  ElementPlace html = kNotOpen;     // the highest up to here that is of HTML
  const std::string* name = nullptr;  // in lower case, of kOther
};

class OpenElements {
 public:
  // Browsers stop at the same depth. What begins deeper is passed over, its text belongs to the
  // element above it; the parts of a table, though, may stand a little deeper.
  static constexpr ElementPlace kDepthLimit = 512;

  explicit OpenElements(ReadingBudget& takenFrom);

  bool IsFull() const { return Count() >= kDepthLimit; }
  ElementPlace Count() const { return static_cast<ElementPlace>(open.size()); }
  // One must be open.
  OpenElement& Current() { return open.back(); }
  OpenElement& At(ElementPlace place) { return open[static_cast<size_t>(place)]; }

  // `name` counts for kOther only, in either case.
  void Push(const OpenElement& element, std::string_view name);
  // Of ended ones, whoever pops what is above them pops them too.
  void Pop();
  // Ends one, the highest of its name, under others that stay open. It keeps its place until they
  // are popped, and has no name.
  void End(ElementPlace place);

  // The highest of HTML with that name, or kNotOpen.
  ElementPlace Find(Element element) const { return tops[0][static_cast<size_t>(element)]; }
  // The highest with that name, in HTML or (`foreign`) outside of it.
  ElementPlace Find(Element element, std::string_view name, bool foreign) const;

  // Whether one of that name is open and may be ended from here.
  bool IsInScope(Element element) const;
  bool IsParagraphInScope() const;
  bool IsListItemInScope() const;
  bool IsInTableScope(Element element) const;

 private:
  void Unlink(const OpenElement& element);

  using Names = std::map<std::string, ElementPlace, std::less<>>;

  ReadingBudget& budget;
  std::vector<OpenElement> open;
  // The highest of each name, of HTML and others; of names without rules, those that are open.
  std::array<std::array<ElementPlace, static_cast<size_t>(Element::kCount)>, 2> tops;
  std::array<Names, 2> otherTops;
};

}  // namespace vela::indexer
