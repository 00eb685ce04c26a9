#include "text/sound_key.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vela {
namespace {

struct Case {
  const char* word;
  const char* key;
};

std::string KeyOf(std::string_view word) { return std::string(View(MakeSoundKey(word))); }

template <size_t N>
void ExpectKeys(const Case (&cases)[N]) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.word);
    EXPECT_EQ(KeyOf(c.word), c.key);
  }
}

TEST(SoundKey, StartOfTheWord) {
  ExpectKeys({
      {"aeon", "EN"},  {"aerial", "ERL"},     {"ae", "E"},
      {"aeeb", "EB"},  {"gnat", "NT"},        {"gnome", "NM"},
      {"gned", "NT"},  {"knight", "NT"},      {"knob", "NB"},
      {"kn", "N"},     {"pneumonia", "NMN"},  {"pn", "N"},
      {"write", "RT"}, {"wry", "R"},          {"wreck", "RK"},
      {"x", "S"},      {"xylophone", "SLFN"}, {"xerox", "SRKS"},
      {"xx", "SKS"},   {"xiao", "X"},         {"who", "W"},
      {"when", "WN"},  {"whose", "WS"},       {"whale", "WL"},
      {"wh", ""},      {"why", ""},           {"a", "A"},
      {"ant", "ANT"},
  });
}

TEST(SoundKey, OnlyTheStartOfTheWordLosesALetter) {
  ExpectKeys({
      {"signal", "SKNL"},
      {"acknowledge", "AKNLJ"},
      {"playwright", "PLRT"},
      {"awhile", "AHL"},
      {"taxi", "TKS"},
  });
}

TEST(SoundKey, VowelsAreKeptOnlyInFront) {
  ExpectKeys({
      {"apple", "APL"},
      {"area", "AR"},
      {"eel", "EL"},
      {"idea", "IT"},
      {"ooze", "OS"},
      {"under", "UNTR"},
      {"ooo", "O"},
      {"aa", "A"},
      {"ai", "A"},
      {"banana", "BNN"},
  });
}

TEST(SoundKey, LetterEqualToTheOneBeforeIsSkippedButC) {
  ExpectKeys({
      {"llama", "LM"},
      {"happy", "HP"},
      {"butter", "BTR"},
      {"egg", "EK"},
      {"bookkeeper", "BKPR"},
      {"session", "SSN"},
      {"pizza", "PS"},
      {"bb", "B"},
      {"occur", "OKKR"},
      {"accent", "AKSNT"},
      {"bacchus", "BKXS"},
      // The second "p" would be heard as F, the second "t" as 0.
      {"sapphire", "SPR"},
      {"matthew", "MT"},
      // Only what is written compares, not what is heard.
      {"zs", "SS"},
      {"cq", "KK"},
  });
}

TEST(SoundKey, B) {
  ExpectKeys({
      {"bomb", "BM"},
      {"thumb", "0M"},
      {"lamb", "LM"},
      {"bombs", "BMBS"},
      {"amber", "AMBR"},
      {"mb", "M"},
      {"mbb", "MB"},
      {"rub", "RB"},
  });
}

TEST(SoundKey, C) {
  ExpectKeys({
      {"cia", "X"},         {"special", "SPXL"}, {"fascia", "FSX"},  {"science", "SNS"},
      {"scene", "SN"},      {"scythe", "S0"},    {"city", "ST"},     {"cent", "SNT"},
      {"cycle", "SKL"},     {"school", "SKL"},   {"schism", "SKSM"}, {"church", "XRX"},
      {"much", "MX"},       {"chrome", "XRM"},   {"cat", "KT"},      {"scale", "SKL"},
      {"back", "BK"},       {"clock", "KLK"},    {"ck", "K"},        {"arc", "ARK"},
      {"scissors", "SSRS"},
  });
}

TEST(SoundKey, D) {
  ExpectKeys({
      {"edge", "EJ"},
      {"budget", "BJT"},
      {"badger", "BJR"},
      {"judging", "JJNK"},
      {"edgy", "EJ"},
      {"dog", "TK"},
      {"headgame", "HTKM"},
      {"dg", "TK"},
      {"dad", "TT"},
  });
}

TEST(SoundKey, F) { ExpectKeys({{"off", "OF"}, {"fifth", "FF0"}, {"f", "F"}}); }

