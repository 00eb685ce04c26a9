#include "text/presentation_forms.h"

#include <gtest/gtest.h>

#include <string>

#include "indexer/words/compatible_text.h"
#include "indexer/words/symbols.h"

namespace vela::indexer {
namespace {

// Unicode's own table says the same of every form that is in ours, and of every one of Arabic.
TEST(PresentationForms, AreTheLettersThatUnicodeSays) {
  int count = 0;
  for (char32_t c = 0xFB00; c <= 0xFFFF; ++c) {
    const std::string_view letters = LettersOfForm(c);
    if (letters.empty()) continue;
    SCOPED_TRACE(static_cast<uint32_t>(c));
    EXPECT_EQ(letters, CompatibleText(Utf8Text(c)));
    EXPECT_TRUE(MayHoldForms(Utf8Text(c)));
    ++count;
  }
  for (char32_t c = 0xFE80; c <= 0xFEFC; ++c) EXPECT_FALSE(LettersOfForm(c).empty());
  EXPECT_EQ(count, 125 + 124);  // of Arabic, and of other languages
  for (const char32_t c :
       {U'a', U'\u0628', U'\uFB4F', U'\uFBB2', U'\uFBDD', U'\uFE7F', U'\uFEFF'}) {
    EXPECT_TRUE(LettersOfForm(c).empty());
  }
}

}  // namespace
}  // namespace vela::indexer
