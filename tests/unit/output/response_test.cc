#include "output/response.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;
using support::Repeat;

TEST(Response, FormattedWriteIsCutAt10239) {
  CapturedResponse captured;
  EXPECT_EQ(WriteOut(captured.response, "%s", Repeat("x", 10239).c_str()), 10239);
  EXPECT_EQ(captured.Text(), Repeat("x", 10239));
  CapturedResponse longer;
  EXPECT_EQ(WriteOut(longer.response, "%s", Repeat("x", 12000).c_str()), 10239);
  EXPECT_EQ(longer.Text(), Repeat("x", 10239));
}

TEST(Response, NullFormat) {
  CapturedResponse captured;
  const char* none = nullptr;
  EXPECT_EQ(WriteOut(captured.response, none), -1);
  EXPECT_EQ(captured.Text(), "");
}

TEST(Response, RawWriteIsNoFormatAndNotCut) {
  CapturedResponse captured;
  const std::string text = "100%s%n" + Repeat("x", 100000);
  WriteRaw(captured.response, text);
  EXPECT_EQ(captured.Text(), text);
}

TEST(Response, WritesKeepTheirOrder) {
  CapturedResponse captured;
  std::string expected;
  for (size_t i = 0; i < 200; ++i) {
    const std::string piece = std::to_string(i) + Repeat(".", i * 37 % 1000);
    if (i % 2 == 0) {
      WriteRaw(captured.response, piece);
    } else {
      WriteOut(captured.response, "%s", piece.c_str());
    }
    expected += piece;
  }
  WriteRaw(captured.response, "");
  EXPECT_EQ(captured.Text(), expected);
}

TEST(Response, PiecesAroundTheBufferSize) {
  for (size_t first : {size_t{0}, size_t{1}, Response::kBufferSize - 1, Response::kBufferSize}) {
    for (size_t second : {size_t{0}, size_t{1}, Response::kBufferSize - 1, Response::kBufferSize,
                          Response::kBufferSize + 1}) {
      CapturedResponse captured;
      WriteRaw(captured.response, Repeat("a", first));
      WriteRaw(captured.response, Repeat("b", second));
      EXPECT_EQ(captured.Text(), Repeat("a", first) + Repeat("b", second));
    }
  }
}

TEST(Response, ErrorsAreWrappedInXml) {
  const struct {
    bool xml;
    ErrorEnd end;
    const char* expected;
  } cases[] = {
      {false, ErrorEnd::kPlain, "It %s failed."},
      {false, ErrorEnd::kLineFeed, "It %s failed."},
      {true, ErrorEnd::kPlain, "<vela:error>It %s failed.</vela:error>"},
      {true, ErrorEnd::kLineFeed, "<vela:error>It %s failed.</vela:error>\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expected);
    CapturedResponse captured(c.xml);
    WriteError(captured.response, "It %s failed.", c.end);
    EXPECT_EQ(captured.Text(), c.expected);
  }
}

TEST(Response, NothingIsWrittenToAClosedPipe) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  std::signal(SIGPIPE, SIG_IGN);
  Response response;
  response.descriptor = ends[1];
  WriteRaw(response, Repeat("x", 100000));
  Flush(response);
  EXPECT_TRUE(response.broken);
  WriteRaw(response, "more");
  Flush(response);
  close(ends[1]);
  std::signal(SIGPIPE, SIG_DFL);
}

}  // namespace
}  // namespace vela
