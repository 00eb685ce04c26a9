#include "indexer/extract/tree_construction.h"

#include <algorithm>
#include <string>

#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

template <typename Name, typename... Names>
bool IsOneOf(Name name, Names... names) {
  return ((name == names) || ...);
}

bool IsHeading(Element element) { return element >= Element::kH1 && element <= Element::kH6; }

bool IsBlank(std::string_view text) { return text.find_first_not_of(kMarkupBlanks) == text.npos; }

bool IsTableSection(Element element) {
  return IsOneOf(element, Element::kTbody, Element::kTfoot, Element::kThead);
}

// Elements in whose place only blanks and parts of a table may stand.
bool HoldsTableParts(Element element) {
  return IsTableSection(element) ||
         IsOneOf(element, Element::kTable, Element::kTr, Element::kTemplate);
}

// Elements of the head that may stand anywhere.
bool IsHeadElement(Element element) {
  return IsOneOf(element, Element::kBase, Element::kBasefont, Element::kBgsound, Element::kLink,
                 Element::kMeta, Element::kNoframes, Element::kScript, Element::kStyle,
                 Element::kTemplate, Element::kTitle);
}

}  // namespace

void TreeConstruction::Run() {
  for (;;) {
    const TokenKind kind = tokens.Next(IsForeignNow());
    if (kind == TokenKind::kEnd || budget.status != Reason::kNone) break;
    Take(kind);
  }
  FlushTableText();
  nesting.CloseDownTo(0);
}

void TreeConstruction::Take(TokenKind kind) {
  if (kind == TokenKind::kText) {
    text = tokens.text();
  } else {
    FlushTableText();
    if (kind == TokenKind::kComment) TakeComment();
    if (kind != TokenKind::kStartTag && kind != TokenKind::kEndTag) return;
    if (kind == TokenKind::kEndTag && nesting.TakeTooDeep(tokens.tag())) return;
  }
  Outcome outcome = Outcome::kAgain;
  while (outcome == Outcome::kAgain) {
    TakeSteps(budget, 1);
    outcome = TakesForeignRules(kind) ? TakeForeign(kind) : TakeByMode(kind);
  }
}

void TreeConstruction::TakeComment() {
  const bool isInert = nesting.open.Count() > 0 && nesting.open.Current().inside.isInert;
  if (!isInert) content.TakeComment(tokens.comment());
}

// --- What the modes share.

// The element of the tag holds only characters.
void TreeConstruction::AddCharacters(const TextState& around) {
  const Element element = tokens.tag().element;
  const bool isJson =
      element == Element::kScript &&
      LowerAsciiCopy(AttributeValue(tokens.tag(), Attribute::kType)) == "application/ld+json";
  const ElementRole role = content.Begin(tokens.tag(), true, around);
  const TextState inside = StateInside(around, role);
  const std::string_view raw = tokens.TakeRawText();
  if (element == Element::kTitle && TakeBytes(budget, raw.size())) {
    std::string title;
    AppendResolved(raw, false, title);
    content.AddTitle(title, inside);
  } else if (isJson) {
    content.AddJson(raw, inside);
  } else if (element == Element::kXmp) {
    content.AddText(raw, inside);
  }
  content.End(role, inside);
}

void TreeConstruction::ResetMode() {
  struct ModeOf {
    Element element;
    Mode mode;
  };
  constexpr ModeOf kModes[] = {
      {Element::kSelect, Mode::kInSelect},
      {Element::kTd, Mode::kInCell},
      {Element::kTh, Mode::kInCell},
      {Element::kTr, Mode::kInRow},
      {Element::kTbody, Mode::kInTableBody},
      {Element::kThead, Mode::kInTableBody},
      {Element::kTfoot, Mode::kInTableBody},
      {Element::kCaption, Mode::kInCaption},
      {Element::kColgroup, Mode::kInColumnGroup},
      {Element::kTable, Mode::kInTable},
      {Element::kTemplate, Mode::kInTemplate},
      {Element::kHead, Mode::kInHead},
      {Element::kBody, Mode::kInBody},
      {Element::kFrameset, Mode::kInFrameset},
      {Element::kHtml, Mode::kAfterHead},
  };
  ElementPlace highest = kNotOpen;
  for (const ModeOf& of : kModes) {
    const ElementPlace place = nesting.open.Find(of.element);
    if (place <= highest) continue;
    highest = place;
    mode = of.mode;
  }
  if (mode == Mode::kInTemplate) mode = templateModes.back();
  if (mode == Mode::kInSelect &&
      nesting.open.Find(Element::kTable) > nesting.open.Find(Element::kTemplate)) {
    mode = Mode::kInSelectInTable;
  }
}

