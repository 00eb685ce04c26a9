#include "indexer/extract/selector_set.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

static_assert(kOuterPartsLimit <= 64);  // the bits of a path

bool HoldsWordAmong(std::string_view words, std::string_view word) {
  for (size_t at = words.find_first_not_of(kMarkupBlanks); at < words.size();) {
    const size_t end = std::min(words.find_first_of(kMarkupBlanks, at), words.size());
    if (words.substr(at, end - at) == word) return true;
    at = words.find_first_not_of(kMarkupBlanks, end);
  }
  return false;
}

// As style sheets have it: an empty text begins, ends and stands in none.
bool Holds(ValueTest test, std::string_view value, std::string_view wanted) {
  switch (test) {
    case ValueTest::kAny:
      return true;
    case ValueTest::kEqual:
      return value == wanted;
    case ValueTest::kHoldsWord:
      return HoldsWordAmong(value, wanted);
    case ValueTest::kBeginsName:
      return value.starts_with(wanted) &&
             (value.size() == wanted.size() || value[wanted.size()] == '-');
    case ValueTest::kBegins:
      return !wanted.empty() && value.starts_with(wanted);
    case ValueTest::kEnds:
      return !wanted.empty() && value.ends_with(wanted);
    case ValueTest::kHolds:
      // In linear time, whatever both are.
      return !wanted.empty() &&
             memmem(value.data(), value.size(), wanted.data(), wanted.size()) != nullptr;
  }
  return false;
}

}  // namespace

uint32_t SelectorSet::NewTest() {
  partsOfTest_.emplace_back();
  return static_cast<uint32_t>(partsOfTest_.size() - 1);
}

std::vector<SelectorSet::ValueTestOf>& SelectorSet::TestsOf(const std::string& attribute) {
  const Attribute known = FindAttribute(attribute);
  if (known != Attribute::kCount) {
    const auto found = std::ranges::find(known_, known, &KnownAttribute::attribute);
    if (found != known_.end()) return found->tests;
    return known_.emplace_back(KnownAttribute{known, {}}).tests;
  }
  const size_t place = asked_.Find(attribute);
  if (place != AttributeNames::kNone) return testsOfAsked_[place];
  asked_.Add(attribute);
  return testsOfAsked_.emplace_back();
}

uint32_t SelectorSet::TestOf(const SimpleSelector& simple) {
  if (simple.kind == SimpleSelector::Kind::kAttribute) {
    std::vector<ValueTestOf>& tests = TestsOf(simple.name);
    for (const ValueTestOf& known : tests) {
      if (known.test == simple.test && known.ignoresCase == simple.ignoresCase &&
          known.value == simple.value) {
        return known.number;
      }
    }
    tests.push_back({NewTest(), simple.test, simple.ignoresCase, simple.value});
    return tests.back().number;
  }
  Names& names = simple.kind == SimpleSelector::Kind::kElement ? elements_
                 : simple.kind == SimpleSelector::Kind::kId    ? ids_
                                                               : classes_;
  const auto [entry, isNew] = names.try_emplace(simple.name, 0);
  if (isNew) entry->second = NewTest();
  return entry->second;
}

void SelectorSet::Add(const ElementSelector& selector, SelectorUse use) {
  assert(selector.parts.size() - 1 <= kOuterPartsLimit - bits_);
  uint64_t before = 0;
  for (const CompoundSelector& compound : selector.parts) {
    Part part = {.all = {}, .none = {}, .before = before, .isChild = compound.isChild};
    part.use = use;
    part.selector = selector.number;
    // What is rarest on a page, by which the part is looked up.
    constexpr SimpleSelector::Kind kRarestFirst[] = {
        SimpleSelector::Kind::kId, SimpleSelector::Kind::kClass, SimpleSelector::Kind::kAttribute,
        SimpleSelector::Kind::kElement};
    for (const SimpleSelector::Kind kind : kRarestFirst) {
      for (const SimpleSelector& simple : compound.tests) {
        if (simple.kind != kind) continue;
        (simple.isNegated ? part.none : part.all).push_back(TestOf(simple));
      }
    }
    if (&compound != &selector.parts.back()) part.bit = uint64_t{1} << bits_++;
    before = part.bit;
    std::vector<uint32_t>& lookedUpBy =
        part.all.empty() ? partsOfAny_ : partsOfTest_[part.all.front()];
    lookedUpBy.push_back(static_cast<uint32_t>(parts_.size()));
    parts_.push_back(std::move(part));
  }
}

