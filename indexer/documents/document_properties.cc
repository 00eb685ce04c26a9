#include "indexer/documents/document_properties.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "indexer/extract/meta_elements.h"

namespace vela::indexer {

namespace {

struct Property {
  std::string_view element;
  std::string_view meta;
};

// Those that become meta elements; dates under the names by which pages have them.
constexpr Property kProperties[] = {
    {"creator", "author"},
    {"initial-creator", "author"},
    {"subject", "subject"},
    {"keywords", "keywords"},
    {"keyword", "keywords"},
    {"language", "language"},
    {"modified", "dcterms.modified"},
    {"created", "dcterms.date"},
    {"creation-date", "dcterms.date"},
    {"date", "dcterms.modified"},
};
constexpr std::string_view kTitle = "title";
constexpr std::string_view kDescription = "description";

const Property* PropertyOf(std::string_view element) {
  const auto* found = std::ranges::find(kProperties, element, &Property::element);
  return found == std::end(kProperties) ? nullptr : found;
}

}  // namespace

void DocumentProperties::Start(const XmlTag& tag) {
  const std::string_view name = tag.name();
  isOpen_ = name == kTitle || name == kDescription || PropertyOf(name) != nullptr;
  text_.clear();
}

void DocumentProperties::Text(std::string_view text) {
  constexpr size_t kLimit = 20000;  // of one property
  if (isOpen_) text_ += text.substr(0, kLimit - std::min(kLimit, text_.size()));
}

void DocumentProperties::End(std::string_view name) {
  if (!std::exchange(isOpen_, false)) return;
  if (name == kTitle) {
    if (page_.title.empty()) page_.title = OneLine(std::move(text_));
  } else if (name == kDescription) {
    if (page_.description.empty()) page_.description = OneLine(std::move(text_));
  } else if (const Property* property = PropertyOf(name);
             property != nullptr && MetaContent(page_, property->meta).empty()) {
    AddMeta(property->meta, std::move(text_), page_);
  }
}

}  // namespace vela::indexer
