#include "index/corrections.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/corrections_file.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CorrectionsFile;
using support::LittleEndian;

constexpr size_t kWords = 8;       // of the header
constexpr size_t kTextBytes = 12;  // of the header
constexpr size_t kGroups = 16;     // of the header
constexpr size_t kTables = 16 + 4 * 34;

const std::vector<support::MeantWord>& Words() {
  static const std::vector<support::MeantWord> words = {
      {"cat", 7}, {"cot", 5}, {"caf\u00E9", 300}, {"coat", 70000}, {"scatter", 1}};
  return words;
}

// "cat 7, cot 5, ": the words of so many letters near one, as they are visited.
std::string Near(const CorrectionFile& file, size_t least, size_t most, std::string_view word,
                 int differing) {
  WordLetters letters;
  EXPECT_TRUE(ReadLetters(word, true, letters));
  std::string text;
  file.ForEachNear(least, most, LetterSetOf(letters), differing, [&](uint32_t number) {
    WordLetters found;
    text += std::string(file.TextOf(number, true, found)) + " " +
            std::to_string(file.PagesOf(number)) + ", ";
  });
  return text;
}

TEST(Corrections, WordsByTheirLetters) {
  const std::string bytes = CorrectionsFile(Words());
  CorrectionFile file;
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(Near(file, 3, 4, "cat", 32), "");
  file.Open(bytes);
  ASSERT_TRUE(file.isOpen());
  EXPECT_EQ(Near(file, 0, 32, "cat", 32), "cat 7, cot 5, caf\u00E9 300, coat 70000, scatter 1, ");
  EXPECT_EQ(Near(file, 3, 3, "cat", 32), "cat 7, cot 5, ");
  EXPECT_EQ(Near(file, 4, 4, "cat", 32), "caf\u00E9 300, coat 70000, ");
  EXPECT_EQ(Near(file, 3, 4, "cat", 0), "cat 7, ");
  EXPECT_EQ(Near(file, 3, 4, "cat", 1), "cat 7, coat 70000, ");
  EXPECT_EQ(Near(file, 3, 4, "cat", 2), "cat 7, cot 5, coat 70000, ");
  EXPECT_EQ(Near(file, 5, 6, "cat", 32), "");
  EXPECT_EQ(Near(file, 4, 3, "cat", 32), "");
  EXPECT_EQ(Near(file, 3, 33, "cat", 32), "");
  file.Close();
  EXPECT_FALSE(file.isOpen());
}

TEST(Corrections, OpensTheFileOfTheDirectory) {
  support::OpenDirectory opened;
  CorrectionFile file;
  file.Open(opened.directory);
  EXPECT_FALSE(file.isOpen());
  std::ofstream(opened.scratch.path() / "vela_corrections.vdat", std::ios::binary)
      << CorrectionsFile(Words());
  file.Open(opened.directory);
  EXPECT_EQ(Near(file, 3, 3, "cat", 0), "cat 7, ");
}

TEST(Corrections, AFileWithoutWords) {
  const std::string bytes = CorrectionsFile({});
  CorrectionFile file;
  file.Open(bytes);
  EXPECT_TRUE(file.isOpen());
  EXPECT_EQ(Near(file, 0, 32, "cat", 32), "");
}

TEST(Corrections, WhatIsNotOfTheFormStaysClosed) {
  const std::string whole = CorrectionsFile(Words());
  const auto with = [&](size_t at, const std::string& bytes) {
    return std::string(whole).replace(at, bytes.size(), bytes);
  };
  const struct {
    const char* what;
    std::string bytes;
  } cases[] = {
      {"nothing", ""},
      {"a header cut short", whole.substr(0, kTables - 1)},
      {"a file cut short", whole.substr(0, whole.size() - 1)},
      {"a byte too many", whole + "x"},
      {"another mark", with(0, "C")},
      {"more words than there are", with(kWords, LittleEndian(6, 4))},
      {"more words than may be", with(kWords, LittleEndian(0xFFFFFFFF, 4))},
      {"more text than there is", with(kTextBytes, LittleEndian(0xFFFFFFFF, 4))},
      {"groups that do not rise", with(kGroups + 4 * 3, LittleEndian(3, 4))},
      {"a group beyond the words", with(kGroups + 4 * 33, LittleEndian(6, 4))},
      {"groups that end before the words", with(kGroups + 4 * 33, LittleEndian(4, 4))},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    CorrectionFile file;
    file.Open(c.bytes);
    EXPECT_FALSE(file.isOpen());
  }
}

TEST(Corrections, AWordThatIsNoneOfLettersIsEmpty) {
  const std::string whole = CorrectionsFile(Words());
  const size_t starts = kTables + 2 * 4 * Words().size();
  const size_t texts = starts + 4 * (Words().size() + 1);
  const auto first = [](const std::string& bytes) {
    CorrectionFile file;
    file.Open(bytes);
    EXPECT_TRUE(file.isOpen());
    WordLetters letters;
    return std::string(file.TextOf(0, true, letters));
  };
  const auto with = [&](size_t at, const std::string& bytes) {
    return std::string(whole).replace(at, bytes.size(), bytes);
  };
  EXPECT_EQ(first(whole), "cat");
  EXPECT_EQ(first(with(texts, "<")), "");
  EXPECT_EQ(first(with(texts, "C")), "");
  EXPECT_EQ(first(with(texts + 1, std::string(1, '\0'))), "");
  EXPECT_EQ(first(with(texts + 2, "\xC3")), "");                     // half a character
  EXPECT_EQ(first(with(starts, LittleEndian(4, 4))), "");            // begins behind its end
  EXPECT_EQ(first(with(starts + 4, LittleEndian(9999, 4))), "");     // ends behind the texts
  EXPECT_EQ(first(with(starts + 4, LittleEndian(6, 4))), "catcot");  // another word, but one
}

}  // namespace
}  // namespace vela