// --- Drawings and formulas.

bool TreeConstruction::IsForeignNow() {
  return nesting.open.Count() > 0 && nesting.open.Current().space != Namespace::kHtml;
}

bool TreeConstruction::TakesForeignRules(TokenKind kind) {
  if (!IsForeignNow()) return false;
  if (kind == TokenKind::kEndTag) return true;
  const OpenElement& current = nesting.open.Current();
  if (current.holdsHtml) return false;
  if (kind == TokenKind::kText) return !current.holdsHtmlText;
  const Element element = tokens.tag().element;
  if (current.holdsHtmlText) {
    return IsOneOf(element, Element::kMglyph, Element::kMalignmark);
  }
  return current.element != Element::kAnnotationXml || element != Element::kSvg;
}

TreeConstruction::Outcome TreeConstruction::TakeForeign(TokenKind kind) {
  if (kind == TokenKind::kText) {
    if (!IsBlank(text)) framesetOk = false;
    content.AddText(text, nesting.open.Current().inside);
    return Outcome::kDone;
  }
  const Tag& tag = tokens.tag();
  const bool isStart = kind == TokenKind::kStartTag;
  const bool isHtmlFont = tag.element == Element::kFont && (HasAttribute(tag, Attribute::kColor) ||
                                                            HasAttribute(tag, Attribute::kFace) ||
                                                            HasAttribute(tag, Attribute::kSize));
  if (isStart ? isHtmlFont || Has(tag.element, kEndsForeign)
              : IsOneOf(tag.element, Element::kP, Element::kBr)) {
    while (IsForeignNow() && !nesting.open.Current().holdsHtml &&
           !nesting.open.Current().holdsHtmlText) {
      nesting.Close();
    }
    return TakeByMode(kind);
  }
  if (isStart) {
    StartForeign(nesting.open.Current().space);
    return Outcome::kDone;
  }
  const ElementPlace place = nesting.open.Find(tag.element, tag.name, true);
  if (place <= nesting.open.Current().html) return TakeByMode(kind);
  nesting.CloseDownTo(place);
  return Outcome::kDone;
}

void TreeConstruction::StartForeign(Namespace space) {
  const Tag& tag = tokens.tag();
  if (tag.closesItself) {
    nesting.Pass(tokens.tag(), nesting.Around(), false);
    return;
  }
  OpenElement added;
  added.space = space;
  if (space == Namespace::kMathMl) {
    added.holdsHtmlText = IsOneOf(tag.element, Element::kMi, Element::kMo, Element::kMn,
                                  Element::kMs, Element::kMtext);
    if (tag.element == Element::kAnnotationXml) {
      const std::string encoding = LowerAsciiCopy(AttributeValue(tag, Attribute::kEncoding));
      added.holdsHtml = encoding == "text/html" || encoding == "application/xhtml+xml";
    }
  } else {
    added.holdsHtml =
        IsOneOf(tag.element, Element::kForeignobject, Element::kDesc, Element::kTitle);
  }
  nesting.Open(tag, added);
}

// --- The insertion modes.

TreeConstruction::Outcome TreeConstruction::TakeByMode(TokenKind kind) {
  switch (mode) {
    case Mode::kBeforeHtml:
      return BeforeHtml(kind);
    case Mode::kBeforeHead:
      return BeforeHead(kind);
    case Mode::kInHead:
      return InHead(kind);
    case Mode::kAfterHead:
      return AfterHead(kind);
    case Mode::kInBody:
      return InBody(kind);
    case Mode::kInTable:
      return InTable(kind);
    case Mode::kInCaption:
      return InCaption(kind);
    case Mode::kInColumnGroup:
      return InColumnGroup(kind);
    case Mode::kInTableBody:
      return InTableBody(kind);
    case Mode::kInRow:
      return InRow(kind);
    case Mode::kInCell:
      return InCell(kind);
    case Mode::kInSelect:
      return InSelect(kind);
    case Mode::kInSelectInTable:
      return InSelectInTable(kind);
    case Mode::kInTemplate:
      return InTemplate(kind);
    case Mode::kAfterBody:
      return AfterBody(kind);
    case Mode::kInFrameset:
      return InFrameset(kind);
    case Mode::kAfterFrameset:
      return AfterFrameset(kind);
  }
  return Outcome::kDone;
}

