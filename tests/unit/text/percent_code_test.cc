#include "text/percent_code.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

TEST(PercentCode, WritesTwoUpperCaseDigits) {
  const struct {
    char byte;
    const char* expected;
  } cases[] = {
      {'\0', "%00"}, {'\n', "%0A"}, {' ', "%20"},    {'%', "%25"},
      {'O', "%4F"},  {'o', "%6F"},  {'\x80', "%80"}, {'\xFF', "%FF"},
  };
  for (const auto& c : cases) EXPECT_EQ(PercentCode(c.byte).view(), c.expected);
}

TEST(PercentCode, ReadsWhatIsACodeOnly) {
  const struct {
    const char* what;
    const char* text;
    int expected;
  } cases[] = {
      {"upper case", "%4F", 0x4F},
      {"lower case", "%fe", 0xFE},
      {"nothing but zeros", "%00", 0},
      {"what follows is left alone", "%41B", 0x41},
      {"one digit", "%4", -1},
      {"no digits", "%", -1},
      {"empty", "", -1},
      {"the second is no digit", "%4G", -1},
      {"the first is no digit", "%:0", -1},
      {"no percent sign", "41", -1},
      {"another sign", "=41", -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(ReadPercentCode(c.text), c.expected);
  }
}

TEST(PercentCode, EveryByteReadsBack) {
  for (int byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(ReadPercentCode(PercentCode(static_cast<char>(byte)).view()), byte);
  }
}

}  // namespace
}  // namespace vela
