// document_properties.h: what a document says of itself in the terms of Dublin Core, as the formats
// that are XML do it.
#pragma once

#include <string>
#include <string_view>

#include "indexer/documents/xml_reading.h"
#include "indexer/extract/page.h"

namespace vela::indexer {

// Takes title, description, author, subject, keywords, language and dates from the elements that
// are told, wherever they stand. The first of each counts.
class DocumentProperties : public XmlHandler {
 public:
  explicit DocumentProperties(PageContent& filled) : page_(filled) {}

  void Start(const XmlTag& tag) override;
  void End(std::string_view name) override;
  void Text(std::string_view text) override;

 private:
  PageContent& page_;
  bool isOpen_ = false;  // an element whose text is wanted
  std::string text_;
};

}  // namespace vela::indexer
