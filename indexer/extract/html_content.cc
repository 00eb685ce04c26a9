#include "indexer/extract/html_content.h"

#include <algorithm>
#include <utility>

#include "indexer/extract/declared_facts.h"
#include "indexer/extract/json_facts.h"
#include "indexer/extract/meta_elements.h"
#include "indexer/words/lower_copy.h"
#include "text/lower.h"

namespace vela::indexer {

namespace {

// A main part that holds less than one in so many bytes of a page's text is not all of its content.
constexpr uint64_t kMainPart = 4;
// A longer text is no date.
constexpr size_t kTimeBytesLimit = 1000;

std::string LowerValue(const Tag& tag, Attribute attribute) {
  return HasAttribute(tag, attribute) ? LowerAsciiCopy(AttributeValue(tag, attribute))
                                      : std::string();
}

// The level of h1 to h6, which the table of elements holds in a row; 0 of any other.
uint8_t HeadingLevel(Element element) {
  if (element < Element::kH1 || element > Element::kH6) return 0;
  return static_cast<uint8_t>(static_cast<int>(element) - static_cast<int>(Element::kH1) + 1);
}

enum class Surrounding : uint8_t { kNone, kNavigation, kTools, kHeader, kFrame };

// What the element is of that which surrounds the content of a page.
Surrounding SurroundingOf(const Tag& tag, bool isOfPage) {
  if (tag.element == Element::kNav) return Surrounding::kNavigation;
  if (HasAttribute(tag, Attribute::kRole)) {
    const std::string role = LowerValue(tag, Attribute::kRole);
    for (std::string_view name : {"search", "toolbar"}) {
      if (HoldsWord(role, name)) return Surrounding::kTools;
    }
    for (std::string_view name : {"navigation", "menu", "menubar"}) {
      if (HoldsWord(role, name)) return Surrounding::kNavigation;
    }
    if (HoldsWord(role, "banner")) return Surrounding::kHeader;
    if (HoldsWord(role, "contentinfo") || HoldsWord(role, "complementary")) {
      return Surrounding::kFrame;
    }
  }
  if (isOfPage && tag.element == Element::kHeader) return Surrounding::kHeader;
  if (isOfPage && (tag.element == Element::kFooter || tag.element == Element::kAside)) {
    return Surrounding::kFrame;
  }
  return Surrounding::kNone;
}

bool IsMain(const Tag& tag) {
  return tag.element == Element::kMain || (HasAttribute(tag, Attribute::kRole) &&
                                           HoldsWord(LowerValue(tag, Attribute::kRole), "main"));
}

// The weight that the owner gives an element; kWeightOfHeading when there is none, or none of 0
// to 6.
uint8_t OwnersWeight(const Tag& tag) {
  constexpr char kLeast = '6';
  const std::string value = AttributeValue(tag, Attribute::kDataVelaWeight);
  if (value.size() != 1 || value[0] < '0' || value[0] > kLeast) return kWeightOfHeading;
  return static_cast<uint8_t>(value[0] - '0');
}

bool IsMarkupBlank(char c) { return kMarkupBlanks.find(c) != kMarkupBlanks.npos; }

// By what a meta element is called (see MetaElement); empty when it has no name.
std::string MetaName(const Tag& tag) {
  constexpr struct {
    Attribute attribute;
    const char* prefix;
  } kNames[] = {{Attribute::kName, ""},
                {Attribute::kProperty, ""},
                {Attribute::kItemprop, "itemprop:"},
                {Attribute::kHttpEquiv, "http-equiv:"}};
  for (const auto& [attribute, prefix] : kNames) {
    const std::string given = AttributeValue(tag, attribute);
    if (!given.empty()) return prefix + given;
  }
  return {};
}

// The properties of schema.org that say when a page was written, in lower case.
bool IsDateProperty(std::string_view property) {
  return property == "datepublished" || property == "datemodified";
}

// Words go on across the edges of inline elements, and of elements that a page's own scripts
// define, whose names hold a hyphen.
bool IsInline(const Tag& tag, bool isHtml) {
  return Has(tag.element, kInline) ||
         (isHtml && tag.element == Element::kOther && tag.name.find('-') != tag.name.npos);
}

bool IsPicture(const Tag& tag) {
  return tag.element == Element::kImg || tag.element == Element::kImage ||
         tag.element == Element::kArea;
}

// What an address leads to the element by: its id, or the name of an anchor; empty when it has none
// that can stand in an address.
std::string AnchorOf(const Tag& tag) {
  constexpr size_t kAnchorBytesLimit = 200;
  std::string anchor = AttributeValue(tag, Attribute::kId);
  if (anchor.empty() && tag.element == Element::kA) anchor = AttributeValue(tag, Attribute::kName);
  const bool isUsable = std::ranges::all_of(
      anchor, [](char c) { return static_cast<unsigned char>(c) > ' ' && c != 0x7F; });
  if (!isUsable || anchor.size() > kAnchorBytesLimit) return {};
  return anchor;
}

// Whether the element is a link to a place on this page.
bool IsSkipLink(const Tag& tag) {
  if (tag.element != Element::kA) return false;
  std::string room;
  return ResolvedValue(tag, Attribute::kHref, room).starts_with('#');
}

// The tag as a person knows it again.
std::string TagText(const Tag& tag) {
  std::string text = "<" + LowerAsciiCopy(tag.name);
  constexpr struct {
    Attribute attribute;
    const char* name;
  } kShown[] = {{Attribute::kId, "id"}, {Attribute::kClass, "class"}, {Attribute::kRole, "role"}};
  for (const auto& [attribute, name] : kShown) {
    if (!HasAttribute(tag, attribute)) continue;
    text.append(" ").append(name).append("=\"").append(AttributeValue(tag, attribute)).append("\"");
  }
  return text + ">";
}

// Leaves out what stands outside of the region `from` and those within it; `regions` stand beside
// `things`.
template <typename Thing>
void LeaveOutBefore(TextRegion from, const std::vector<TextRegion>& regions,
                    std::vector<Thing>& things) {
  if (from == TextRegion::kPage) return;
  size_t kept = 0;
  for (size_t i = 0; i < things.size(); ++i) {
    if (regions[i] < from) continue;
    if (kept != i) things[kept] = std::move(things[i]);
    ++kept;
  }
  things.resize(kept);
}

// Whether it is one to another page.
bool LeadsToPage(const Tag& tag) {
  return tag.element == Element::kA && HasAttribute(tag, Attribute::kHref) && !IsSkipLink(tag);
}

}  // namespace

const AttributeNames* HtmlContent::askedAttributes() const {
  const AttributeNames& asked = choice.selectors.askedAttributes();
  return asked.empty() ? nullptr : &asked;
}

ElementRole HtmlContent::RoleOf(const Tag& tag, bool isHtml, const TextState& around) {
  ElementRole role;
  const Surrounding surrounding = SurroundingOf(tag, around.isOfPage);
  // A link into the page before its text is for skipping what surrounds it.
  const bool skips = around.isOfPage && !text.HasContent() && IsSkipLink(tag);
  role.isInert = isHtml && tag.element == Element::kTemplate;
  role.isNavigation = surrounding == Surrounding::kNavigation;
  role.isFrame = skips || surrounding == Surrounding::kHeader || surrounding == Surrounding::kFrame;
  role.isHeader = surrounding == Surrounding::kHeader;
  role.isMain = IsMain(tag);
  role.enclosesContent =
      role.isMain || tag.element == Element::kArticle || tag.element == Element::kSection;
  role.leavesOut = (Has(tag.element, kNeverText) && tag.element != Element::kNav) ||
                   IsHidden(tag) || surrounding == Surrounding::kTools ||
                   (skips && !text.HasText());
  ApplyOwnersWishes(tag, around, role);
  role.leavesOut = role.leavesOut || (role.isNavigation && !choice.indexesNavigation);
  role.breaksWords = !IsInline(tag, isHtml) && !(role.leavesOut && Has(tag.element, kInvisible));
  role.headingLevel = HeadingLevel(tag.element);
  role.isLink = isHtml && LeadsToPage(tag);
  if (notes != nullptr && !around.isLeftOut && !isOff && role.part == 0) {
    NoteRole(tag, around, role);
  }
  return role;
}

// The number of the new part; `tag` may be null.
uint32_t HtmlContent::NotePart(PartReason reason, const Tag* tag, uint32_t selector) {
  LeftOutPart& part = notes->parts.emplace_back();
  part.reason = reason;
  part.selector = selector;
  if (tag != nullptr) part.element = TagText(*tag);
  return static_cast<uint32_t>(notes->parts.size());
}

// What the markup itself leaves out.
void HtmlContent::NoteRole(const Tag& tag, const TextState& around, ElementRole& role) {
  const bool beginsFrame = role.isFrame && around.style.share == TextShare::kContent;
  if (!role.isInert && !role.leavesOut && !beginsFrame) return;
  // The title is told apart from the text anyway.
  if (tag.element == Element::kTitle || tag.element == Element::kHead) return;
  PartReason reason = PartReason::kUnread;
  if (role.isInert) {
    reason = PartReason::kTemplate;
  } else if (role.isNavigation) {
    reason = PartReason::kNavigation;
  } else if (IsHidden(tag)) {
    reason = PartReason::kHidden;
  } else if (SurroundingOf(tag, around.isOfPage) == Surrounding::kTools) {
    reason = PartReason::kTools;
  } else if (IsSkipLink(tag)) {
    reason = PartReason::kSkipLink;
  } else if (!role.leavesOut) {
    reason = PartReason::kFrame;
  }
  role.part = NotePart(reason, &tag);
}

void HtmlContent::NoteText(std::string_view added, const TextState& state) {
  const uint32_t part = isOff && !state.isLeftOut ? offPart : state.part;
  if (part != 0) {
    notes->parts[part - 1].text += added;
  } else if (!state.isLeftOut) {
    notes->texts[static_cast<size_t>(state.style.region)] += added;
  }
}

void HtmlContent::NoteLink(LinkReason reason, std::string address) {
  if (notes != nullptr) notes->links.push_back({reason, std::move(address)});
}

// What is hidden or left out stays so; otherwise the owner knows better than the markup.
void HtmlContent::ApplyOwnersWishes(const Tag& tag, const TextState& around, ElementRole& role) {
  if (around.isLeftOut) return;
  SelectorFit fit;
  if (!choice.selectors.empty()) fit = selectors.Fit(tag, around.path);
  role.selectorParts = fit.parts;
  if (fit.isExcluded || HasAttribute(tag, Attribute::kDataVelaIgnore)) {
    role.leavesOut = true;
    ++page.use.excluded;
    if (notes != nullptr && !isOff) {
      role.part = NotePart(fit.isExcluded ? PartReason::kSelector : PartReason::kIgnored, &tag,
                           fit.excludedBy);
    }
    return;
  }
  if (HasAttribute(tag, Attribute::kDataVelaWeight)) role.weight = OwnersWeight(tag);
  if (!fit.isChosen && !HasAttribute(tag, Attribute::kDataVelaBody)) return;
  role.isChosen = role.enclosesContent = true;
  role.isNavigation = role.isFrame = role.isHeader = false;
}

ElementRole HtmlContent::Begin(const Tag& tag, bool isHtml, const TextState& around) {
  if (around.isInert) return {};
  if (isHtml) ReadHeadElement(tag);
  ElementRole role = RoleOf(tag, isHtml, around);
  if (isHtml && tag.element == Element::kTime) role.isTime = ReadTime(tag);
  if (isHtml && !isOff) role.isFact = microdata.Begin(tag);
  if (around.isLeftOut) return role;
  if (isOff) {
    if (role.breaksWords) Break(around);
    return role;
  }
  if (tag.element == Element::kH1 && !role.leavesOut && !sawMainHeading) {
    sawMainHeading = true;
    const TextState inside = StateInside(around, role);
    role.isHeadline = inside.style.share == TextShare::kFrame && inside.isInHeader;
  }
  if (isHtml && !role.leavesOut) ReadAnchor(tag, around, role);
  if (role.isLink && !role.leavesOut) BeginLink(tag, StateInside(around, role));
  if (isHtml && IsPicture(tag) && !role.leavesOut) {
    role.breaksWords = false;
    const std::string alternative = AttributeValue(tag, Attribute::kAlt);
    if (alternative.empty()) return role;
    Break(around);
    AddText(alternative, around);
    if (notes != nullptr && around.part == 0) notes->pictureTexts.append(alternative).append(" ");
    Break(around);
    if (choice.namesPictures) AddPicture(tag, alternative, around);
    return role;
  }
  if (role.breaksWords) AddToLink(" ");
  // A table is marked in the text (see PageText::Mark): what it puts before itself may go on with
  // the last word there.
  if (role.breaksWords && !(isHtml && tag.element == Element::kTable)) Break(around);
  return role;
}

void HtmlContent::Break(const TextState& state) {
  text.Break(state.strand, state.style.share, state.style.region);
}

void HtmlContent::TakeComment(std::string_view comment) {
  while (!comment.empty() && IsMarkupBlank(comment.front())) comment.remove_prefix(1);
  while (!comment.empty() && IsMarkupBlank(comment.back())) comment.remove_suffix(1);
  if (comment == "vela:off" && !isOff) {
    isOff = true;
    ++page.use.excluded;
    if (notes != nullptr) offPart = NotePart(PartReason::kRemark, nullptr);
  } else if (comment == "vela:on") {
    isOff = false;
  }
}

// A heading is led to by its own id, by one inside, or by that of what it begins: a block, or an
// anchor, with no text between. A term of a list is a section when it has an id.
void HtmlContent::ReadAnchor(const Tag& tag, const TextState& around, ElementRole& role) {
  std::string anchor = AnchorOf(tag);
  const uint32_t outer = around.style.section;
  if (role.headingLevel != 0) {
    role.section = text.StartSection(anchor.empty() ? std::move(openAnchor) : std::move(anchor));
    openAnchor.clear();
  } else if (anchor.empty()) {
    return;
  } else if (tag.element == Element::kDt) {
    role.section = text.StartSection(std::move(anchor));
  } else if (outer != 0) {
    if (!text.HasAnchor(outer)) text.SetAnchor(outer, std::move(anchor));
  } else if (openAnchor.empty() || role.breaksWords || !openAnchorIsBlock) {
    openAnchor = std::move(anchor);
    openAnchorIsBlock = role.breaksWords;
  }
}

void HtmlContent::End(const ElementRole& role, const TextState& inside) {
  if (role.isTime) {
    isInTime = false;
    TakeTime(OneLine(std::move(timeText)), timeProperty);
    if (page.time.empty()) page.time = std::move(innerTime);
    timeText.clear();
    innerTime.clear();
  }
  if (role.isFact) microdata.End();
  if (role.isLink) EndLink();
  if (role.breaksWords) AddToLink(" ");
  if (role.breaksWords && !inside.isLeftOut) Break(inside);
}

// Links of what surrounds the content name nothing: they are the same on every page. Those that the
// page does not vouch for are left out as well.
void HtmlContent::BeginLink(const Tag& tag, const TextState& inside) {
  EndLink();
  if (inside.style.share == TextShare::kFrame || inside.isInNavigation) {
    NoteLink(LinkReason::kSurrounding, AttributeValue(tag, Attribute::kHref));
    return;
  }
  if (HoldsWord(LowerValue(tag, Attribute::kRel), "nofollow")) {
    NoteLink(LinkReason::kNoFollow, AttributeValue(tag, Attribute::kHref));
    return;
  }
  openLink.address = AttributeValue(tag, Attribute::kHref);
  openLinkRegion = inside.style.region;
}

void HtmlContent::AddToLink(std::string_view added) {
  if (openLink.address.empty() || openLink.text.size() > kLinkTextLimit) return;
  openLink.text += added.substr(0, kLinkTextLimit + 1);
}

void HtmlContent::EndLink() {
  PageLink link = std::exchange(openLink, {});
  if (link.address.empty()) return;
  const bool isTooLong = link.text.size() > kLinkTextLimit;
  if (!isTooLong) link.text = OneLine(std::move(link.text));
  if (isTooLong || link.text.empty()) {
    NoteLink(isTooLong ? LinkReason::kTooLong : LinkReason::kNoText, std::move(link.address));
    return;
  }
  const size_t bytes = sizeof link + link.address.size() + link.text.size();
  if (!TakeBytes(budget, bytes)) return;
  page.links.push_back(std::move(link));
  linkRegions.push_back(openLinkRegion);
}

// Of what surrounds the content of a page pictures get no texts, as links there name nothing. The
// text of a small picture that leads to a large one is that of both.
void HtmlContent::AddPicture(const Tag& tag, std::string alternative, const TextState& around) {
  if (around.style.share == TextShare::kFrame || around.isInNavigation) return;
  alternative = OneLine(std::move(alternative));
  if (alternative.size() > kPictureTextLimit) {
    size_t end = kPictureTextLimit;
    while ((static_cast<unsigned char>(alternative[end]) >> 6) == 2) --end;
    alternative.resize(end);
  }
  if (alternative.empty()) return;
  for (const std::string& address : {AttributeValue(tag, Attribute::kSrc), openLink.address}) {
    const size_t bytes = sizeof(PagePicture) + address.size() + alternative.size();
    if (address.empty() || !TakeBytes(budget, bytes)) continue;
    page.pictures.push_back({address, alternative});
    pictureRegions.push_back(around.style.region);
  }
}

void HtmlContent::AddText(std::string_view added, const TextState& state) {
  if (notes != nullptr) NoteText(added, state);
  if (state.isInert) return;
  if (isInTime && !isOff)
    timeText += added.substr(0, kTimeBytesLimit - std::min(kTimeBytesLimit, timeText.size()));
  if (state.isLeftOut || isOff) return;
  microdata.AddText(added);
  if (!openAnchor.empty() && added.find_first_not_of(kMarkupBlanks) != added.npos) {
    openAnchor.clear();
  }
  CountText(added, state);
  text.Append(state.strand, state.style, added);
}

void HtmlContent::CountText(std::string_view added, const TextState& state) {
  if (state.style.share == TextShare::kFrame) return;
  const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  const auto bytes = added.size() - static_cast<size_t>(std::ranges::count_if(added, isBlank));
  TextCount& count = counts[static_cast<size_t>(state.style.region)];
  count.all += bytes;
  if (state.isInNavigation) return;
  count.running += bytes;
  if (!state.isInLink) return;
  count.inLinks += bytes;
  AddToLink(added);
}

void HtmlContent::AddTitle(const std::string& title, const TextState& inside) {
  if (inside.isInert) return;
  if (page.title.empty()) page.title = OneLine(title);
  AddText(title, inside);
}

void HtmlContent::Finish() {
  EndLink();
  page.description = FactOf(page, PageFact::kDescription);
  const TextRegion region = RegionOfText();
  TextCount sum;
  for (size_t i = static_cast<size_t>(region); i < counts.size(); ++i) {
    sum.running += counts[i].running;
    sum.inLinks += counts[i].inLinks;
  }
  if (sum.running != 0) {
    page.linkShare = static_cast<float>(sum.inLinks) / static_cast<float>(sum.running);
  }
  page.use.rule = choice.rule;
  page.use.isChosen = region == TextRegion::kChosen;
  page.use.lacksChosen = choice.hasOnly && !page.use.isChosen;
  page.use.isLeftOff = isOff;
  page.use.selectors = selectors.used();
  if (notes != nullptr) {
    notes->countsFrame = !text.HasContent();
    std::string outside;
    for (size_t i = 0; i < static_cast<size_t>(region); ++i) outside += notes->texts[i];
    if (!outside.empty()) notes->parts[NotePart(PartReason::kOutside, nullptr) - 1].text = outside;
  }
  if (noindex) return;
  LeaveOutBefore(region, linkRegions, page.links);
  LeaveOutBefore(region, pictureRegions, page.pictures);
  text.CopyTo(page.body, !text.HasContent(), region);
  // Content may still be nothing but marks that take no room.
  if (page.body.empty()) text.CopyTo(page.body, true);
}

// An owner may choose elements that some page does not have, or leaves empty, and a page may call
// next to nothing its main part.
TextRegion HtmlContent::RegionOfText() const {
  const auto bytes = [this](TextRegion region) { return counts[static_cast<size_t>(region)].all; };
  if (bytes(TextRegion::kChosen) != 0) return TextRegion::kChosen;
  const uint64_t main = bytes(TextRegion::kMain);
  const bool isEnough = main != 0 && main >= (main + bytes(TextRegion::kPage)) / kMainPart;
  return choice.prefersMain && isEnough ? TextRegion::kMain : TextRegion::kPage;
}

void HtmlContent::ReadHeadElement(const Tag& tag) {
  switch (tag.element) {
    case Element::kMeta:
      ReadMeta(tag);
      break;
    case Element::kLink:
      if (page.canonical.empty() && HasAttribute(tag, Attribute::kHref) &&
          HoldsWord(LowerValue(tag, Attribute::kRel), "canonical")) {
        page.canonical = AttributeValue(tag, Attribute::kHref);
      }
      break;
    case Element::kBase:
      if (page.base.empty()) page.base = AttributeValue(tag, Attribute::kHref);
      break;
    default:
      break;
  }
}

void HtmlContent::ReadMeta(const Tag& tag) {
  if (!HasAttribute(tag, Attribute::kContent)) return;
  std::string name = MetaName(tag);
  LowerUtf8(name.data(), name.size());  // the owner's fields may have any name
  std::string content = AttributeValue(tag, Attribute::kContent);
  if (name == "robots" || name == "velabot") {
    const std::string rules = LowerAsciiCopy(content);
    if (HoldsWord(rules, "noindex") || HoldsWord(rules, "none")) noindex = true;
  }
  AddMeta(name, std::move(content), page);
}

// True when the text of the time element is wanted.
bool HtmlContent::ReadTime(const Tag& tag) {
  std::string property = LowerValue(tag, Attribute::kItemprop);
  if (!page.time.empty() && !IsDateProperty(property)) return false;
  if (HasAttribute(tag, Attribute::kDatetime)) {
    std::string time = AttributeValue(tag, Attribute::kDatetime);
    if (isInTime) {
      // One inside another that gives no time itself counts when that holds no text.
      if (innerTime.empty()) innerTime = time;
      AddDate(property, std::move(time));
    } else {
      TakeTime(std::move(time), property);
    }
    return false;
  }
  if (isInTime) return false;
  isInTime = true;
  timeProperty = std::move(property);
  return true;
}

// `property`: its itemprop, in lower case.
void HtmlContent::TakeTime(std::string time, std::string_view property) {
  AddDate(property, time);
  if (page.time.empty()) page.time = std::move(time);
}

// Keeps a date beside the meta elements when `property`, in lower case, says what it is of.
void HtmlContent::AddDate(std::string_view property, std::string date) {
  if (IsDateProperty(property)) AddMeta("itemprop:" + std::string(property), std::move(date), page);
}

void HtmlContent::AddJson(std::string_view json, const TextState& inside) {
  if (!inside.isInert) AddJsonFacts(json, budget, page);
}

}  // namespace vela::indexer