// Blanks before the body are no text of the page.
bool TreeConstruction::PassBlanks(TokenKind kind) {
  if (kind != TokenKind::kText) return false;
  text.remove_prefix(std::min(text.find_first_not_of(kMarkupBlanks), text.size()));
  return text.empty();
}

// Whether the end tag is one that makes the elements around it begin, as browsers have always done.
bool TreeConstruction::IsEndThatBegins() const {
  return IsOneOf(tokens.tag().element, Element::kHead, Element::kBody, Element::kHtml,
                 Element::kBr);
}

TreeConstruction::Outcome TreeConstruction::BeforeHtml(TokenKind kind) {
  if (PassBlanks(kind) || (kind == TokenKind::kEndTag && !IsEndThatBegins())) {
    return Outcome::kDone;
  }
  mode = Mode::kBeforeHead;
  if (kind == TokenKind::kStartTag && tokens.tag().element == Element::kHtml) {
    nesting.OpenIn({}, tokens.tag());
    return Outcome::kDone;
  }
  nesting.OpenImplied(Element::kHtml);
  return Outcome::kAgain;
}

TreeConstruction::Outcome TreeConstruction::BeforeHead(TokenKind kind) {
  const Element element = tokens.tag().element;
  if (PassBlanks(kind) || (kind == TokenKind::kEndTag && !IsEndThatBegins()) ||
      (kind == TokenKind::kStartTag && element == Element::kHtml)) {
    return Outcome::kDone;
  }
  nesting.OpenImplied(Element::kHead);
  headState = nesting.open.Current().inside;
  mode = Mode::kInHead;
  const bool isHead = kind == TokenKind::kStartTag && element == Element::kHead;
  return isHead ? Outcome::kDone : Outcome::kAgain;
}

TreeConstruction::Outcome TreeConstruction::InHead(TokenKind kind) {
  if (PassBlanks(kind) || TakeHeadElement(kind, nesting.open.Current().inside))
    return Outcome::kDone;
  const Element element = tokens.tag().element;
  if (kind == TokenKind::kStartTag) {
    if (IsOneOf(element, Element::kHtml, Element::kHead)) return Outcome::kDone;
    if (element == Element::kNoscript) {
      AddCharacters(nesting.open.Current().inside);
      return Outcome::kDone;
    }
  }
  const bool isEnd = kind == TokenKind::kEndTag;
  if (isEnd && !IsEndThatBegins()) return Outcome::kDone;
  nesting.Close();
  mode = Mode::kAfterHead;
  return isEnd && element == Element::kHead ? Outcome::kDone : Outcome::kAgain;
}

TreeConstruction::Outcome TreeConstruction::AfterHead(TokenKind kind) {
  if (PassBlanks(kind) || TakeHeadElement(kind, headState)) return Outcome::kDone;
  const Element element = tokens.tag().element;
  if (kind == TokenKind::kStartTag) {
    if (IsOneOf(element, Element::kHtml, Element::kHead)) return Outcome::kDone;
    if (IsOneOf(element, Element::kBody, Element::kFrameset)) {
      nesting.OpenIn(nesting.open.Current().inside, tokens.tag());
      mode = element == Element::kBody ? Mode::kInBody : Mode::kInFrameset;
      framesetOk = false;
      return Outcome::kDone;
    }
  }
  if (kind == TokenKind::kEndTag && (!IsEndThatBegins() || element == Element::kHead)) {
    return Outcome::kDone;
  }
  nesting.OpenImplied(Element::kBody);
  mode = Mode::kInBody;
  return Outcome::kAgain;
}

TreeConstruction::Outcome TreeConstruction::AfterBody(TokenKind kind) {
  if (kind == TokenKind::kText && IsBlank(text)) return InBody(kind);
  const Element element = tokens.tag().element;
  if (kind != TokenKind::kText && element == Element::kHtml) return Outcome::kDone;
  mode = Mode::kInBody;
  return Outcome::kAgain;
}

