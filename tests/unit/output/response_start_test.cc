#include "output/response_start.h"

#include <gtest/gtest.h>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;

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

}  // namespace
}  // namespace vela
