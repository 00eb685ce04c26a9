#include "text/low_bytes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace vela {
namespace {

std::vector<size_t> PlacesBehind(LowBytes& low, std::string_view text) {
  std::vector<size_t> places;
  for (size_t at; (at = low.Next()) != text.size();) places.push_back(at);
  return places;
}

std::vector<size_t> Expected(std::string_view text, size_t from) {
  std::vector<size_t> places;
  for (size_t i = from; i < text.size(); ++i) {
    if (static_cast<unsigned char>(text[i]) <= 0x20) places.push_back(i);
  }
  return places;
}

TEST(LowBytes, EveryByteValue) {
  std::string text;
  for (int c = 0; c < 256; ++c) text += static_cast<char>(c);
  LowBytes low(text);
  const std::vector<size_t> places = PlacesBehind(low, text);
  ASSERT_EQ(places.size(), 33u);
  for (size_t i = 0; i < places.size(); ++i) EXPECT_EQ(places[i], i);
}

TEST(LowBytes, TextsOfEveryLengthFromEveryPlace) {
  std::mt19937 random(7);
  for (size_t size = 0; size < 200; ++size) {
    std::string text(size, 'x');
    for (char& c : text) {
      if (random() % 7 == 0) c = "\n \r\t"[random() % 4];
      if (random() % 7 == 0) c = '\xC3';
    }
    LowBytes low(text);
    EXPECT_EQ(PlacesBehind(low, text), Expected(text, 0)) << size;
    EXPECT_EQ(low.Next(), size);
    const size_t from = size == 0 ? 0 : random() % (size + 1);
    low.SkipTo(from);
    EXPECT_EQ(PlacesBehind(low, text), Expected(text, from)) << size << " from " << from;
  }
}

}  // namespace
}  // namespace vela