// Frames have no text of their own.
TreeConstruction::Outcome TreeConstruction::InFrameset(TokenKind kind) {
  if (kind == TokenKind::kText) return Outcome::kDone;
  const Element element = tokens.tag().element;
  if (kind == TokenKind::kStartTag) {
    if (element == Element::kFrameset) nesting.Open(tokens.tag());
    if (element == Element::kNoframes) AddCharacters(nesting.open.Current().inside);
  } else if (element == Element::kFrameset && nesting.open.Count() > 1) {
    nesting.Close();
    if (nesting.open.Current().element != Element::kFrameset) mode = Mode::kAfterFrameset;
  }
  return Outcome::kDone;
}

TreeConstruction::Outcome TreeConstruction::AfterFrameset(TokenKind kind) {
  if (kind == TokenKind::kStartTag && tokens.tag().element == Element::kNoframes) {
    AddCharacters(nesting.open.Current().inside);
  }
  return Outcome::kDone;
}

// --- In body.

TreeConstruction::Outcome TreeConstruction::InBody(TokenKind kind) {
  if (kind == TokenKind::kText) {
    if (framesetOk && !IsBlank(text)) framesetOk = false;
    content.AddText(text, nesting.Around());
    return Outcome::kDone;
  }
  if (TakeHeadElement(kind, nesting.Around())) return Outcome::kDone;
  if (kind == TokenKind::kStartTag) {
    BodyStart();
    return Outcome::kDone;
  }
  const Element element = tokens.tag().element;
  if (IsOneOf(element, Element::kBody, Element::kHtml)) {
    if (!nesting.open.IsInScope(Element::kBody)) return Outcome::kDone;
    mode = Mode::kAfterBody;
    return element == Element::kHtml ? Outcome::kAgain : Outcome::kDone;
  }
  BodyEnd();
  return Outcome::kDone;
}

// A tag of what the head holds, wherever it stands. False: it is none.
bool TreeConstruction::TakeHeadElement(TokenKind kind, const TextState& around) {
  const Element element = tokens.tag().element;
  if (kind == TokenKind::kText || !IsHeadElement(element)) return false;
  if (kind == TokenKind::kEndTag) {
    if (element != Element::kTemplate) return false;
    if (nesting.open.Find(element) == kNotOpen) return true;
    nesting.CloseThrough(element);
    templateModes.pop_back();
    ResetMode();
  } else if (element == Element::kTemplate) {
    framesetOk = false;
    StartTemplate(around);
  } else if (Has(element, kRawText)) {
    AddCharacters(around);
  } else {
    nesting.Pass(tokens.tag(), around);
  }
  return true;
}

void TreeConstruction::StartTemplate(const TextState& around) {
  if (nesting.open.IsFull()) {
    nesting.Open(tokens.tag());
    return;
  }
  nesting.OpenIn(around, tokens.tag());
  mode = Mode::kInTemplate;
  templateModes.push_back(mode);
}

void TreeConstruction::BodyStart() {
  const Element element = tokens.tag().element;
  if (Has(element, kNoFrameset)) framesetOk = false;
  if (Has(element, kTablePart) ||
      IsOneOf(element, Element::kHtml, Element::kBody, Element::kHead, Element::kFrame)) {
    return;
  }
  if (!PrepareBodyStart(element)) return;
  if (Has(element, kVoid)) {
    nesting.Pass(tokens.tag(), nesting.Around());
  } else if (Has(element, kRawText)) {
    AddCharacters(nesting.Around());
  } else if (element == Element::kFrameset) {
    StartFrameset();
  } else if (element == Element::kSvg) {
    StartForeign(Namespace::kSvg);
  } else if (element == Element::kMath) {
    StartForeign(Namespace::kMathMl);
  } else if (nesting.Open(tokens.tag())) {
    switch (element) {
      case Element::kTable:
        mode = Mode::kInTable;
        break;
      case Element::kSelect:
        mode = IsOneOf(mode, Mode::kInTable, Mode::kInCaption, Mode::kInTableBody, Mode::kInRow,
                       Mode::kInCell)
                   ? Mode::kInSelectInTable
                   : Mode::kInSelect;
        break;
      case Element::kForm:
        if (nesting.open.Find(Element::kTemplate) != kNotOpen) break;
        hasForm = true;
        break;
      default:
        break;
    }
  }
  if (element == Element::kPlaintext) content.AddText(tokens.TakeRest(), nesting.Around());
}