TEST(SoundKey, G) {
  ExpectKeys({
      // GH
      {"night", "NT"},
      {"light", "LT"},
      {"thoughts", "0TS"},
      {"ghost", "KST"},
      {"ghetto", "KT"},
      {"high", "HK"},
      {"laugh", "LK"},
      {"gh", "K"},
      // GN and GNED
      {"sign", "SN"},
      {"reign", "RN"},
      {"signed", "SNT"},
      {"designed", "TSNT"},
      {"signs", "SKNS"},
      {"magnet", "MKNT"},
      // DGE, DGI, DGY
      {"ledger", "LJR"},
      // before I, E and Y
      {"gem", "JM"},
      {"gin", "JN"},
      {"gym", "JM"},
      {"age", "AJ"},
      {"bigger", "BKR"},
      {"suggest", "SKST"},
      // else
      {"gag", "KK"},
      {"game", "KM"},
      {"green", "KRN"},
  });
}

TEST(SoundKey, H) {
  ExpectKeys({
      {"hat", "HT"},
      {"ahead", "AHT"},
      {"mahal", "MHL"},
      {"oh", "O"},
      {"john", "JN"},
      {"phone", "FN"},
      {"rhyme", "RM"},
      {"this", "0S"},
      {"shoe", "X"},
      {"chat", "XT"},
      {"hh", ""},
      {"rhino", "RHN"},
  });
}

TEST(SoundKey, JToN) {
  ExpectKeys({
      {"major", "MJR"},
      {"kick", "KK"},
      {"kayak", "KYK"},
      {"milk", "MLK"},
      {"normal", "NRML"},
  });
}

TEST(SoundKey, PAndQ) {
  ExpectKeys({
      {"sphere", "SFR"},
      {"psalm", "PSLM"},
      {"graph", "KRF"},
      {"pop", "PP"},
      {"queen", "KN"},
      {"iraq", "IRK"},
  });
}

TEST(SoundKey, S) {
  ExpectKeys({
      {"ship", "XP"},
      {"wish", "WX"},
      {"vision", "FXN"},
      {"sio", "X"},
      {"asia", "AX"},
      {"persian", "PRXN"},
      {"sit", "ST"},
      {"sass", "SS"},
      {"si", "S"},
  });
}

TEST(SoundKey, T) {
  ExpectKeys({
      {"nation", "NXN"},
      {"patio", "PX"},
      {"tia", "X"},
      {"spatial", "SPXL"},
      {"think", "0NK"},
      {"teeth", "T0"},
      {"watch", "WX"},
      {"kitchen", "KXN"},
      {"title", "TTL"},
      {"t", "T"},
      {"ti", "T"},
  });
}

TEST(SoundKey, VToZ) {
  ExpectKeys({
      {"vivid", "FFT"},
      {"water", "WTR"},
      {"sword", "SWRT"},
      {"cow", "K"},
      {"yes", "YS"},
      {"bayou", "BY"},
      {"my", "M"},
      {"yw", ""},
      {"box", "BKS"},
      {"extra", "EKSTR"},
      {"zebra", "SBR"},
      {"away", "AW"},
  });
}

TEST(SoundKey, AtMostSixCharacters) {
  ExpectKeys({
      {"aardvark", "ARTFRK"},
      {"international", "INTRNX"},
      {"bdfmnr", "BTFMNR"},
      {"bdfmnrl", "BTFMNR"},
      // The two characters of X, whole and cut.
      {"bdfmx", "BTFMKS"},
      {"bdfmnx", "BTFMNK"},
      {"strengths", "STRNK0"},
  });
}

TEST(SoundKey, OnlyAsciiLettersCount) {
  ExpectKeys({
      {"", ""},
      {"123", ""},
      {"*?-", ""},
      {"mp3", "MP"},
      {"o'clock", "OKLK"},
      {"e-mail", "EML"},
      {"b-b", "B"},
      {"p.h", "F"},
      {"caf\xC3\xA9", "KF"},
      {"caf\xE9", "KF"},
      {"\xC3\x9C"
       "ber",
       "BR"},
      {"\xD0\xBA", ""},
      {"7gnu", "N"},
  });
  EXPECT_EQ(KeyOf(std::string_view("a\0b", 3)), "AB");
}

TEST(SoundKey, CaseDoesNotCount) {
  ExpectKeys({{"PHONE", "FN"}, {"Phone", "FN"}, {"pHoNe", "FN"}, {"WRite", "RT"}});
}

TEST(SoundKey, LongWords) {
  EXPECT_EQ(KeyOf(std::string(2085, 'e')), "E");
  EXPECT_EQ(KeyOf(std::string(2000, 'o') + "ak"), "OK");
  std::string word;
  for (int i = 0; i < 1000; ++i) word += "ta";
  EXPECT_EQ(KeyOf(word), "TTTTTT");
}

}  // namespace
}  // namespace vela
