// meta_fields.h: the custom meta fields of a site: their definitions in the settings file, and
// their values behind the category set of a page's record (page_info.h).
//
// A definition in the settings file, below the line `metafields`, a line each:
//
//   kind          a MetaKind, or any other number for a text
//   name          in request parameters
//   label         in the form
//   extra text    read, and shown nowhere
//   method        how the search compares, 0 unless one of the methods below
//   list values   how many, then a line each for the kinds with a list
//
// The values of a page, in the order of the definitions, without padding:
//
//   kind             size       value                                      no value
//   number, money    4          little-endian, signed; money in hundredths kNoMetaNumber
//   one of a list    1          its place in the list, from 0              kNoMetaChoice
//   several of it    1 + n      n, then 1 each                             n is 0
//   any other, text  up to NUL  the text, ended by a NUL                   only the NUL
//
// Data that ends early leaves the field and those behind it without a value.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

enum MetaKind : int32_t {
  kMetaNumeric = 0,
  kMetaText = 1,  // as every other number that is not listed here
  kMetaDropDown = 2,
  kMetaMultiple = 3,
  kMetaMoney = 4,
};
constexpr bool HasMetaList(int32_t kind) { return kind == kMetaDropDown || kind == kMetaMultiple; }

// How a page's value is compared with the one asked for. Any other number is the method 0.
enum MetaNumberMethod : int32_t { kNumberEqual = 0, kNumberAtMost = 1, kNumberAtLeast = 2 };
enum MetaTextMethod : int32_t { kTextContains = 0, kTextEqual = 1, kTextBegins = 2 };
enum MetaChoicesMethod : int32_t { kChoicesAny = 0, kChoicesAll = 1 };

inline constexpr size_t kMetaDefinitionLines = 6;

inline constexpr size_t kMetaNumberWidth = 4;
inline constexpr int32_t kNoMetaNumber = INT32_MIN;

inline constexpr size_t kMetaChoiceWidth = 1;
inline constexpr uint8_t kNoMetaChoice = 255;
inline constexpr size_t kMetaChoiceLimit = kNoMetaChoice;  // values of a list: 0 to 254
inline constexpr char kMetaTextEnd = '\0';

}  // namespace vela
