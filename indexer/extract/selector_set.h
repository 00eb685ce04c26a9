// selector_set.h: the owner's selectors, compared with the elements of a page as they begin.
//
// A selector of several parts ("#menu > a") is followed from the outside in: what is open around an
// element holds which parts it fits already, as bits, so that nothing has to be looked up when a
// part further in comes. Of an element only those parts are looked at whose rarest test holds, its
// id or one of its classes as a rule. An element costs the length of its tag, and at most one look
// at each part.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "indexer/config/element_selector.h"
#include "indexer/extract/html_tokens.h"
#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

enum class SelectorUse : uint8_t { kExclude, kOnly };

// Which parts of selectors are fitted by what is open, a bit each.
struct SelectorPath {
  uint64_t parent = 0;     // by the innermost element
  uint64_t ancestors = 0;  // by that or any around it
};

// What an element fits.
struct SelectorFit {
  bool isExcluded = false;
  bool isChosen = false;
  uint32_t excludedBy = 0;  // the number of such a selector
  uint64_t parts = 0;       // for the path inside it
};

class SelectorSet {
 public:
  // All that are added together keep to kOuterPartsLimit.
  void Add(const ElementSelector& selector, SelectorUse use);

  bool empty() const { return parts_.empty(); }
  // The names of attributes that have to be given to the tags.
  const AttributeNames& askedAttributes() const { return asked_; }

 private:
  friend class SelectorMatching;

  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
  };
  using Names = std::unordered_map<std::string, uint32_t, NameHash, std::equal_to<>>;  // tests
  struct ValueTestOf {
    uint32_t number;  // of the test
    ValueTest test;
    bool ignoresCase;
    std::string value;
  };
  struct KnownAttribute {
    Attribute attribute;
    std::vector<ValueTestOf> tests;
  };
  struct Part {
    std::vector<uint32_t> all;   // tests that hold
    std::vector<uint32_t> none;  // and that do not
    uint64_t before = 0;         // the bit of the part that it stands below; 0: it is the first
    bool isChild = false;
    uint64_t bit = 0;  // its own, when another stands below it; 0: it is the last
    SelectorUse use = SelectorUse::kExclude;
    uint32_t selector = 0;
  };

  uint32_t TestOf(const SimpleSelector& simple);
  uint32_t NewTest();
  std::vector<ValueTestOf>& TestsOf(const std::string& attribute);

  Names elements_;
  Names ids_;
  Names classes_;
  std::vector<KnownAttribute> known_;
  AttributeNames asked_;
  std::vector<std::vector<ValueTestOf>> testsOfAsked_;  // beside these
  std::vector<Part> parts_;
  std::vector<std::vector<uint32_t>> partsOfTest_;  // of each test, the parts to look at
  std::vector<uint32_t> partsOfAny_;                // to look at for every element
  uint32_t bits_ = 0;                               // given out
};

// The comparing, of one page.
class SelectorMatching {
 public:
  // Both must outlive this.
  SelectorMatching(const SelectorSet& set, ReadingBudget& takenFrom);

  // The element of `tag` begins inside of what `path` says.
  SelectorFit Fit(const Tag& tag, const SelectorPath& path);

  // The selectors that fitted an element, by their numbers, each once.
  const std::vector<uint32_t>& used() const { return used_; }

 private:
  void Hold(uint32_t test);
  void HoldName(const SelectorSet::Names& names, std::string_view name);
  void HoldClasses(std::string_view classes);
  void HoldTests(const std::vector<SelectorSet::ValueTestOf>& tests, std::string_view value);
  void Look(uint32_t part, const SelectorPath& path, SelectorFit& fit);

  const SelectorSet& set_;
  ReadingBudget& budget_;
  uint64_t element_ = 0;          // counts
  std::vector<uint64_t> heldAt_;  // of each test, the last element that it held for
  std::vector<uint32_t> held_;    // for this element
  std::vector<bool> isUsed_;      // beside the parts
  std::vector<uint32_t> used_;
  std::string scratch_;
  std::string lower_;
};

}  // namespace vela::indexer
