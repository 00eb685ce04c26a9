#include "indexer/collect/word_places.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "format/word_map.h"

namespace vela::indexer {
namespace {

// A word as it is kept, and all its places.
struct NotedWord {
  LastPlaces last;
  std::vector<PlaceOfWord> older;
  std::vector<uint32_t> all;

  void Note(uint32_t place) {
    NotePlace(7, place, last, older);
    all.push_back(place);
  }
};

unsigned BlocksOf(const std::vector<uint32_t>& places, uint32_t blockWords) {
  unsigned blocks = 0;
  for (const uint32_t place : places) blocks |= ProximityBit(place / blockWords);
  return blocks;
}

std::vector<uint32_t> Kept(const NotedWord& word) {
  std::vector<uint32_t> kept;
  for (const PlaceOfWord& each : word.older) {
    EXPECT_EQ(each.slot, 7u);
    kept.push_back(each.place);
  }
  for (const uint32_t place : {word.last.before, word.last.last}) {
    if (place != kNoPlace) kept.push_back(place);
  }
  return kept;
}

TEST(WordPlaces, FewPlacesAreAllKept) {
  NotedWord word;
  EXPECT_EQ(Kept(word), std::vector<uint32_t>());
  word.Note(40);
  EXPECT_EQ(Kept(word), std::vector<uint32_t>({40}));
  word.Note(40);
  word.Note(3);
  EXPECT_EQ(Kept(word), std::vector<uint32_t>({3, 40}));
}

// Blocks have 32 words at least: 10 .. 42 may lie in two, 10 .. 43 in three.
TEST(WordPlaces, APlaceBetweenTwoNearOnesIsDropped) {
  NotedWord word;
  for (const uint32_t place : {10u, 30u, 42u}) word.Note(place);
  EXPECT_EQ(Kept(word), std::vector<uint32_t>({10, 42}));
  word.Note(43);
  EXPECT_EQ(Kept(word), std::vector<uint32_t>({10, 42, 43}));
  word.Note(42);
  EXPECT_EQ(Kept(word), std::vector<uint32_t>({10, 42, 43}));
}

TEST(WordPlaces, TheBlocksAreThoseOfAllPlacesHoweverLongThePageBecomes) {
  std::mt19937 engine(11);
  const auto random = [&engine] { return static_cast<uint32_t>(engine()); };
  for (int round = 0; round < 300; ++round) {
    NotedWord word;
    const uint32_t step = 1 + random() % 60;
    uint32_t place = 0;
    for (int i = 0; i < 300; ++i) {
      place += random() % step;
      // As forms do, some come late.
      word.Note(random() % 8 == 0 ? place - std::min(place, random() % 50) : place);
    }
    const uint32_t last = *std::ranges::max_element(word.all);
    for (uint32_t pageWords = last + 1; pageWords < last + 4000; pageWords += 1 + random() % 60) {
      const uint32_t blockWords = ProximityBlockWords(pageWords);
      ASSERT_EQ(BlocksOf(Kept(word), blockWords), BlocksOf(word.all, blockWords))
          << round << ' ' << pageWords;
    }
  }
}

TEST(WordPlaces, FewAreKeptOfAWordThatStandsEverywhere) {
  NotedWord word;
  for (uint32_t place = 0; place < 10'000'000; ++place) NotePlace(7, place, word.last, word.older);
  EXPECT_LT(word.older.size(), 200u);
}

}  // namespace
}  // namespace vela::indexer
