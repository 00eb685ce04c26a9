// nesting.h: opens and closes elements, each in what holds around it, and tells HtmlContent.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "indexer/extract/html_content.h"
#include "indexer/extract/html_tokens.h"
#include "indexer/extract/open_elements.h"
#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

class Nesting {
 public:
  // Both must outlive this.
  Nesting(HtmlContent& told, ReadingBudget& takenFrom)
      : open(takenFrom), content(told), budget(takenFrom) {}

  OpenElements open;  // to look at; it changes only by the functions below
  // What comes does not belong in the table it stands in: where only parts of a table may stand, it
  // goes before that table.
  bool besideTable = false;

  // What holds where the next element or text goes.
  TextState Around();

  // Opens the element of a start tag there. `added` says what the tag does not. False: it is too
  // deep and was only passed; its text goes to the element above.
  bool Open(const Tag& tag, const OpenElement& added = {});
  // The same at any depth, in an element in which `around` holds.
  void OpenIn(const TextState& around, const Tag& tag, const OpenElement& added = {});
  // Opens one whose tag the page leaves out.
  void OpenImplied(Element element);
  // Tells of one that has no content, or none that is told apart.
  void Pass(const Tag& tag, const TextState& around, bool isHtml = true);

  // Closes the current element.
  void Close();
  // Closes all from `place` up.
  void CloseDownTo(ElementPlace place);
  // Closes the highest of that name, which is open, and all above it.
  void CloseThrough(Element element);
  // Closes what is open above the highest of `context`, one of which is open.
  void CloseAbove(std::initializer_list<Element> context);
  // Closes elements whose end tags may be left out, down to one of that name or another kind.
  void CloseImplied(Element except);
  // Ends one, the highest of its name, with all that is ordinary above it. Blocks that began inside
  // it stay open, as do other formatting elements around those, and are no longer inside it.
  void EndFormatting(Element element);
  // Ends one in whose middle others stay open: `isLeft`, and no longer inside it.
  void EndAt(ElementPlace place, bool isLeft);

  // Whether the end tag is that of an element that was not opened, being too deep.
  bool TakeTooDeep(const Tag& tag);

 private:
  TextState Around(bool& isBeforeTable);
  void Add(const TextState& around, const Tag& tag, OpenElement& added);
  void TakeOut(ElementPlace place);
  void Inherit(ElementPlace from);

  HtmlContent& content;
  ReadingBudget& budget;
  // Elements that were too deep, by name; forgotten when one above them closes.
  std::array<uint32_t, static_cast<size_t>(Element::kCount)> tooDeep{};
  bool anyTooDeep = false;
};

}  // namespace vela::indexer
