#include "text/presentation_forms.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

TEST(PresentationForms, WrittenAsFarAsThereIsRoom) {
  const struct {
    const char* what;
    const char* text;
    size_t room;
    const char* expected;
  } cases[] = {
      {"letters and others", "a\uFE8F\u0628 \uFE90!", 20, "a\u0628\u0628 \u0628!"},
      {"two letters", "\uFEFB", 4, "\u0644\u0627"},
      {"no room for the second", "\uFEFB", 3, ""},
      {"room for the first form only", "\uFEFBa\uFEFC", 8, "\u0644\u0627a"},
      {"what is behind stays out, too", "\u3042b", 2, ""},
      {"broken bytes stay", "\xEF\xBB \xEF", 8, "\xEF\xBB \xEF"},
      {"other characters of the same first byte", "\uFF41\uFFFD", 8, "\uFF41\uFFFD"},
      {"nothing", "", 4, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::string out(c.room, '?');
    out.resize(WriteWithoutForms(c.text, out.data(), c.room));
    EXPECT_EQ(out, c.expected);
  }
}

}  // namespace
}  // namespace vela
