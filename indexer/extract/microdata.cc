#include "indexer/extract/microdata.h"

#include <algorithm>
#include <utility>

#include "indexer/extract/declared_facts.h"
#include "indexer/extract/meta_elements.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

constexpr size_t kValueBytesLimit = 2000;
constexpr size_t kNameBytesLimit = 100;
constexpr size_t kDepthLimit = 16;
constexpr std::string_view kPrefix = "itemprop:";

// The attribute that holds the value of a property; kCount: its text does.
Attribute ValueAttribute(const Tag& tag, std::string_view property) {
  switch (tag.element) {
    case Element::kImg:
    case Element::kEmbed:
    case Element::kIframe:
    case Element::kSource:
      return Attribute::kSrc;
    case Element::kLink:
    case Element::kArea:
      return Attribute::kHref;
    case Element::kA:
      // Of others what it is called says more than where it leads.
      return property == "url" || property == "image" ? Attribute::kHref : Attribute::kCount;
    default:
      return HasAttribute(tag, Attribute::kContent) ? Attribute::kContent : Attribute::kCount;
  }
}

// The first of several.
std::string PropertyOf(const Tag& tag) {
  if (!HasAttribute(tag, Attribute::kItemprop)) return {};
  const std::string value = LowerAsciiCopy(AttributeValue(tag, Attribute::kItemprop));
  const size_t begin = value.find_first_not_of(kMarkupBlanks);
  if (begin == value.npos) return {};
  return value.substr(begin, value.find_first_of(kMarkupBlanks, begin) - begin);
}

}  // namespace

bool Microdata::Begin(const Tag& tag) {
  const bool begins = HasAttribute(tag, Attribute::kItemscope) && !Has(tag.element, kVoid);
  if (!begins && !HasAttribute(tag, Attribute::kItemprop)) return false;
  if (tag.element == Element::kMeta || tag.element == Element::kTime) return false;
  Open* item = Item();
  if ((item == nullptr && !begins) || open_.size() == kDepthLimit) return false;
  const std::string property = PropertyOf(tag);
  const bool isProperty = item != nullptr && !property.empty();
  Open next = {.isItem = begins,
               .isBeside = item != nullptr && item->isBeside,
               .name = isProperty ? item->name + property : std::string()};
  if (begins) {
    BeginItem(tag, next);
    return true;
  }
  const Attribute attribute = ValueAttribute(tag, property);
  if (attribute != Attribute::kCount) {
    TakeProperty(next, OneLine(AttributeValue(tag, attribute)));
    return false;
  }
  if (Has(tag.element, kVoid)) return false;
  open_.push_back(std::move(next));
  return true;
}

// One that is no property of another is about something of its own.
void Microdata::BeginItem(const Tag& tag, Open& item) {
  if (!item.name.empty()) {
    item.name += '.';
  } else {
    const std::string type = LocalName(AttributeValue(tag, Attribute::kItemtype));
    item.isBeside = !TellsOfPage(type);
    if (!item.isBeside) Add("type", type);
  }
  open_.push_back(std::move(item));
}

// The innermost that is open; null when there is none.
Microdata::Open* Microdata::Item() {
  const auto item =
      std::find_if(open_.rbegin(), open_.rend(), [](const Open& each) { return each.isItem; });
  return item == open_.rend() ? nullptr : &*item;
}

void Microdata::TakeProperty(const Open& property, const std::string& value) {
  if (Open* item = Item(); item != nullptr) {
    if (item->called.empty() && property.name == item->name + "name") item->called = value;
    if (item->url.empty() && property.name == item->name + "url") item->url = value;
  }
  if (!property.isBeside) Add(property.name, value);
}

void Microdata::AddText(std::string_view text) {
  if (open_.empty() || open_.back().isItem) return;
  std::string& into = open_.back().text;
  // One byte more tells that it is too long.
  into += text.substr(0, kValueBytesLimit + 1 - std::min(kValueBytesLimit + 1, into.size()));
}

void Microdata::End() {
  if (open_.empty()) return;
  Open ended = std::move(open_.back());
  open_.pop_back();
  if (ended.isItem) {
    if (ended.isBeside || ended.name.empty()) return;
    ended.name.pop_back();
    Add(ended.name, ended.called.empty() ? ended.url : ended.called);
    return;
  }
  // Text inside of two properties is the text of both.
  AddText(ended.text);
  if (ended.text.size() <= kValueBytesLimit) TakeProperty(ended, OneLine(std::move(ended.text)));
}

void Microdata::Add(const std::string& name, std::string value) {
  if (name.empty() || name.size() > kNameBytesLimit || value.size() > kValueBytesLimit) return;
  AddMeta(std::string(kPrefix) + name, std::move(value), page_);
}

}  // namespace vela::indexer
