// html_elements.h: the elements that the reading of a page tells apart, and what is fixed for each.
#pragma once

#include <cstdint>
#include <string_view>

namespace vela::indexer {

enum class Element : uint8_t {
  kOther,  // any other name
#define VELA_ELEMENT(name, identifier, traits) identifier,
#include "indexer/extract/html_elements.inc"
#undef VELA_ELEMENT
  kCount
};

// Of how elements nest. The names are those of the HTML standard where it has one.
constexpr uint32_t kVoid = 1U << 0;           // has no content and no end tag
constexpr uint32_t kFormatting = 1U << 1;     // its end tag leaves blocks inside it open
constexpr uint32_t kSpecial = 1U << 2;        // no end tag of an ordinary element reaches past it
constexpr uint32_t kScope = 1U << 3;          // no end tag of a block reaches past it
constexpr uint32_t kEndsParagraph = 1U << 4;  // its start tag ends an open p
constexpr uint32_t kEndsInScope = 1U << 5;    // its end tag ends all that is open inside it
constexpr uint32_t kImpliedEnd = 1U << 6;     // its end tag may be left out
constexpr uint32_t kEndsForeign = 1U << 7;    // its start tag ends the drawing or formula around it
constexpr uint32_t kRawText = 1U << 8;        // its content is characters up to its end tag
constexpr uint32_t kTablePart = 1U << 9;      // has a meaning only inside a table
constexpr uint32_t kNoFrameset = 1U << 10;    // shows something: no frameset may follow
// Of what it means for the text.
constexpr uint32_t kInline = 1U << 11;     // words go on across its edges
constexpr uint32_t kInvisible = 1U << 12;  // takes no room: words go on across all of it
constexpr uint32_t kNeverText = 1U << 13;  // no visitor reads its content

// The element of a name in letters of either case; kOther when it is none of the table.
Element FindElement(std::string_view name);

// In lower case; empty of kOther.
std::string_view ElementName(Element element);

uint32_t ElementTraits(Element element);

inline bool Has(Element element, uint32_t traits) { return (ElementTraits(element) & traits) != 0; }

}  // namespace vela::indexer
