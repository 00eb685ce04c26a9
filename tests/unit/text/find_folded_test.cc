#include "text/find_folded.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

TEST(FindFolded, Table) {
  const struct {
    const char* what;
    std::string text;
    std::string piece;
    size_t from;
    size_t place;
  } cases[] = {
      {"letters in either case", "xxAbCxx", "aBc", 0, 2},
      {"a sign is no letter with another bit", "x@y`z[", "`", 0, 3},
      {"and the other way round", "x{y[z", "[", 0, 3},
      {"bytes from 0x80 on are themselves", "\xC3\x9C \xC3\xBC", "\xC3\xBC", 0, 3},
      {"from a place on", "abcabc", "abc", 1, 3},
      {"at the very end", "xxxabc", "abc", 0, 3},
      {"longer than the text", "ab", "abc", 0, std::string::npos},
      {"the ends fit, the middle does not", "aXb aYb", "ayb", 0, 4},
      {"nowhere", "abcabd", "abe", 0, std::string::npos},
      {"from behind the end", "abc", "c", 3, std::string::npos},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FindFolded(c.text, c.piece, c.from), c.place);
  }
}

TEST(FindFolded, EveryPlaceAroundWhatIsComparedAtOnce) {
  for (size_t size = 1; size < 200; ++size) {
    for (size_t place = 0; place + 3 <= size; ++place) {
      std::string text(size, 'k');
      text.replace(place, 3, "KeY");
      EXPECT_EQ(FindFolded(text, "key", 0), place) << size;
      EXPECT_EQ(FindFolded(text, "key", place + 1), text.npos) << size;
    }
  }
}

}  // namespace
}  // namespace vela
