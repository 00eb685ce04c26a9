#include "index/seek.h"

#include <gtest/gtest.h>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;

constexpr char kLarge[] =
    "Error seeking in file. This CGI build does not support files larger than 2GB in size. Please "
    "contact Brantel for help.";
constexpr char kOther[] =
    "Error seeking in file. This may be due to an incompatible CGI build for your operating "
    "system. Please contact Brantel for help.";

std::string ErrorAt(uint64_t offset, bool xml) {
  CapturedResponse captured(xml);
  WriteSeekError(captured.response, offset);
  return captured.Text();
}

TEST(SeekError, TwoGigabytesAreCountedInDecimal) {
  EXPECT_EQ(ErrorAt(2000000001, false), kLarge);
  EXPECT_EQ(ErrorAt(2000000000, false), kOther);
  EXPECT_EQ(ErrorAt(0, false), kOther);
  EXPECT_EQ(ErrorAt(UINT64_MAX, false), kLarge);
}

TEST(SeekError, XmlElementIsNotClosed) {
  EXPECT_EQ(ErrorAt(2000000001, true), std::string("<vela:error>") + kLarge);
  EXPECT_EQ(ErrorAt(1, true), std::string("<vela:error>") + kOther);
}

TEST(SeekIndexFile, PositionsAreSigned64BitNumbers) {
  const struct {
    const char* what;
    uint64_t offset;
    bool taken;
  } cases[] = {
      {"the start", 0, true},
      {"beyond four gigabytes", uint64_t{1} << 39, true},
      {"the last position", INT64_MAX, true},
      {"one more", uint64_t{1} << 63, false},
      {"all bits", UINT64_MAX, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    CapturedResponse captured;
    EXPECT_EQ(SeekIndexFile(captured.response, c.offset) == 0, c.taken);
    EXPECT_EQ(captured.Text(), c.taken ? "" : kLarge);
  }
}

}  // namespace
}  // namespace vela
