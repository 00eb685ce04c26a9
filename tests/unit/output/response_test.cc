#include "output/response.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "output/response_start.h"
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

TEST(ResponseHeader, Table) {
  const struct {
    const char* what;
    bool xml;
    int32_t noCharset;
    const char* expected;
  } cases[] = {
      {"html", false, 0, "Content-type: text/html; charset=utf-8\n\n"},
      {"xml", true, 0, "Content-type: text/xml; charset=utf-8\n\n"},
      {"html without charset ends in a semicolon", false, 1, "Content-type: text/html;\n\n"},
      {"xml without charset", true, 1, "Content-type: text/xml;\n\n"},
      {"any value but 0 leaves it out", false, 2, "Content-type: text/html;\n\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    Set(settings.Charset, "utf-8");
    settings.NoCharset = c.noCharset;
    CapturedResponse captured(c.xml);
    WriteHeader(captured.response, settings);
    EXPECT_EQ(captured.Text(), c.expected);
  }
}

TEST(PoweredBy, OnlyWhenTheSettingsWantIt) {
  for (int32_t wanted : {0, 1, 2}) {
    Settings settings;
    support::SetLanguageTexts(settings);
    settings.VelaInfo = wanted;
    OutputSections sections;
    ASSERT_TRUE(AllocateSections(sections, 10));
    AppendPoweredBy(sections, settings);
    EXPECT_EQ(SectionText(sections, Section::kPageNumbers),
              wanted != 1
                  ? ""
                  : "\n<center><p><small>Run by <a href=\"https://vela-search.example/\" "
                    "target=\"_blank\"><b>Vela Search Engine</b></a></small></p></center>\n");
  }
}

}  // namespace
}  // namespace vela