// Closes what the start tag of `element` ends. False: the tag is to be passed over.
bool TreeConstruction::PrepareBodyStart(Element element) {
  if (element == Element::kForm && hasForm && nesting.open.Find(Element::kTemplate) == kNotOpen) {
    return false;
  }
  const auto isItem = [this](ElementPlace place, Element name) {
    return place != kNotOpen && nesting.open.At(place).space == Namespace::kHtml &&
           nesting.open.At(place).element == name;
  };
  const ElementPlace item = nesting.open.Current().item;
  if (element == Element::kLi && isItem(item, Element::kLi)) nesting.CloseDownTo(item);
  if (IsOneOf(element, Element::kDd, Element::kDt) &&
      (isItem(item, Element::kDd) || isItem(item, Element::kDt))) {
    nesting.CloseDownTo(item);
  }
  if (Has(element, kEndsParagraph) && nesting.open.IsParagraphInScope())
    nesting.CloseThrough(Element::kP);
  const Element current = nesting.open.Current().element;
  switch (element) {
    case Element::kH1:
    case Element::kH2:
    case Element::kH3:
    case Element::kH4:
    case Element::kH5:
    case Element::kH6:
      if (IsHeading(current)) nesting.Close();
      break;
    case Element::kButton:
      if (nesting.open.IsInScope(element)) nesting.CloseThrough(element);
      break;
    case Element::kOption:
    case Element::kOptgroup:
      if (current == Element::kOption) nesting.Close();
      break;
    case Element::kRb:
    case Element::kRtc:
      if (nesting.open.IsInScope(Element::kRuby)) nesting.CloseImplied(Element::kOther);
      break;
    case Element::kRp:
    case Element::kRt:
      if (nesting.open.IsInScope(Element::kRuby)) nesting.CloseImplied(Element::kRtc);
      break;
    case Element::kA:
      EndOpenLink();
      break;
    case Element::kNobr:
      if (nesting.open.IsInScope(element)) nesting.EndFormatting(element);
      break;
    default:
      break;
  }
  return true;
}

void TreeConstruction::StartFrameset() {
  if (!framesetOk || nesting.open.Count() < 2 || nesting.open.At(1).element != Element::kBody)
    return;
  nesting.CloseDownTo(1);
  nesting.OpenIn(nesting.open.Current().inside, tokens.tag());
  mode = Mode::kInFrameset;
}

// A link ends the one before, unless that is outside of the cell or object around.
void TreeConstruction::EndOpenLink() {
  const ElementPlace place = nesting.open.Find(Element::kA);
  for (const Element border : {Element::kApplet, Element::kObject, Element::kMarquee,
                               Element::kTemplate, Element::kTd, Element::kTh, Element::kCaption}) {
    if (nesting.open.Find(border) > place) return;
  }
  if (place == kNotOpen) return;
  if (nesting.open.IsInScope(Element::kA)) {
    nesting.EndFormatting(Element::kA);
  } else {
    nesting.EndAt(place, true);
  }
}

void TreeConstruction::BodyEnd() {
  const Tag& tag = tokens.tag();
  const Element element = tag.element;
  if (Has(element, kFormatting)) {
    nesting.EndFormatting(element);
  } else if (element == Element::kForm) {
    EndForm();
  } else if (element == Element::kP || element == Element::kBr) {
    const bool isOpen = element == Element::kP && nesting.open.IsParagraphInScope();
    if (element == Element::kBr) framesetOk = false;
    // Without an open one, the end tag stands for an element without content.
    if (isOpen) {
      nesting.CloseThrough(element);
    } else {
      nesting.Pass(tokens.tag(), nesting.Around());
    }
  } else if (element == Element::kLi) {
    if (nesting.open.IsListItemInScope()) nesting.CloseThrough(element);
  } else if (IsHeading(element)) {
    ElementPlace place = kNotOpen;
    for (const Element heading :
         {Element::kH1, Element::kH2, Element::kH3, Element::kH4, Element::kH5, Element::kH6}) {
      place = std::max(place, nesting.open.Find(heading));
    }
    if (place != kNotOpen && place >= nesting.open.Current().scope) nesting.CloseDownTo(place);
  } else if (Has(element, kEndsInScope) || IsOneOf(element, Element::kDd, Element::kDt)) {
    if (nesting.open.IsInScope(element)) nesting.CloseThrough(element);
  } else {
    const ElementPlace place = nesting.open.Find(element, tag.name, false);
    if (place != kNotOpen && place >= nesting.open.Current().special) nesting.CloseDownTo(place);
  }
}

