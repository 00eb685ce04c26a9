// word_places.h: in which blocks of a page its words stand, while the length of the page, and of
// its blocks, is not known yet.
//
// A place is dropped when its block is that of a place kept, however long the page becomes: one
// between two others that are no further apart than a block of the page so far. Then at most one
// edge of a block lies between the two. Of the places of a word some hundred stay, on a page of any
// length.
#pragma once

#include <cstdint>
#include <vector>

namespace vela::indexer {

constexpr uint32_t kNoPlace = 0xFFFFFFFF;

// The last two of the places that are kept of one word.
struct LastPlaces {
  uint32_t before = kNoPlace;
  uint32_t last = kNoPlace;
};

// A place kept of the word that has this slot among the words of the page.
struct PlaceOfWord {
  uint32_t slot = 0;
  uint32_t place = 0;
};

// Notes one more place, among the words of the page's running text, of the word with that slot.
// Older places that are kept go to `older`.
void NotePlace(uint32_t slot, uint32_t place, LastPlaces& word, std::vector<PlaceOfWord>& older);

}  // namespace vela::indexer
