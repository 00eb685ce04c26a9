// element_selector.h: selectors of elements, as style sheets have them: the part of that language
// by which an owner says what of a page is its content.
//
// Understood are names of elements, "*", ".class", "#id", [attribute] with =, ~=, |=, ^=, $=, *=
// and the flags i and s, :not(...) of any of these but no more than one to an item, the blank and
// ">" between them, and lists with ",".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// How the value of an attribute is compared.
enum class ValueTest : uint8_t {
  kAny,         // [a]
  kEqual,       // [a=v]
  kHoldsWord,   // [a~=v]: one of the words between blanks
  kBeginsName,  // [a|=v]: all of it, or up to a "-"
  kBegins,      // [a^=v]
  kEnds,        // [a$=v]
  kHolds,       // [a*=v]
};

struct SimpleSelector {
  enum class Kind : uint8_t { kElement, kId, kClass, kAttribute };
  Kind kind = Kind::kElement;
  std::string name;  // of elements and attributes in lower case
  ValueTest test = ValueTest::kAny;
  std::string value;         // in lower case where case does not count; may be empty
  bool ignoresCase = false;  // of the value
  bool isNegated = false;    // in :not(...)
};

// What holds of one element. Without tests any fits.
struct CompoundSelector {
  bool isChild = false;  // its parent fits the one before; else any element around it
  std::vector<SimpleSelector> tests;
};

struct ElementSelector {
  std::string text;                     // as the owner wrote it
  std::vector<CompoundSelector> parts;  // from the outermost in; never empty
  uint32_t number = 0;                  // of all selectors of the configuration
};

// What stands below another part of its selector is followed by at most so many marks, of all
// selectors that hold for a page together.
constexpr size_t kOuterPartsLimit = 64;

struct SelectorFault {
  size_t at = 0;     // the place in the text, in bytes
  std::string what;  // a sentence; empty: there is none
};

// Reads a list of selectors. Whatever is wrong with it stands in `fault` then, and the list is
// empty.
std::vector<ElementSelector> ParseSelectors(std::string_view text, SelectorFault& fault);

}  // namespace vela::indexer