void TreeConstruction::EndForm() {
  if (nesting.open.Find(Element::kTemplate) != kNotOpen) {
    if (nesting.open.IsInScope(Element::kForm)) nesting.CloseThrough(Element::kForm);
    return;
  }
  const bool isOpen = hasForm && nesting.open.IsInScope(Element::kForm);
  hasForm = false;
  if (!isOpen) return;
  nesting.CloseImplied(Element::kOther);
  nesting.EndAt(nesting.open.Find(Element::kForm), false);
}

// --- In tables.

// `element` is that of the tag, or one that a page may leave out before it.
void TreeConstruction::OpenTablePart(Element element) {
  if (element == tokens.tag().element) {
    nesting.OpenIn(nesting.open.Current().inside, tokens.tag());
  } else {
    nesting.OpenImplied(element);
  }
}

void TreeConstruction::CloseToTableBody() {
  nesting.CloseAbove(
      {Element::kTbody, Element::kTfoot, Element::kThead, Element::kTemplate, Element::kHtml});
}

void TreeConstruction::CloseToRow() {
  nesting.CloseAbove({Element::kTr, Element::kTemplate, Element::kHtml});
}

void TreeConstruction::CloseCell() {
  nesting.CloseDownTo(std::max(nesting.open.Find(Element::kTd), nesting.open.Find(Element::kTh)));
  mode = Mode::kInRow;
}

// What does not belong in a table stands before it.
TreeConstruction::Outcome TreeConstruction::BesideTable(TokenKind kind) {
  nesting.besideTable = true;
  const Outcome outcome = InBody(kind);
  nesting.besideTable = false;
  return outcome;
}

// Blanks between the parts of a table belong to it, as long as no other text follows.
void TreeConstruction::TableText() {
  if (!tableTextIsOut && IsBlank(text)) {
    tableBlank = true;
    return;
  }
  nesting.besideTable = true;
  const TextState around = nesting.Around();
  nesting.besideTable = false;
  if (tableBlank) content.AddText(" ", around);
  content.AddText(text, around);
  tableBlank = false;
  tableTextIsOut = true;
}

void TreeConstruction::FlushTableText() {
  if (tableBlank) content.AddText(" ", nesting.open.Current().inside);
  tableBlank = false;
  tableTextIsOut = false;
}

TreeConstruction::Outcome TreeConstruction::InTable(TokenKind kind) {
  const OpenElement& current = nesting.open.Current();
  if (kind == TokenKind::kText) {
    if (!HoldsTableParts(current.element)) return BesideTable(kind);
    TableText();
    return Outcome::kDone;
  }
  const Element element = tokens.tag().element;
  const bool isStart = kind == TokenKind::kStartTag;
  if (element == Element::kTable) {
    if (!nesting.open.IsInTableScope(element)) return Outcome::kDone;
    nesting.CloseThrough(element);
    ResetMode();
    return isStart ? Outcome::kAgain : Outcome::kDone;
  }
  if (IsOneOf(element, Element::kStyle, Element::kScript, Element::kTemplate)) {
    TakeHeadElement(kind, current.inside);
    return Outcome::kDone;
  }
  if (!isStart) {
    const bool isIgnored =
        Has(element, kTablePart) || IsOneOf(element, Element::kBody, Element::kHtml);
    return isIgnored ? Outcome::kDone : BesideTable(kind);
  }
  if (element == Element::kForm) {
    if (!hasForm && nesting.open.Find(Element::kTemplate) == kNotOpen) {
      nesting.Pass(tokens.tag(), current.inside);
      hasForm = true;
    }
    return Outcome::kDone;
  }
  if (!Has(element, kTablePart)) return BesideTable(kind);
  nesting.CloseAbove({Element::kTable, Element::kTemplate, Element::kHtml});
  switch (element) {
    case Element::kCaption:
      OpenTablePart(element);
      mode = Mode::kInCaption;
      return Outcome::kDone;
    case Element::kColgroup:
    case Element::kCol:
      OpenTablePart(Element::kColgroup);
      mode = Mode::kInColumnGroup;
      return element == Element::kColgroup ? Outcome::kDone : Outcome::kAgain;
    default:
      OpenTablePart(IsTableSection(element) ? element : Element::kTbody);
      mode = Mode::kInTableBody;
      return IsTableSection(element) ? Outcome::kDone : Outcome::kAgain;
  }
}

