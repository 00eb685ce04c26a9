#include "index/synonyms.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::LittleEndian;

constexpr size_t kKeys = 24;
constexpr size_t kAlternatives = kKeys + 3 * 8;
constexpr size_t kRecords = kAlternatives + 4 * 12;

// "email" is found by "e-mail" and "mail", "filename" by "file name" on page 5.
std::string File() {
  const auto number = [](uint32_t value) { return LittleEndian(value, 4); };
  std::string bytes = "synonym" + LittleEndian(0, 1);
  bytes += number(2) + number(3) + number(1) + number(5 + 8 + 6 + 4 + 9);
  bytes += number(0) + number(0) + number(5) + number(2) + number(13) + number(3);
  bytes += number(13) + number(0) + number(100);
  bytes += number(19) + number(0) + number(40);
  bytes += number(23) + number(0) + number(700);
  bytes += number(32) + number(1) + number(0);
  bytes += LittleEndian(9, 1) + LittleEndian(0x80, 1) + LittleEndian(5, 3) + LittleEndian(77, 5);
  return bytes + "emailfilename" + "e-mailmailfile name";
}

// "e-mail 100, mail 40, ": what the key is found by.
std::string For(const std::string& bytes, std::string_view key) {
  SynonymFile file;
  file.Open(bytes);
  const SynonymRange range = file.Find(key);
  std::string text;
  for (uint32_t i = range.first; i < range.end; ++i) {
    const Synonym synonym = file.At(i);
    text += std::string(synonym.text) + " " + std::to_string(synonym.weight);
    for (int32_t r = 0; r < synonym.records.size(); ++r) {
      const WordMapRecord record = RecordAt(synonym.records, r);
      text += " page " + std::to_string(record.page) + " at " + std::to_string(record.position);
    }
    text += ", ";
  }
  return text;
}

TEST(Synonyms, AlternativesOfAKey) {
  EXPECT_EQ(For(File(), "email"), "e-mail 100, mail 40, ");
  EXPECT_EQ(For(File(), "filename"), "file name 100 page 5 at 77, ");
  for (const char* key : {"", "emai", "emails", "a", "fil", "z", "e-mail", "emailfilename"}) {
    EXPECT_EQ(For(File(), key), "") << key;
  }
}

TEST(Synonyms, OpensTheFileOfTheDirectory) {
  support::OpenDirectory opened;
  SynonymFile file;
  file.Open(opened.directory);
  EXPECT_FALSE(file.isOpen());
  std::ofstream(opened.scratch.path() / "vela_synonyms.vdat", std::ios::binary) << File();
  file.Open(opened.directory);
  ASSERT_TRUE(file.isOpen());
  EXPECT_EQ(file.Find("email").end, 2u);
  file.Close();
  EXPECT_EQ(file.Find("email").end, 0u);
}

TEST(Synonyms, WhatIsNotOfTheFormStaysClosed) {
  const std::string whole = File();
  const auto with = [&](size_t at, const std::string& bytes) {
    return std::string(whole).replace(at, bytes.size(), bytes);
  };
  for (const std::string& bytes :
       {std::string(), whole.substr(0, 23), whole.substr(0, whole.size() - 1), whole + "x",
        with(0, "S"), with(8, LittleEndian(3, 4)), with(12, LittleEndian(0xFFFFFFFF, 4)),
        with(16, LittleEndian(0xFFFFFFFF, 4)), with(20, LittleEndian(0xFFFFFFFF, 4))}) {
    SynonymFile file;
    file.Open(bytes);
    EXPECT_FALSE(file.isOpen());
  }
}

TEST(Synonyms, DamagedNumbersGiveNothing) {
  const std::string whole = File();
  const auto with = [&](size_t at, uint32_t value) {
    return std::string(whole).replace(at, 4, LittleEndian(value, 4));
  };
  // A key that begins behind its end, or ends behind the texts.
  EXPECT_EQ(For(with(kKeys, 6), "email"), "");
  EXPECT_EQ(For(with(kKeys + 8, 0xFFFFFFFF), "email"), "");
  // Alternatives that end before they begin, or behind the last.
  EXPECT_EQ(For(with(kKeys + 4, 3), "email"), "");
  EXPECT_EQ(For(with(kKeys + 12, 0xFFFFFFFF), "email"), "");
  // Records that are not there: the alternative is empty.
  EXPECT_EQ(For(with(kAlternatives + 3 * 12 + 4, 2), "filename"), " 0, ");
  EXPECT_EQ(For(with(kAlternatives + 2 * 12 + 4, 2), "filename"), " 0, ");
  // A text that is not there.
  EXPECT_EQ(For(with(kAlternatives, 0xFFFFFFFF), "email"), " 100, mail 40, ");
  static_assert(kRecords == 24 + 24 + 48);
}

TEST(Synonyms, OfManyAlternativesTheFirstAreTaken) {
  const auto number = [](size_t value) { return LittleEndian(value, 4); };
  constexpr size_t kMany = 100;
  std::string bytes = "synonym" + LittleEndian(0, 1);
  bytes += number(1) + number(kMany) + number(0) + number(1 + kMany);
  bytes += number(0) + number(0) + number(1) + number(kMany);
  for (size_t i = 0; i <= kMany; ++i) bytes += number(1 + i) + number(0) + number(100);
  bytes += "k" + std::string(kMany, 'a');
  SynonymFile file;
  file.Open(bytes);
  ASSERT_TRUE(file.isOpen());
  EXPECT_EQ(file.Find("k").first, 0u);
  EXPECT_EQ(file.Find("k").end, 64u);
}

}  // namespace
}  // namespace vela
