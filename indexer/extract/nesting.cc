#include "indexer/extract/nesting.h"

#include <algorithm>

namespace vela::indexer {

namespace {

// Elements in which only parts of a table may stand.
bool HoldsTableParts(const OpenElement& element) {
  return element.space == Namespace::kHtml &&
         (element.element == Element::kTable || element.element == Element::kTbody ||
          element.element == Element::kTfoot || element.element == Element::kThead ||
          element.element == Element::kTr);
}

// Whether text inside is other than text around.
bool ChangesState(const ElementRole& role) {
  return role.leavesOut || role.isInert || role.isFrame || role.isHeadline ||
         role.enclosesContent || role.headingLevel != 0 || role.section != 0 || role.isNavigation ||
         role.isMain || role.isChosen || role.weight != kWeightOfHeading || role.selectorParts != 0;
}

}  // namespace

// `isBeforeTable`: not in the current element, but before its table.
TextState Nesting::Around(bool& isBeforeTable) {
  isBeforeTable = false;
  const OpenElement& current = open.Current();
  if (!besideTable || !HoldsTableParts(current)) return current.inside;
  const ElementPlace place = open.Find(Element::kTable);
  const ElementPlace templatePlace = open.Find(Element::kTemplate);
  if (templatePlace > place) return open.At(templatePlace).inside;
  if (place == kNotOpen) return open.At(0).inside;
  isBeforeTable = true;
  TextState around = open.At(place - 1).inside;
  OpenElement& table = open.At(place);
  if (table.beforeTable == PageText::kPageStrand) {
    table.beforeTable = content.pageText().StartStrand(table.tablePlace);
  }
  around.strand = table.beforeTable;
  return around;
}

TextState Nesting::Around() {
  bool isBeforeTable = false;
  return Around(isBeforeTable);
}

bool Nesting::Open(const Tag& tag, const OpenElement& given) {
  OpenElement added = given;
  const TextState around = Around(added.isBeforeTable);
  if (!open.IsFull()) {
    Add(around, tag, added);
    return true;
  }
  Pass(tag, around, added.space == Namespace::kHtml);
  ++tooDeep[static_cast<size_t>(tag.element)];
  anyTooDeep = true;
  return false;
}

void Nesting::OpenIn(const TextState& around, const Tag& tag, const OpenElement& given) {
  OpenElement added = given;
  Add(around, tag, added);
}

// `around` may stand in the list of open elements.
void Nesting::Add(const TextState& around, const Tag& tag, OpenElement& added) {
  const bool isHtml = added.space == Namespace::kHtml;
  added.element = tag.element;
  added.role = content.Begin(tag, isHtml, around);
  added.inside = StateInside(around, added.role);
  if (isHtml && tag.element == Element::kTable) {
    added.tablePlace =
        content.pageText().Mark(around.strand, around.style.share, around.style.region);
  }
  open.Push(added, tag.name);
}

void Nesting::OpenImplied(Element element) {
  Tag tag;
  tag.element = element;
  tag.name = ElementName(element);
  OpenIn(open.Count() == 0 ? TextState() : open.Current().inside, tag);
}

void Nesting::Pass(const Tag& tag, const TextState& around, bool isHtml) {
  const ElementRole role = content.Begin(tag, isHtml, around);
  content.End(role, StateInside(around, role));
}

void Nesting::Close() {
  do {
    const OpenElement& closed = open.Current();
    content.End(closed.role, closed.inside);
    open.Pop();
  } while (open.Count() > 0 && open.Current().isEnded);
  if (anyTooDeep) tooDeep.fill(0);
  anyTooDeep = false;
}

void Nesting::CloseDownTo(ElementPlace place) {
  while (open.Count() > place) Close();
}

void Nesting::CloseThrough(Element element) { CloseDownTo(open.Find(element)); }

void Nesting::CloseAbove(std::initializer_list<Element> context) {
  ElementPlace place = kNotOpen;
  for (const Element element : context) place = std::max(place, open.Find(element));
  CloseDownTo(place + 1);
}

void Nesting::CloseImplied(Element except) {
  while (open.Current().space == Namespace::kHtml && Has(open.Current().element, kImpliedEnd) &&
         open.Current().element != except) {
    Close();
  }
}

void Nesting::EndFormatting(Element element) {
  const ElementPlace place = open.Find(element);
  if (place == kNotOpen || !open.IsInScope(element)) return;
  const ElementPlace block = open.Current().special;
  if (place > block) {
    CloseDownTo(place);
    return;
  }
  CloseDownTo(block + 1);
  TakeSteps(budget, static_cast<uint64_t>(block - place));
  bool changes = false;
  for (ElementPlace i = block - 1; i >= place; --i) {
    const OpenElement& between = open.At(i);
    const bool stays = between.isEnded || between.special == i || Has(between.element, kFormatting);
    if (stays && i != place) continue;
    changes = changes || ChangesState(between.role);
    TakeOut(i);
  }
  if (changes) Inherit(place);
}

void Nesting::EndAt(ElementPlace place, bool isLeft) {
  if (place == open.Count() - 1) {
    Close();
  } else if (isLeft) {
    TakeOut(place);
    Inherit(place);
  } else {
    open.End(place);  // what is still open in it stays in it
  }
}

// Others above are no longer inside it; no word ends here.
void Nesting::TakeOut(ElementPlace place) {
  OpenElement& closed = open.At(place);
  closed.role.breaksWords = false;
  content.End(closed.role, closed.inside);
  open.End(place);
  closed.role = {};
}

// Finds again what holds inside the elements from `from` up, after one around them was taken out.
void Nesting::Inherit(ElementPlace from) {
  ElementPlace table = open.Find(Element::kTable);
  while (table >= from) table = open.At(table).below;
  for (ElementPlace i = from; i < open.Count(); ++i) {
    TakeSteps(budget, 1);
    OpenElement& element = open.At(i);
    const ElementPlace parent = element.isBeforeTable && table > 0 ? table - 1 : i - 1;
    const PageText::Strand strand = element.inside.strand;
    element.inside = StateInside(open.At(parent).inside, element.role);
    element.inside.strand = strand;
    if (element.element == Element::kTable && element.space == Namespace::kHtml) table = i;
  }
}

bool Nesting::TakeTooDeep(const Tag& tag) {
  uint32_t& count = tooDeep[static_cast<size_t>(tag.element)];
  if (!anyTooDeep || count == 0) return false;
  --count;
  return true;
}

}  // namespace vela::indexer