TreeConstruction::Outcome TreeConstruction::InCaption(TokenKind kind) {
  const Element element = tokens.tag().element;
  const bool isPart = kind != TokenKind::kText && Has(element, kTablePart);
  const bool isEnd = kind == TokenKind::kEndTag;
  const bool endsCaption = (isEnd && element == Element::kCaption) || (!isEnd && isPart) ||
                           (isEnd && element == Element::kTable);
  if (endsCaption) {
    if (!nesting.open.IsInTableScope(Element::kCaption)) return Outcome::kDone;
    nesting.CloseThrough(Element::kCaption);
    mode = Mode::kInTable;
    return isEnd && element == Element::kCaption ? Outcome::kDone : Outcome::kAgain;
  }
  if (isEnd && (isPart || IsOneOf(element, Element::kBody, Element::kHtml))) {
    return Outcome::kDone;
  }
  return InBody(kind);
}

TreeConstruction::Outcome TreeConstruction::InColumnGroup(TokenKind kind) {
  if (PassBlanks(kind)) return Outcome::kDone;
  const Element element = tokens.tag().element;
  const bool isStart = kind == TokenKind::kStartTag;
  const bool isEnd = kind == TokenKind::kEndTag;
  if (isStart && element == Element::kHtml) return Outcome::kDone;
  if (isStart && element == Element::kCol) {
    nesting.Pass(tokens.tag(), nesting.open.Current().inside);
    return Outcome::kDone;
  }
  if (isEnd && element == Element::kCol) return Outcome::kDone;
  if (kind != TokenKind::kText && element == Element::kTemplate) {
    TakeHeadElement(kind, nesting.open.Current().inside);
    return Outcome::kDone;
  }
  if (nesting.open.Current().element != Element::kColgroup) return Outcome::kDone;
  nesting.Close();
  mode = Mode::kInTable;
  return isEnd && element == Element::kColgroup ? Outcome::kDone : Outcome::kAgain;
}

TreeConstruction::Outcome TreeConstruction::InTableBody(TokenKind kind) {
  const Element element = tokens.tag().element;
  if (kind == TokenKind::kText) return InTable(kind);
  const bool isStart = kind == TokenKind::kStartTag;
  if (isStart && IsOneOf(element, Element::kTr, Element::kTd, Element::kTh)) {
    CloseToTableBody();
    OpenTablePart(Element::kTr);
    mode = Mode::kInRow;
    return element == Element::kTr ? Outcome::kDone : Outcome::kAgain;
  }
  if (!isStart && IsTableSection(element)) {
    if (!nesting.open.IsInTableScope(element)) return Outcome::kDone;
    CloseToTableBody();
    nesting.Close();
    mode = Mode::kInTable;
    return Outcome::kDone;
  }
  if (isStart ? Has(element, kTablePart) : element == Element::kTable) {
    if (!nesting.open.IsInTableScope(Element::kTbody) &&
        !nesting.open.IsInTableScope(Element::kThead) &&
        !nesting.open.IsInTableScope(Element::kTfoot)) {
      return Outcome::kDone;
    }
    CloseToTableBody();
    nesting.Close();
    mode = Mode::kInTable;
    return Outcome::kAgain;
  }
  return InTable(kind);
}

TreeConstruction::Outcome TreeConstruction::InRow(TokenKind kind) {
  const Element element = tokens.tag().element;
  if (kind == TokenKind::kText) return InTable(kind);
  const bool isStart = kind == TokenKind::kStartTag;
  if (isStart && IsOneOf(element, Element::kTd, Element::kTh)) {
    CloseToRow();
    OpenTablePart(element);
    mode = Mode::kInCell;
    return Outcome::kDone;
  }
  const bool endsRow =
      isStart ? Has(element, kTablePart)
              : element == Element::kTr || element == Element::kTable || IsTableSection(element);
  if (!endsRow) {
    // Other end tags of a table's parts end nothing in a row.
    return InTable(kind);
  }
  if (!isStart && IsTableSection(element) && !nesting.open.IsInTableScope(element)) {
    return Outcome::kDone;
  }
  if (!nesting.open.IsInTableScope(Element::kTr)) return Outcome::kDone;
  CloseToRow();
  nesting.Close();
  mode = Mode::kInTableBody;
  return !isStart && element == Element::kTr ? Outcome::kDone : Outcome::kAgain;
}

