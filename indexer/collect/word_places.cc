#include "indexer/collect/word_places.h"

#include "format/word_map.h"

namespace vela::indexer {

void NotePlace(uint32_t slot, uint32_t place, LastPlaces& word, std::vector<PlaceOfWord>& older) {
  if (place == word.last || place == word.before) return;
  if (word.last == kNoPlace) {
    word.last = place;
    return;
  }
  if (word.before == kNoPlace) {
    word.before = place < word.last ? place : word.last;
    word.last = place < word.last ? word.last : place;
    return;
  }
  if (place < word.before) {  // forms come behind the words of their chunk
    older.push_back({slot, place});
    return;
  }
  // The blocks of the finished page are at least as long.
  const uint32_t blockWords = ProximityBlockWords(place < word.last ? word.last : place);
  if (place < word.last) {
    if (word.last - word.before > blockWords) older.push_back({slot, place});
    return;
  }
  if (place - word.before > blockWords) {
    older.push_back({slot, word.before});
    word.before = word.last;
  }
  word.last = place;
}

}  // namespace vela::indexer
