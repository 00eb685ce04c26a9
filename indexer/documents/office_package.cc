#include "indexer/documents/office_package.h"

#include <utility>

#include "indexer/documents/document_properties.h"
#include "indexer/documents/xml_reading.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

bool IsXmlPart(std::string_view name) { return name.ends_with(".xml") || name.ends_with(".rels"); }

class RelationshipReader : public XmlHandler {
 public:
  RelationshipReader(std::string_view part, ReadingBudget& budget, Relationships& filled)
      : part_(part), budget_(budget), out_(filled) {}

  void Start(const XmlTag& tag) override {
    if (tag.name() != "Relationship") return;
    const std::string_view type = tag.Value("Type");
    const bool isInside = tag.Value("TargetMode") != "External";
    std::string target;
    if (isInside) target = ResolvePart(part_, tag.Value("Target"));
    // The folder of the part may have a long name.
    if (!TakeBytes(budget_, target.size() + sizeof(Relationship))) return;
    out_.emplace(tag.Value("Id"),
                 Relationship{.type = std::string(type.substr(type.rfind('/') + 1)),
                              .target = std::move(target)});
  }
  void End(std::string_view) override {}
  void Text(std::string_view) override {}

 private:
  std::string_view part_;
  ReadingBudget& budget_;
  Relationships& out_;
};

}  // namespace

Reason ReadRelationships(const Package& package, std::string_view part, ReadingBudget& budget,
                         Relationships& out) {
  out.clear();
  const size_t slash = part.rfind('/');
  const size_t name = slash == part.npos ? 0 : slash + 1;
  std::string relationships(part.substr(0, name));
  relationships.append("_rels/").append(part.substr(name)).append(".rels");
  if (!package.Has(relationships)) return Reason::kNone;
  RelationshipReader reader(part, budget, out);
  return ReadXml(package.Part(relationships), budget, reader);
}

std::string_view TargetOf(const Relationships& relationships, std::string_view type) {
  for (const auto& [id, relationship] : relationships) {
    if (relationship.type == type) return relationship.target;
  }
  return {};
}

Reason OpenOfficePackage(std::string_view bytes, ReadingBudget& budget, OfficePackage& office,
                         PageContent& page) {
  const Package& package = office.package;
  Reason reason = office.package.Open(bytes, &IsXmlPart, budget);
  if (reason != Reason::kNone) return reason;
  Relationships ofDocument;
  reason = ReadRelationships(package, "", budget, ofDocument);
  if (reason != Reason::kNone) return reason;
  office.main = TargetOf(ofDocument, "officeDocument");
  if (!package.Has(office.main)) return Reason::kDamaged;
  if (const std::string_view core = TargetOf(ofDocument, "core-properties"); package.Has(core)) {
    DocumentProperties properties(page);
    reason = ReadXmlBeside(package.Part(core), budget, properties);
    if (reason != Reason::kNone) return reason;
  }
  return ReadRelationships(package, office.main, budget, office.relationships);
}

bool IsGivenSheetName(std::string_view name) {
  const size_t letters = name.find_first_of("0123456789");
  return letters != name.npos && letters != 0 && name.find(' ') == name.npos &&
         name.find_first_not_of("0123456789", letters) == name.npos;
}

}  // namespace vela::indexer
