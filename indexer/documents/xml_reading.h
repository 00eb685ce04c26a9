// xml_reading.h: the elements and texts of a part of a document that is XML.
#pragma once

#include <string_view>

#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// A start tag, while it is told.
class XmlTag {
 public:
  XmlTag(std::string_view qualified, const char** attributes);

  std::string_view name() const { return name_; }  // without its namespace
  // The value of the attribute of that name, in whatever namespace; empty when there is none.
  std::string_view Value(std::string_view name) const;
  // The same of one in a namespace, beside another of its name in none.
  std::string_view QualifiedValue(std::string_view name) const;

 private:
  std::string_view Find(std::string_view name, bool qualifiedOnly) const;

  std::string_view name_;
  const char** attributes_;
};

// Is told what a part holds, in its order. Names are without their namespaces: in the formats read
// here none means two things where it matters.
class XmlHandler {
 public:
  virtual ~XmlHandler() = default;
  virtual void Start(const XmlTag& tag) = 0;
  virtual void End(std::string_view name) = 0;
  virtual void Text(std::string_view text) = 0;
};

// Tells `handler` what `xml` holds. kDamaged: it is not well-formed, or declares entities, which no
// document has a use for. Else kNone, or why `budget` ended the reading. Nothing outside of `xml`
// is read. Throws std::bad_alloc, also for one that the handler throws.
[[nodiscard]] Reason ReadXml(std::string_view xml, ReadingBudget& budget, XmlHandler& handler);

// The same of a part beside the text, such as the properties: one that is damaged costs no more
// than what it would have told.
[[nodiscard]] Reason ReadXmlBeside(std::string_view xml, ReadingBudget& budget,
                                   XmlHandler& handler);

}  // namespace vela::indexer
