#include "indexer/words/korean_forms.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(KoreanForms, WithoutParticle) {
  const struct {
    const char *what, *word, *expected;
  } cases[] = {
      {"the object behind a vowel", "패키지를", "패키지"},
      {"the object behind a consonant", "시스템을", "시스템"},
      {"the topic", "배포판은", "배포판"},
      {"a particle that does not fit the sound", "시스템를", ""},
      {"the longest of several", "시스템에서는", "시스템"},
      {"where to, behind l", "커널로", "커널"},
      {"where to, behind another consonant", "시스템으로", "시스템"},
      {"a noun that is made a verb", "설치합니다", "설치"},
      {"several of a thing", "패키지들을", "패키지"},
      {"a word of one syllable and a particle", "책을", ""},
      {"a word that ends like a particle only", "고가", ""},
      {"a foreign word", "Debian을", "Debian"},
      {"a version", "12에서", "12"},
      {"a foreign word with more than a particle", "Debian배포판", ""},
      {"a particle alone", "에서", ""},
      {"no particle", "데비안", ""},
      {"other letters", "kernel", ""},
      {"nothing", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(WithoutParticle(c.word), c.expected);
  }
}

}  // namespace
}  // namespace vela::indexer
