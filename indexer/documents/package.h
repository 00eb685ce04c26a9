// package.h: the parts of a document that is a ZIP archive, unpacked within a budget.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

class Package {
 public:
  // Unpacks the parts whose names `isWanted` takes; of several of one name the first. Archives in
  // the archive stay packed. kDamaged: it is no ZIP archive, cut short, or a part does not have its
  // checksum. kEncrypted: a wanted part is. Else kNone, or why `budget` ended the reading.
  [[nodiscard]] Reason Open(std::string_view zip, bool (*isWanted)(std::string_view name),
                            ReadingBudget& budget);

  bool Has(std::string_view name) const { return parts_.find(name) != parts_.end(); }
  // Empty when there is none.
  std::string_view Part(std::string_view name) const;

 private:
  std::map<std::string, std::string, std::less<>> parts_;
};

// What a reference in the part `from` leads to: "../a/b.xml" in "c/d.xml" to "a/b.xml". A beginning
// "/" is the archive itself. Empty when it leads out of the archive.
std::string ResolvePart(std::string_view from, std::string_view reference);

}  // namespace vela::indexer
