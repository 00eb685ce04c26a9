#include "text/run_cut.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

namespace vela {
namespace {

// The pieces of a text between "|", what is none of any in brackets.
std::string Pieces(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    const size_t length = RunPieceLength(text);
    if (length == 0) {
      line.append("[").append(text.substr(0, 1)).append("]");
      text.remove_prefix(1);
      continue;
    }
    line.append(line.empty() ? "" : "|").append(text.substr(0, length));
    text.remove_prefix(length);
  }
  return line;
}

std::string Folded(std::string text) {
  text.resize(FoldRunPiece(text.data(), text.size()));
  return text;
}

TEST(RunCut, CutsPieces) {
  const struct {
    const char *what, *text, *expected;
  } cases[] = {
      {"ideographs", "暗号化", "暗|号|化"},
      {"hiragana", "です", "で|す"},
      {"katakana, the long sign and small letters", "パーティ", "パ|ー|テ|ィ"},
      {"the sign that repeats an ideograph", "佐々木", "佐|々|木"},
      {"half-width kana keep their mark", "ｶﾞｽ", "ｶﾞ|ｽ"},
      {"kana and a combining mark", "か\u3099す", "か\u3099|す"},
      {"an ideograph and its selector", "葛\U000E0100飾", "葛\U000E0100|飾"},
      {"ideographs beyond the first plane", "𠮟る", "𠮟|る"},
      {"Thai vowels above and below, tones", "ที่นั่ง", "ที่|นั่|ง"},
      {"Thai vowels that are written before their consonant", "เมือง", "เ|มื|อ|ง"},
      {"Thai digits", "๑๒", "๑|๒"},
      {"Lao", "ລາວ", "ລ|າ|ວ"},
      {"a Khmer stack is one", "ក្រុម", "ក្រុ|ម"},
      {"a Burmese stack is one", "မန္တလေး", "မ|န္တ|လေး"},
      {"a mark alone", "\u0E31", "\u0E31"},
      {"a mark behind a letter of no such script", "a\u0E31", "[a]|\u0E31"},
      {"letters of other scripts", "aж", "[a][\xD0][\xB6]"},
      {"Korean has blanks", "한", "[\xED][\x95][\x9C]"},
      {"signs are none", "。", "[\xE3][\x80][\x82]"},
      {"a selector alone", "\U000E0100", "[\xF3][\xA0][\x84][\x80]"},
      {"a character that is cut off", "\xE6\x9A", "[\xE6][\x9A]"},
      {"a character with a wrong byte", "\xE6\x9Az", "[\xE6][\x9A][z]"},
      {"an overlong form of a letter", "\xE0\x80\x80", "[\xE0][\x80][\x80]"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Pieces(c.text), c.expected);
  }
}

TEST(RunCut, MoreMarksThanAnyLanguageHasBeginAPieceOfTheirOwn) {
  std::string text = "ก";
  for (int i = 0; i < 12; ++i) text += "\u0E48";
  EXPECT_EQ(RunPieceLength(text), 12u * 3u);
}

TEST(RunCut, FindsAPieceAnywhere) {
  EXPECT_TRUE(HasRunPiece("Debianパ"));
  EXPECT_FALSE(HasRunPiece("Debian — 한국"));
  EXPECT_FALSE(HasRunPiece(""));
}

TEST(RunCut, FoldsPieces) {
  const struct {
    const char *what, *piece, *expected;
  } cases[] = {
      {"as it is", "語", "語"},
      {"half-width kana", "ｱ", "ア"},
      {"the first and the last of them", "ｦ", "ヲ"},
      {"the last of them", "ﾝ", "ン"},
      {"half-width with the mark", "ｶﾞ", "ガ"},
      {"and with the other", "ﾊﾟ", "パ"},
      {"the mark on to", "ﾄﾞ", "ド"},
      {"the mark on u", "ｳﾞ", "ヴ"},
      {"hiragana with the combining mark", "か\u3099", "が"},
      {"hiragana u", "う\u3099", "ゔ"},
      {"hiragana with the other", "ほ\u309A", "ぽ"},
      {"a mark that does not belong there", "ｱﾞ", "ア\uFF9E"},
      {"a selector", "葛\U000E0100", "葛"},
      {"small tu has no voiced form", "っ\u3099", "っ\u3099"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Folded(c.piece), c.expected);
  }
}

TEST(RunCut, SurvivesAnyBytes) {
  std::mt19937 random(11);
  for (int round = 0; round < 200000; ++round) {
    std::string text(random() % 16, '\0');
    for (char& c : text)
      c = static_cast<char>(random() % 4 == 0 ? random() : 0x80 + random() % 0x80);
    const size_t length = RunPieceLength(text);
    ASSERT_LE(length, text.size());
    std::string piece = text.substr(0, length);
    ASSERT_LE(FoldRunPiece(piece.data(), length), length);
    // A piece does not depend on what follows it.
    ASSERT_EQ(RunPieceLength(text.substr(0, length)), length);
  }
}

}  // namespace
}  // namespace vela
