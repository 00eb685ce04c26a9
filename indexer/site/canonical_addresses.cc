#include "indexer/site/canonical_addresses.h"

#include "indexer/site/address.h"

namespace vela::indexer {

// Whether `from` was left out as a copy of `own`, or of a copy of it: one of them must stay.
bool CanonicalAddresses::LeadsBack(const std::string& from, const std::string& own) const {
  constexpr int kStepLimit = 100;
  auto copy = copies_.find(from);
  for (int step = 0; step < kStepLimit && copy != copies_.end(); ++step) {
    if (copy->second == own) return true;
    copy = copies_.find(copy->second);
  }
  return false;
}

Reason CanonicalAddresses::Choose(const std::string& own, const std::string& canonical,
                                  std::string& address) {
  address = own;
  if (canonical.empty() || !IsBelow(canonical, base_)) return Reason::kNone;
  const std::string named = InSpellingOf(base_, canonical);
  if (named == own) return Reason::kNone;
  const bool isItem = items_.contains(named);
  if (isItem && LeadsBack(named, own)) return Reason::kNone;
  if (isItem) {
    copies_.emplace(own, named);
    return Reason::kCopy;
  }
  if (!used_.insert(named).second) return Reason::kCopy;
  address = named;
  return Reason::kNone;
}

}  // namespace vela::indexer
