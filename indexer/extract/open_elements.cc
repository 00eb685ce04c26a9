#include "indexer/extract/open_elements.h"

#include <algorithm>

#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

// Elements of drawings and formulas that count as special and end the scope of end tags.
bool IsForeignBorder(const OpenElement& element) {
  switch (element.element) {
    case Element::kMi:
    case Element::kMo:
    case Element::kMn:
    case Element::kMs:
    case Element::kMtext:
    case Element::kAnnotationXml:
      return element.space == Namespace::kMathMl;
    case Element::kForeignobject:
    case Element::kDesc:
    case Element::kTitle:
      return element.space == Namespace::kSvg;
    default:
      return false;
  }
}

bool IsSpecial(const OpenElement& element) {
  return element.space == Namespace::kHtml ? Has(element.element, kSpecial)
                                           : IsForeignBorder(element);
}

bool EndsScope(const OpenElement& element) {
  return element.space == Namespace::kHtml ? Has(element.element, kScope)
                                           : IsForeignBorder(element);
}

bool IsForeign(const OpenElement& element) { return element.space != Namespace::kHtml; }

}  // namespace

OpenElements::OpenElements(ReadingBudget& takenFrom) : budget(takenFrom) {
  for (auto& ofOneKind : tops) ofOneKind.fill(kNotOpen);
}

void OpenElements::Push(const OpenElement& element, std::string_view name) {
  TakeSteps(budget, 1);
  const ElementPlace place = Count();
  const size_t kind = IsForeign(element) ? 1 : 0;
  OpenElement& added = open.emplace_back(element);
  if (place > 0) {
    const OpenElement& under = At(place - 1);
    added.special = under.special;
    added.item = under.item;
    added.scope = under.scope;
    added.html = under.html;
  }
  if (IsSpecial(added)) {
    added.special = place;
    const bool passable = added.element == Element::kAddress || added.element == Element::kDiv ||
                          added.element == Element::kP;
    if (!passable) added.item = place;
  }
  if (EndsScope(added)) added.scope = place;
  if (kind == 0) added.html = place;
  ElementPlace* top = &tops[kind][static_cast<size_t>(added.element)];
  if (added.element == Element::kOther) {
    const auto entry = otherTops[kind].try_emplace(LowerAsciiCopy(name), kNotOpen).first;
    added.name = &entry->first;
    top = &entry->second;
  }
  added.below = *top;
  *top = place;
}

// `element` is the highest of its name.
void OpenElements::Unlink(const OpenElement& element) {
  const size_t kind = IsForeign(element) ? 1 : 0;
  if (element.element != Element::kOther) {
    tops[kind][static_cast<size_t>(element.element)] = element.below;
    return;
  }
  const auto entry = otherTops[kind].find(*element.name);
  entry->second = element.below;
  if (element.below == kNotOpen) otherTops[kind].erase(entry);
}

void OpenElements::Pop() {
  TakeSteps(budget, 1);
  if (!open.back().isEnded) Unlink(open.back());
  open.pop_back();
}

void OpenElements::End(ElementPlace place) {
  OpenElement& ended = At(place);
  Unlink(ended);
  ended.isEnded = true;
  ended.element = Element::kOther;
  ended.name = nullptr;
  if (ended.special != place) return;
  // At most once for each element above: forms, of which one is open at a time, are the only
  // special ones that end like this.
  ended.special = At(place - 1).special;
  ended.item = At(place - 1).item;
  for (ElementPlace i = place + 1; i < Count(); ++i) {
    TakeSteps(budget, 1);
    if (At(i).special == place) At(i).special = ended.special;
    if (At(i).item == place) At(i).item = ended.item;
  }
}

ElementPlace OpenElements::Find(Element element, std::string_view name, bool foreign) const {
  const size_t kind = foreign ? 1 : 0;
  if (element != Element::kOther) return tops[kind][static_cast<size_t>(element)];
  if (otherTops[kind].empty()) return kNotOpen;
  const auto entry = otherTops[kind].find(LowerAsciiCopy(name));
  return entry == otherTops[kind].end() ? kNotOpen : entry->second;
}

bool OpenElements::IsInScope(Element element) const {
  const ElementPlace place = Find(element);
  return place != kNotOpen && place >= open.back().scope;
}

bool OpenElements::IsParagraphInScope() const {
  return IsInScope(Element::kP) && Find(Element::kP) > Find(Element::kButton);
}

bool OpenElements::IsListItemInScope() const {
  return IsInScope(Element::kLi) &&
         Find(Element::kLi) > std::max(Find(Element::kOl), Find(Element::kUl));
}

bool OpenElements::IsInTableScope(Element element) const {
  const ElementPlace place = Find(element);
  return place != kNotOpen && place >= std::max(Find(Element::kTable), Find(Element::kTemplate));
}

}  // namespace vela::indexer
