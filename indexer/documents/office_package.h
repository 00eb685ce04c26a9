// office_package.h: what the formats of Office Open XML have in common: parts that name each other
// by relationships, and the document's properties.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "indexer/documents/package.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

struct Relationship {
  std::string type;    // what its address ends in: "styles"
  std::string target;  // name of the part; empty for what lies outside of the document
};

// By their id, in the order of these.
using Relationships = std::map<std::string, Relationship, std::less<>>;

// Of the part of that name; "" is the document. Empty when the part has none.
[[nodiscard]] Reason ReadRelationships(const Package& package, std::string_view part,
                                       ReadingBudget& budget, Relationships& out);

// The target of the first relationship of that type; empty when there is none.
std::string_view TargetOf(const Relationships& relationships, std::string_view type);

struct OfficePackage {
  Package package;
  std::string main;             // name of the document's main part
  Relationships relationships;  // of that
};

// Unpacks the parts that are XML, finds the main part and takes title, description, author,
// subject, keywords, language and dates into `page`. kDamaged: there is no main part.
[[nodiscard]] Reason OpenOfficePackage(std::string_view bytes, ReadingBudget& budget,
                                       OfficePackage& office, PageContent& page);

// Whether a sheet of a table has the name that programs give it ("Sheet1"), which says nothing.
bool IsGivenSheetName(std::string_view name);

}  // namespace vela::indexer
