#include "indexer/write/compound_words.h"

#include <gtest/gtest.h>

#include <string>

namespace vela::indexer {
namespace {

struct Words {
  Vocabulary vocabulary;

  explicit Words(std::initializer_list<const char*> texts) {
    for (const char* text : texts) Add(text, 2);
  }
  Word& Add(const char* text, uint32_t pages) {
    Word& word = vocabulary.words[FindOrAddWord(vocabulary, text)];
    word.pageCount = pages;
    word.isWritten = word.isOwnForm = true;
    return word;
  }
  // A word that is only written with a capital.
  void AddNoun(std::string noun, uint32_t pages) {
    const std::string surface = noun;
    noun[0] = static_cast<char>(noun[0] | 0x20);
    Add(noun.c_str(), pages).isOwnForm = false;
    FindOrAddVariant(vocabulary, FindOrAddWord(vocabulary, noun), surface);
  }
  WordsByForm Forms() const { return FormsOfSite(vocabulary, true); }
  std::string Same() const {
    std::string text;
    for (const SameWord& each : SameWords(Forms())) text += each.one + "=" + each.other + " ";
    return text;
  }
  std::string Apart() const {
    std::string text;
    for (const ApartWord& each : ApartWords(Forms())) {
      text += each.whole + (each.isJoined ? "-" : "=") + each.first + "+" + each.second + " ";
    }
    return text;
  }
  std::string German() const {
    std::string text;
    for (const CompoundPart& each : GermanCompounds(vocabulary, Forms(), true)) {
      text += each.part + ":" + each.compound + " ";
    }
    return text;
  }
};

TEST(CompoundWords, FormsThatPagesWrite) {
  Words words({"function"});
  words.Add("rebas", 2).isOwnForm = false;
  FindOrAddVariant(words.vocabulary, FindOrAddWord(words.vocabulary, "rebas"), "Rebase");
  words.Add("once", 1);
  Word& folded = words.Add("cafe", 9);
  folded.isWritten = folded.isOwnForm = false;
  EXPECT_EQ(words.Forms(), (WordsByForm{{"function", 0}, {"rebase", 1}}));
}

TEST(CompoundWords, WordsThatAreTheSame) {
  EXPECT_EQ(Words({"e-mail", "email", "f-string", "f-strings", "mail", "emails"}).Same(),
            "e-mail=email f-string=f-strings ");
  EXPECT_EQ(Words({"kernel-modul", "kernelmodul"}).Same(), "kernel-modul=kernelmodul ");
  EXPECT_EQ(Words({"-n", "n", "a-", "a", "function", "functions"}).Same(), "");
  // Forms of one stem find the same pages already.
  Words stems({"f-string"});
  FindOrAddVariant(stems.vocabulary, 0, "f-strings");
  EXPECT_EQ(stems.Same(), "");
}

TEST(CompoundWords, WordsWrittenApart) {
  EXPECT_EQ(Words({"filename", "file", "name"}).Apart(), "filename=file+name ");
  EXPECT_EQ(Words({"read-only", "read", "only"}).Apart(), "read-only-read+only ");
  EXPECT_EQ(Words({"a-b-c", "a-b", "b-c"}).Apart(), "");
  EXPECT_EQ(Words({"filename", "file"}).Apart(), "");
  EXPECT_EQ(Words({"notable", "not", "able"}).Apart(), "");  // they stand side by side by chance
  EXPECT_EQ(Words({"inside", "in", "side"}).Apart(), "");    // a piece is too short
  EXPECT_EQ(Words({"t\u00FCrname", "t\u00FCr", "name"}).Apart(), "t\u00FCrname=t\u00FCr+name ");
}

TEST(CompoundWords, PartsOfGermanCompounds) {
  const auto german = [](std::initializer_list<const char*> nouns) {
    Words words({});
    for (const char* noun : nouns) words.AddNoun(noun, 2);
    return words.German();
  };
  EXPECT_EQ(german({"Kernelmodul", "Kernel", "Modul"}), "kernel:kernelmodul modul:kernelmodul ");
  EXPECT_EQ(german({"Arbeitsplatz", "Arbeit", "Platz"}), "arbeit:arbeitsplatz platz:arbeitsplatz ");
  EXPECT_EQ(german({"Kernelmodul", "Modul"}), "");  // what is before it is no word
  EXPECT_EQ(german({"Hausarzt", "Haus", "arz"}), "");
  // Compounds on more pages come first.
  Words words({});
  for (const char* noun : {"Haus", "Haustier", "Tier", "Arzt"}) words.AddNoun(noun, 2);
  words.AddNoun("Hausarzt", 9);
  EXPECT_EQ(words.German(), "arzt:hausarzt haus:hausarzt haus:haustier tier:haustier ");
  // What stands in small letters, too, is no noun.
  words.Add("haustier", 2);
  EXPECT_EQ(words.German(), "arzt:hausarzt haus:hausarzt ");
}

}  // namespace
}  // namespace vela::indexer
