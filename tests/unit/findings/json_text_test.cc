#include "inspector/findings/json_text.h"

#include <gtest/gtest.h>

namespace vela::inspector {
namespace {

TEST(JsonText, PutsCommasBetweenWhatStandsSideBySide) {
  JsonText json;
  json.BeginObject().Number("a", 1).BeginArray("b").Text({}, "x").Text({}, "y").EndArray();
  json.BeginArray("c").EndArray().BeginObject("d").Flag("e", false).EndObject();
  json.Number("f", -2).EndObject();
  EXPECT_EQ(json.text(), R"({"a":1,"b":["x","y"],"c":[],"d":{"e":false},"f":-2})");
}

TEST(JsonText, WritesTextsOfAnyBytes) {
  const struct {
    const char* what;
    std::string_view text;
    const char* written;
  } cases[] = {
      {"quotes and backslashes", R"("\)", R"({"t":"\"\\"})"},
      {"control characters", "\n\x7F", R"({"t":"\u000a\u007f"})"},
      {"a NUL", {"a\0b", 3}, R"({"t":"a\u0000b"})"},
      {"UTF-8 as it is", "é…", R"({"t":"é…"})"},
      {"what is none, byte by byte",
       "\xE9\xFF"
       "a",
       R"({"t":"\ufffd\ufffda"})"},
      {"nothing", "", R"({"t":""})"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    JsonText json;
    json.BeginObject().Text("t", c.text).EndObject();
    EXPECT_EQ(json.text(), c.written);
  }
}

}  // namespace
}  // namespace vela::inspector