SelectorMatching::SelectorMatching(const SelectorSet& set, ReadingBudget& takenFrom)
    : set_(set), budget_(takenFrom), heldAt_(set.partsOfTest_.size()), isUsed_(set.parts_.size()) {}

void SelectorMatching::Hold(uint32_t test) {
  if (heldAt_[test] == element_) return;
  heldAt_[test] = element_;
  held_.push_back(test);
}

void SelectorMatching::HoldName(const SelectorSet::Names& names, std::string_view name) {
  const auto found = names.find(name);
  if (found != names.end()) Hold(found->second);
}

void SelectorMatching::HoldClasses(std::string_view classes) {
  for (size_t at = classes.find_first_not_of(kMarkupBlanks); at < classes.size();) {
    const size_t end = std::min(classes.find_first_of(kMarkupBlanks, at), classes.size());
    HoldName(set_.classes_, classes.substr(at, end - at));
    at = classes.find_first_not_of(kMarkupBlanks, end);
  }
}

void SelectorMatching::HoldTests(const std::vector<SelectorSet::ValueTestOf>& tests,
                                 std::string_view value) {
  const bool lowers = std::ranges::any_of(tests, &SelectorSet::ValueTestOf::ignoresCase);
  if (lowers) lower_ = LowerAsciiCopy(value);
  TakeSteps(budget_, tests.size());
  for (const SelectorSet::ValueTestOf& each : tests) {
    if (Holds(each.test, each.ignoresCase ? std::string_view(lower_) : value, each.value)) {
      Hold(each.number);
    }
  }
}

void SelectorMatching::Look(uint32_t number, const SelectorPath& path, SelectorFit& fit) {
  const SelectorSet::Part& part = set_.parts_[number];
  const uint64_t around = part.isChild ? path.parent : path.ancestors;
  if ((around & part.before) != part.before) return;
  const auto holds = [this](uint32_t test) { return heldAt_[test] == element_; };
  if (!std::ranges::all_of(part.all, holds) || std::ranges::any_of(part.none, holds)) return;
  fit.parts |= part.bit;
  if (part.bit != 0) return;
  (part.use == SelectorUse::kExclude ? fit.isExcluded : fit.isChosen) = true;
  if (part.use == SelectorUse::kExclude) fit.excludedBy = part.selector;
  if (isUsed_[number]) return;
  isUsed_[number] = true;
  used_.push_back(part.selector);
}

SelectorFit SelectorMatching::Fit(const Tag& tag, const SelectorPath& path) {
  ++element_;
  held_.clear();
  if (!set_.elements_.empty()) HoldName(set_.elements_, LowerAsciiCopy(tag.name));
  if (!set_.ids_.empty() && HasAttribute(tag, Attribute::kId)) {
    HoldName(set_.ids_, ResolvedValue(tag, Attribute::kId, scratch_));
  }
  if (!set_.classes_.empty() && HasAttribute(tag, Attribute::kClass)) {
    HoldClasses(ResolvedValue(tag, Attribute::kClass, scratch_));
  }
  for (const auto& [attribute, tests] : set_.known_) {
    if (!HasAttribute(tag, attribute)) continue;
    HoldTests(tests, ResolvedValue(tag, attribute, scratch_));
  }
  for (const Tag::AskedValue& asked : tag.askedValues) {
    HoldTests(set_.testsOfAsked_[asked.name], ResolvedValue(tag, asked, scratch_));
  }
  SelectorFit fit;
  for (const uint32_t test : held_) {
    TakeSteps(budget_, set_.partsOfTest_[test].size());
    for (const uint32_t part : set_.partsOfTest_[test]) Look(part, path, fit);
  }
  for (const uint32_t part : set_.partsOfAny_) Look(part, path, fit);
  return fit;
}

}  // namespace vela::indexer