TreeConstruction::Outcome TreeConstruction::InCell(TokenKind kind) {
  const Element element = tokens.tag().element;
  if (kind == TokenKind::kText) return InBody(kind);
  if (kind == TokenKind::kStartTag) {
    if (!Has(element, kTablePart)) return InBody(kind);
    if (!nesting.open.IsInTableScope(Element::kTd) && !nesting.open.IsInTableScope(Element::kTh)) {
      return Outcome::kDone;
    }
    CloseCell();
    return Outcome::kAgain;
  }
  const bool isCell = IsOneOf(element, Element::kTd, Element::kTh);
  if (isCell || element == Element::kTable || element == Element::kTr || IsTableSection(element)) {
    if (!nesting.open.IsInTableScope(element)) return Outcome::kDone;
    if (isCell) {
      nesting.CloseThrough(element);
      mode = Mode::kInRow;
      return Outcome::kDone;
    }
    CloseCell();
    return Outcome::kAgain;
  }
  if (Has(element, kTablePart) || IsOneOf(element, Element::kBody, Element::kHtml)) {
    return Outcome::kDone;
  }
  return InBody(kind);
}

// --- In select and template.

TreeConstruction::Outcome TreeConstruction::InSelect(TokenKind kind) {
  if (kind == TokenKind::kText) {
    content.AddText(text, nesting.open.Current().inside);
    return Outcome::kDone;
  }
  const Element element = tokens.tag().element;
  const auto closeIf = [this](Element open) {
    if (nesting.open.Current().element == open) nesting.Close();
  };
  if (IsOneOf(element, Element::kScript, Element::kTemplate)) {
    TakeHeadElement(kind, nesting.open.Current().inside);
    return Outcome::kDone;
  }
  if (kind == TokenKind::kEndTag) {
    if (element == Element::kOptgroup && nesting.open.Current().element == Element::kOption &&
        nesting.open.At(nesting.open.Count() - 2).element == Element::kOptgroup) {
      nesting.Close();
    }
    if (IsOneOf(element, Element::kOption, Element::kOptgroup)) closeIf(element);
    if (element == Element::kSelect) {
      nesting.CloseThrough(element);
      ResetMode();
    }
    return Outcome::kDone;
  }
  if (IsOneOf(element, Element::kOption, Element::kOptgroup, Element::kHr)) {
    closeIf(Element::kOption);
    if (element != Element::kOption) closeIf(Element::kOptgroup);
    if (element == Element::kHr) {
      nesting.Pass(tokens.tag(), nesting.open.Current().inside);
    } else {
      nesting.Open(tokens.tag());
    }
  } else if (IsOneOf(element, Element::kSelect, Element::kInput, Element::kKeygen,
                     Element::kTextarea)) {
    nesting.CloseThrough(Element::kSelect);
    ResetMode();
    return element == Element::kSelect ? Outcome::kDone : Outcome::kAgain;
  }
  return Outcome::kDone;
}

TreeConstruction::Outcome TreeConstruction::InSelectInTable(TokenKind kind) {
  const Element element = tokens.tag().element;
  const bool isOfTable =
      kind != TokenKind::kText &&
      (element == Element::kTable ||
       (Has(element, kTablePart) && element != Element::kCol && element != Element::kColgroup));
  if (!isOfTable) return InSelect(kind);
  if (kind == TokenKind::kEndTag && !nesting.open.IsInTableScope(element)) return Outcome::kDone;
  nesting.CloseThrough(Element::kSelect);
  ResetMode();
  return Outcome::kAgain;
}

TreeConstruction::Outcome TreeConstruction::InTemplate(TokenKind kind) {
  if (kind == TokenKind::kText) return InBody(kind);
  if (TakeHeadElement(kind, nesting.open.Current().inside) || kind == TokenKind::kEndTag) {
    return Outcome::kDone;
  }
  switch (tokens.tag().element) {
    case Element::kCaption:
    case Element::kColgroup:
    case Element::kTbody:
    case Element::kTfoot:
    case Element::kThead:
      mode = Mode::kInTable;
      break;
    case Element::kCol:
      mode = Mode::kInColumnGroup;
      break;
    case Element::kTr:
      mode = Mode::kInTableBody;
      break;
    case Element::kTd:
    case Element::kTh:
      mode = Mode::kInRow;
      break;
    default:
      mode = Mode::kInBody;
      break;
  }
  templateModes.back() = mode;
  return Outcome::kAgain;
}

}  // namespace vela::indexer
