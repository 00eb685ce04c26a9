#include "indexer/extract/html_elements.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "text/ascii.h"

namespace vela::indexer {

namespace {

struct Row {
  std::string_view name;
  uint32_t traits;
};

constexpr Row kRows[] = {
    {"", 0},
#define VELA_ELEMENT(name, identifier, traits) {name, traits},
#include "indexer/extract/html_elements.inc"
#undef VELA_ELEMENT
};

static_assert(std::size(kRows) == static_cast<size_t>(Element::kCount));
static_assert(std::ranges::is_sorted(kRows, {}, &Row::name));

constexpr size_t kLetters = 26;

// Of each letter the first row whose name begins with it or a later one; one more for the end.
constexpr std::array<uint8_t, kLetters + 1> FirstRows() {
  std::array<uint8_t, kLetters + 1> first{};
  size_t row = 1;
  for (size_t letter = 0; letter <= kLetters; ++letter) {
    while (row < std::size(kRows) && kRows[row].name[0] < static_cast<char>('a' + letter)) ++row;
    first[letter] = static_cast<uint8_t>(row);
  }
  return first;
}
constexpr std::array<uint8_t, kLetters + 1> kFirstRows = FirstRows();

}  // namespace

Element FindElement(std::string_view name) {
  if (name.empty() || !IsAlpha(name[0])) return Element::kOther;
  const auto letter = static_cast<size_t>(ToLowerAscii(name[0]) - 'a');
  for (size_t row = kFirstRows[letter]; row < kFirstRows[letter + 1]; ++row) {
    const std::string_view known = kRows[row].name;
    if (known.size() == name.size() &&
        std::ranges::equal(known, name, {}, {}, [](char c) { return ToLowerAscii(c); })) {
      return static_cast<Element>(row);
    }
  }
  return Element::kOther;
}

std::string_view ElementName(Element element) { return kRows[static_cast<size_t>(element)].name; }

uint32_t ElementTraits(Element element) { return kRows[static_cast<size_t>(element)].traits; }

}  // namespace vela::indexer
